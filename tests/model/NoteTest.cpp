#include "model/Note.h"
#include "model/LatticeSupport.h"
#include "model/OrloPathUnlimited.h"
#include "support/LocaleTest.h"

#include <QFile>

#include <cmath>
#include <limits>

namespace {

constexpr bool ENHARMONIC = true;

class NoteTest : public LocaleTest, protected LatticeFixture
{
protected:
    void tune(double base, double calibration, const QString& baseNote, bool isTempered)
    {
        settings.baseFrequency = base;
        settings.calibrationFrequency = calibration;
        settings.baseNote = baseNote;
        settings.oneOneFreqTempered = isTempered;
    }

    void transpose(const OrloPathUnlimited& steps)
    {
        OrloRatio transposition(1, 1);
        orlo.onTransposed(transposition, 0);
        for (const int step : steps.toList()) {
            transposition *= OrloPathUnlimited(static_cast<signed char>(step)).toRatio();
            orlo.onTransposed(transposition, step);
        }
    }

    Note noteForPath(const OrloPathUnlimited& path) const
    {
        OrloRatio ratio = path.toRatio();
        ratio *= orlo.transposition();
        const auto factor = static_cast<float>(ratio.numerator()) / static_cast<float>(ratio.denominator());
        return Note::getNoteForPath(&path, static_cast<float>(settings.baseFrequency) * factor);
    }
};

float frequencyAbove(double calibration, double cents)
{
    return static_cast<float>(calibration * std::exp2(cents / 1200.0));
}

void expectNote(const Note& note, const QString& name, double cents, bool enharmonic = false)
{
    EXPECT_EQ(note.noteSpelling(), name);
    EXPECT_NEAR(note.cents(), cents, 0.01) << name.toStdString(); // single precision at the highest pitches
    EXPECT_EQ(note.enharmonic(), enharmonic) << name.toStdString();
}

TEST_F(NoteTest, RatiosAreNamedByTheWayTheyAreReached)
{
    QFile file(QStringLiteral(ORLO_TEST_DATA "/note-names.txt"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QStringList lines = QString::fromLatin1(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
    int pitches = 0;
    QString tuning;
    for (const QString& line : lines) {
        if (line.startsWith(u'#'))
            continue;
        if (line.startsWith(u"tuning"_s)) {
            tuning = line;
            const QStringList values = line.split(u';');
            tune(values[1].toDouble(), values[2].toDouble(), values[3], values[4] == u"tempered"_s);
            transpose(OrloPathUnlimited(values[5]));
            continue;
        }
        for (const QString& text : line.split(u", "_s)) {
            SCOPED_TRACE(::testing::Message() << qPrintable(tuning) << " to " << qPrintable(text));
            const QStringList words = text.split(u' ');
            const QString name = words[1].section(u'*', 0, 0);
            expectNote(noteForPath(OrloPathUnlimited(words[0])), name, words[2].toDouble(), name != words[1]);
            ++pitches;
        }
    }
    EXPECT_GT(pitches, 100);
}

TEST_F(NoteTest, EveryTemperedPitchHasItsOwnName)
{
    const QStringList names = u"C C# D Eb E F F# G G# A Bb B"_s.split(u' ');
    settings.calibrationFrequency = 442.0;
    for (int semitone = 0; semitone <= 96; ++semitone)
        expectNote(Note(frequencyAbove(442.0, (semitone - 57) * 100.0)),
                   names[semitone % 12] + QString::number(semitone / 12), 0.0);
}

TEST_F(NoteTest, BoundsLieOffTheCentreOfTwoSemitones)
{
    const std::tuple<double, const char*, double> frequencies[] = {
        {50.4, "A4", 50.4}, {50.6, "Bb4", -49.4}, {-49.4, "A4", -49.4}, {-49.6, "G#4", 50.4}};
    for (const auto& [above, name, cents] : frequencies) // cents above A4
        expectNote(Note(frequencyAbove(440.0, above)), QLatin1StringView(name), cents);
    // Below C0 the cents run the other way, and an octave still begins at C.
    const std::tuple<int, int, const char*, double> numbers[] = {
        {57, 50, "A4", 50.0},  {57, -50, "G#4", 50.0},  {0, 51, "C#0", -49.0}, {0, -40, "C0", -40.0},
        {0, -60, "B-1", 40.0}, {-11, -60, "C-1", 40.0}, {-12, 0, "C-1", 0.0},  {-13, 0, "B-2", 0.0},
    };
    for (const auto& [semitone, added, name, cents] : numbers)
        expectNote(Note(semitone, added), QLatin1StringView(name), cents);
}

TEST_F(NoteTest, BeyondTheBoundsCentsBreakOutOfTheIntervals)
{
    const std::tuple<const char*, float, const char*, double, bool> rows[] = {
        {"E4#", 50.5F, "E#4", 50.5, false},
        {"E4#", -49.4375F, "E#4", -49.4375, false},
        {"E4#", -49.5625F, "E4", 50.4375, ENHARMONIC},
        {"E4#", -60.0F, "E4", 40.0, ENHARMONIC},
        {"C0b", 55.0F, "C0", -45.0, ENHARMONIC},
    };
    for (const auto& [name, added, spelling, cents, isEnharmonic] : rows) {
        Note note(QLatin1StringView(name), 0);
        note.addCents(added);
        expectNote(note, QLatin1StringView(spelling), cents, isEnharmonic);
    }
}

TEST_F(NoteTest, BaseNoteLendsItsNameWhileTheFlagIsOff)
{
    const float ds4 = 311.1270F;
    tune(311.1270, 440.0, u"D#4"_s, false);
    const std::tuple<double, const char*, double> rows[] = {
        // cents above D#4
        {0.0, "D#4", 0.0},    {49.9, "D#4", 49.9},  {50.2, "Eb4", 50.2},
        {1200.0, "Eb5", 0.0}, {-49.9, "D#4", 50.1}, // octave and cents stay, even where the tuning's own name
                                                    // is the neighbour's
    };
    for (const auto& [above, name, cents] : rows)
        expectNote(Note(frequencyAbove(ds4, above)), QLatin1StringView(name), cents);

    Note walking(u"G3#"_s, 0);
    walking.makeEnharmonic();
    walking.addInterval(3);
    expectNote(walking, u"D#4"_s, 1.955, ENHARMONIC);

    settings.oneOneFreqTempered = true;
    expectNote(Note(ds4), u"Eb4"_s, 0.0);
    settings.oneOneFreqTempered = false;
    for (const QString& text : {u"Eb4"_s, u"E 4"_s, u""_s, u"h"_s}) {
        settings.baseNote = text;
        expectNote(Note(ds4), text == u"E 4"_s ? u"E4"_s : u"Eb4"_s, 0.0);
    }
}

TEST_F(NoteTest, TextsNumbersAndFrequenciesAgree)
{
    const std::tuple<const char*, const char*, int> rows[] = {
        {"C4#", "C#4", 49},      {"b-1bb", "Bbb-1", -3}, {"A4", "A4", 57},
        {"g10##", "G##10", 129}, {"F", "F0", 5},         {"d1-2b", "Db0", 1},
        {"e3x", "E3", 40},       {"", "C0", 0},          {"h2b", "Cb2", 23},
    };
    for (const auto& [text, spelling, semitone] : rows) {
        const Note note(QLatin1StringView(text), -7);
        EXPECT_EQ(note.noteSpelling(), QLatin1StringView(spelling));
        EXPECT_EQ(note.toSemitonePitch(), static_cast<float>(semitone - 0.07)) << text;
    }
    settings.calibrationFrequency = 442.0; // frequencies back are at 440 all the same
    EXPECT_EQ(Note(u"A4"_s, 0).toFrequency(), 440.0F);
    // The constant for a semitone is wide by 5e-8: exact would be 261.62557 and 905.7860.
    EXPECT_NEAR(Note(u"C4"_s, 0).toFrequency(), 261.62546, 0.00005);
    EXPECT_NEAR(Note(u"A5"_s, 50).toFrequency(), 905.7865, 0.0001);
}

TEST_F(NoteTest, WhatHasNoPitchStillEnds)
{
    const OrloPathUnlimited root;
    for (const float frequency : {0.0F, -440.0F, std::numeric_limits<float>::infinity(), std::nanf("")}) {
        expectNote(Note(frequency), u"C0"_s, 0.0);
        expectNote(Note::getNoteForPath(&root, frequency), u"C0"_s, 0.0, ENHARMONIC);
    }
    settings.baseFrequency = 0.0;
    expectNote(Note::getNoteForPath(&root, 440.0F), u"A4"_s, 0.0, ENHARMONIC);
}

} // namespace
