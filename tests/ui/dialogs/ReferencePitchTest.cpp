#include "ui/dialogs/ReferencePitch.h"
#include "ui/cards/FrequencyDecimals.h"
#include "ui/dialogs/OneOneNotes.h"

#include <gtest/gtest.h>

#include <tuple>

namespace {

QString latin1(const char* text)
{
    return QString::fromLatin1(text);
}

} // namespace

TEST(ReferencePitchTest, TellsHowFarTheFrequencyLiesFromItsNote)
{
    // Calibration, frequency, note; cents, and whether it counts as tempered.
    const std::tuple<double, double, const char*, const char*, bool> rows[] = {
        {442.0, 440.0, "A 4", "-7.85", false},    {440.0, 261.63, "C 4", "+0.03", false}, // 0.0265
        {440.0, 440.0004, "A 4", "0", true},      // half a unit of the third decimal is 0.0005
        {440.0, 440.001, "A 4", "0", false},      // 0.0039
        {440.0, 452.893, "A 4", "+50.00", false}, // 50.00006
        {440.0, 427.47, "A 4", "...", false},     // -50.02
        {470.0, 440.0, "A 4", "...", false},      // 114 below
        {440.0, 987.767, "no note", "0", true},   // counts as the B 5
        {442.0, 834.385, "Ab 5", "0", true},      // 834.3845, as a float a little more or less
        {0.0, 440.0, "A 4", "...", false},
    };
    for (const auto& [calibration, frequency, note, cents, tempered] : rows) {
        const ReferencePitch pitch(calibration, frequency, latin1(note));
        EXPECT_EQ(pitch.centsText().toStdString(), cents) << frequency;
        EXPECT_EQ(pitch.isTooFarFromNote(), latin1(cents) == u"...") << frequency;
        EXPECT_EQ(ReferencePitch::isTempered(static_cast<float>(calibration), static_cast<float>(frequency),
                                             pitch.noteIndex()),
                  tempered)
            << frequency;
    }
    ReferencePitch pitch(442.0, 220.0, latin1("A 3"));
    pitch.setNote(latin1("Eb 6"));
    EXPECT_NEAR(pitch.temperedFrequency(), 1250.1669, 1e-3);
    pitch.setNote(latin1("G 0")); // no such note: its text alone
    EXPECT_EQ(pitch.note(), latin1("G 0"));
    EXPECT_NEAR(pitch.temperedFrequency(), 1250.1669, 1e-3);
}

TEST(ReferencePitchTest, DecimalsFollowTheSizeOfAFrequency)
{
    // On a card, set by the program, and while it is typed.
    const std::tuple<float, int, int, int> rows[] = {
        {0.99F, 5, 6, 4},  {1.0F, 5, 5, 4},   {9.9F, 5, 5, 4},    {10.0F, 4, 4, 4},   {99.9F, 4, 4, 4},
        {100.0F, 3, 3, 3}, {999.9F, 3, 3, 3}, {1000.0F, 2, 2, 2}, {9999.0F, 2, 2, 2}, {10000.0F, 1, 1, 1}};
    for (const auto& [frequency, onCard, shown, typed] : rows) {
        EXPECT_EQ(texts::frequencyDecimals(static_cast<double>(frequency)), onCard) << frequency;
        EXPECT_EQ(ReferencePitch::shownDecimals(frequency), shown) << frequency;
        EXPECT_EQ(ReferencePitch::typedDecimals(static_cast<double>(frequency)), typed) << frequency;
    }
}

TEST(ReferencePitchTest, MenusOfOctaveAndNoteStayWithinTheTableByThePlaceOfTheNote)
{
    const std::tuple<const char*, int, const char*, const char*> rows[] = {
        {"C", 16, "5", "C 5"}, {"Ab", 4, "0", "A 0"}, {"A", 3, "0", "A 0"},
        {"A#", 2, "8", "A 8"}, {"A", 3, "8", "A 8"},  {"Ab", 4, "8", "Ab 8"},
        {"G", 3, "8", "G 8"},  {"Ab", 1, "8", "A 8"}, // by its place in the shorter menu
        {"G", 3, "0", "G 0"}};                        // the same: a note that is in no table
    for (const auto& [note, place, octave, after] : rows)
        EXPECT_EQ(ReferencePitch::noteOfMenus(latin1(note), place, latin1(octave)).toStdString(), after);

    const OneOneNotes& table = OneOneNotes::table();
    EXPECT_EQ(table.names().size(), 137);
    EXPECT_EQ(table.frequency(table.indexOf(latin1("A 0"))), 27.5F);
    EXPECT_EQ(table.frequency(table.indexOf(latin1("G 8"))), 6271.93F);
    EXPECT_EQ(table.notesOf(latin1("0")).join(u' '), latin1("B Bb A# A"));
    EXPECT_EQ(table.notesOf(latin1("8")).join(u' '), latin1("A Ab G# G Gb F# F E Eb D# D Db C# C"));
}
