#include "model/Note.h"
#include "app/Accessors.h"
#include "app/Settings.h"
#include "model/NoteInterval.h"
#include "model/Orlo.h"
#include "model/OrloPathUnlimited.h"
#include "support/LocaleTest.h"
#include "support/LogCatcher.h"

#include <cmath>
#include <limits>
#include <memory>
#include <string>

using namespace Qt::StringLiterals;

namespace {

constexpr bool ENHARMONIC = true;
constexpr double CENTS_TOLERANCE = 0.01; // single precision at the highest pitches

struct Tuning
{
    double base; // Hz of 1/1
    double calibration;
    const char* baseNote;
    bool oneOneFreqTempered;
};

const Tuning A4{440.0, 440.0, "A 4", true};
const Tuning C4{261.6256, 440.0, "C 4", false};
const Tuning Ds4{311.1270, 440.0, "D#4", false};
const Tuning A442{442.0, 442.0, "A 4", true};
const Tuning A4at442{440.0, 442.0, "A 4", true};
const Tuning A0{27.5, 440.0, "A 0", true};
const Tuning C8{4186.01, 440.0, "C 8", false};

struct Named
{
    const char* path;
    const char* name;
    double cents;
    bool enharmonic = false;
};

struct NamedGroup
{
    Tuning tuning;
    const char* transposition;
    QList<Named> pitches;
};

// Worked out apart from the program: the names by the diatonic intervals, the cents as the
// distance of the exact ratio from the named semitone.
// clang-format off
const NamedGroup NAMED[] = {
    {A4, "/", {
        {"/", "A4", 0.00}, {"/2", "A5", 0.00}, {"/-2", "A3", 0.00}, {"/3", "E5", 1.96}, {"/-3", "D4", -1.96},
        {"/5", "C#5", -13.69}, {"/-5", "F4", 13.69}, {"/7", "G5", -31.17}, {"/-7", "B3", 31.17},
        {"/11", "D#5", -48.68}, {"/-11", "Eb4", 48.68}, {"/13", "F5", 40.53}, {"/-13", "C#4", -40.53},
        {"/17", "Bb4", 4.96}, {"/-17", "G#4", -4.96}, {"/19", "C5", -2.49}, {"/-19", "F#4", 2.49},
        {"/23", "D#5", 28.27}, {"/-23", "Eb4", -28.27}, {"/29", "G5", 29.58}, {"/-29", "B3", -29.58},
        {"/31", "G#5", 45.04}, {"/-31", "Bb3", -45.04}, {"/3/3", "B5", 3.91}, {"/3/3/3/3", "C#7", 7.82},
        {"/-3/-3/-3", "C3", -5.87}, {"/5/5", "E#5", -27.37}, {"/-5/-5", "Db4", 27.37},
        {"/5/5/5", "G##5", -41.06}, {"/7/7", "E6", 37.65, ENHARMONIC}, {"/-7/-7", "D3", -37.65, ENHARMONIC},
        {"/11/-3", "G4", 49.36, ENHARMONIC}, {"/13/5", "A5", 26.84}, {"/3/5/7", "F#6", -42.91},
        {"/-3/-5", "Bb3", 11.73}, {"/11/11", "G#5", 2.64, ENHARMONIC}, {"/13/13", "D6", -18.94, ENHARMONIC},
        {"/29/-31", "Ab4", -15.46}, {"/23/-11", "Bb4", -23.04, ENHARMONIC}, {"/17/17/17", "Dbb5", 14.87},
        {"/19/-5/2", "Ab5", 11.20}, {"/2/2/3/31", "D#8", 46.99}, {"/-2/-2/-2/-2", "A0", 0.00},
        {"/-2/-2/-2/-2/-2/-3", "D-1", -1.96}, {"/3/3/3/3/3/3", "D#8", 11.73},
        {"/5/5/5/5/5/3", "B6", 33.52, ENHARMONIC}, {"/-17/-17/-17/-17", "F4", -19.82, ENHARMONIC},
        {"/-5/-5/-5/-5/-5/-13", "F2", 27.90, ENHARMONIC}}},
    {A4, "/3", {
        {"/", "E5", 1.96}, {"/5", "G#5", -11.73}, {"/-3", "A4", 0.00}, {"/-7", "F#4", 33.13},
        {"/11", "A#5", -46.73}, {"/13", "C6", 42.48}}},
    {A4, "/-5", {
        {"/", "F4", 13.69}, {"/3", "C5", 15.64}, {"/-5", "Db4", 27.37}, {"/17", "Gb4", 18.64},
        {"/-31", "Gb3", -31.35}}},
    {A4, "/7/7", {
        {"/", "E6", 37.65, ENHARMONIC}, {"/-7", "G5", -31.17}, {"/3", "B6", 39.61, ENHARMONIC},
        {"/19", "G6", 35.16, ENHARMONIC}}},
    {A4, "/11/-3/2", {
        {"/", "G5", 49.36, ENHARMONIC}, {"/5", "B5", 35.68, ENHARMONIC}, {"/-11", "D5", -1.96},
        {"/29", "F#6", -21.06}}},
    {A4, "/5/5/5", {
        {"/", "G##5", -41.06}, {"/5", "C6", 45.25, ENHARMONIC}, {"/-5/-5", "C#5", -13.69},
        {"/3", "D##6", -39.10}, {"/5/5/5/-7", "Bb5", 49.06, ENHARMONIC}}},
    {C4, "/", {
        {"/", "C4", 0.00}, {"/3", "G4", 1.96}, {"/-3", "F3", -1.95}, {"/5", "E4", -13.69},
        {"/-5", "Ab3", 13.69}, {"/7", "Bb4", -31.17}, {"/-7", "D3", 31.17}, {"/11", "F#4", -48.68},
        {"/13", "Ab4", 40.53}, {"/17", "Db4", 4.96}, {"/19", "Eb4", -2.49}, {"/23", "F#4", 28.27},
        {"/29", "Bb4", 29.58}, {"/31", "B4", 45.04}, {"/3/3/3/3/3/3", "F#7", 11.73},
        {"/-3/-3/-3/-3/-3/-3", "Gb0", -11.73}}},
    {Ds4, "/", {
        {"/", "D#4", 0.00}, {"/3", "A#4", 1.96}, {"/5", "F##4", -13.69}, {"/-5", "B3", 13.69},
        {"/7", "C#5", -31.17}, {"/-2", "D#3", 0.00}}},
    {Ds4, "/5", {
        {"/5", "A##4", -27.37}, {"/-5/3", "A#4", 1.96}}},
    {A442, "/", {
        {"/3", "E5", 1.96}, {"/5", "C#5", -13.69}, {"/-7", "B3", 31.17}, {"/13", "F5", 40.53}}},
    {A4at442, "/", {
        {"/", "A4", -7.85}, {"/3", "E5", -5.90}, {"/-5", "F4", 5.83}, {"/11", "D5", 43.47, ENHARMONIC},
        {"/5/5/5/5", "C6", 37.40, ENHARMONIC}}},
    {A0, "/", {
        {"/-3", "D0", -1.96}, {"/-2/-3", "D-1", -1.96}, {"/-2/3", "E0", 1.96}, {"/-2/-2/5", "C#-1", -13.69},
        {"/-31", "Bb-1", -45.04}, {"/-2/-7", "B-2", 31.17}}},
    {C8, "/", {
        {"/3", "G8", 1.96}, {"/-17", "B7", -4.96}}},
    {A4, "/-3/-3/-3/-3/-3/-3", {
        {"/-3/-3/-3/-3/-3/-3", "Bbb-3", -23.46}, {"/-3/5/-13", "Eb0", 32.10, ENHARMONIC}}},
};
// clang-format on

class NoteTest : public LocaleTest
{
protected:
    NoteTest() { app::setParts({.orlo = &orlo, .settings = &settings}); }
    ~NoteTest() override { app::setParts({}); }

    void tune(const Tuning& tuning)
    {
        settings.baseFrequency = tuning.base;
        settings.calibrationFrequency = tuning.calibration;
        settings.baseNote = QString::fromLatin1(tuning.baseNote);
        settings.oneOneFreqTempered = tuning.oneOneFreqTempered;
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

    Settings settings;
    Orlo orlo;
};
IN_ALL_LOCALES(NoteTest);

float frequencyAbove(double calibration, double cents)
{
    return static_cast<float>(calibration * std::exp2(cents / 1200.0));
}

void expectNote(const Note& note, const char* name, double cents, bool enharmonic = false)
{
    EXPECT_EQ(note.noteSpelling(), QLatin1StringView(name));
    EXPECT_NEAR(note.cents(), cents, CENTS_TOLERANCE) << name;
    EXPECT_EQ(note.enharmonic(), enharmonic) << name;
}

TEST_P(NoteTest, RatiosAreNamedByTheWayTheyAreReached)
{
    for (const NamedGroup& group : NAMED) {
        tune(group.tuning);
        transpose(OrloPathUnlimited(QString::fromLatin1(group.transposition)));
        for (const Named& row : group.pitches) {
            SCOPED_TRACE(std::string(group.tuning.baseNote) + ' ' + group.transposition + " to " + row.path);
            expectNote(noteForPath(OrloPathUnlimited(QString::fromLatin1(row.path))), row.name, row.cents,
                       row.enharmonic);
        }
    }
}

TEST_P(NoteTest, EveryTemperedPitchHasItsOwnName)
{
    const char* const names[] = {"C", "C#", "D", "Eb", "E", "F", "F#", "G", "G#", "A", "Bb", "B"};
    for (const double calibration : {440.0, 442.0}) {
        settings.calibrationFrequency = calibration;
        for (int semitone = 0; semitone <= 96; ++semitone) {
            const std::string name = names[semitone % 12] + std::to_string(semitone / 12);
            expectNote(Note(frequencyAbove(calibration, (semitone - 57) * 100.0)), name.c_str(), 0.0);
        }
    }
}

TEST_P(NoteTest, BoundsLieOffTheCentreOfTwoSemitones)
{
    expectNote(Note(440.0F), "A4", 0.0);
    expectNote(Note(frequencyAbove(440.0, 50.4)), "A4", 50.4);
    expectNote(Note(frequencyAbove(440.0, 50.6)), "Bb4", -49.4);
    expectNote(Note(frequencyAbove(440.0, -49.4)), "A4", -49.4);
    expectNote(Note(frequencyAbove(440.0, -49.6)), "G#4", 50.4);
    expectNote(Note(frequencyAbove(440.0, -60.0)), "G#4", 40.0);

    expectNote(Note(57, 50), "A4", 50.0);
    expectNote(Note(57, -50), "G#4", 50.0);
    expectNote(Note(0, 51), "C#0", -49.0);
    // Below C0 the cents run the other way, and an octave still begins at C.
    expectNote(Note(0, -40), "C0", -40.0);
    expectNote(Note(0, -60), "B-1", 40.0);
    expectNote(Note(-11, -60), "C-1", 40.0);
    expectNote(Note(-12, 0), "C-1", 0.0);
    expectNote(Note(-13, 0), "B-2", 0.0);
}

TEST_P(NoteTest, BeyondTheBoundsCentsBreakOutOfTheIntervals)
{
    const LogCatcher log;
    Note note(u"E4#"_s, 0);
    note.addCents(50.5F);
    expectNote(note, "E#4", 50.5);
    note.addCents(-99.9375F);
    expectNote(note, "E#4", -49.4375);
    EXPECT_TRUE(log.lines().isEmpty());

    note.addCents(-0.0625F);
    EXPECT_TRUE(note.enharmonic());
    ASSERT_EQ(log.lines().size(), 2);
    EXPECT_EQ(log.lines()[0].type, QtDebugMsg);
    EXPECT_EQ(log.lines()[0].text, u"Note:addCents - breaking out of rule system @ mCents -49.5"_s);
    EXPECT_EQ(log.lines()[1].text, u">50 ct -> Note displayed as enharmonic"_s);

    Note other(u"E4#"_s, 0);
    other.addCents(-60.0F);
    expectNote(other, "E4", 40.0, ENHARMONIC);
    other = Note(u"C0b"_s, 0);
    other.addCents(55.0F);
    expectNote(other, "C0", -45.0, ENHARMONIC);
}

TEST_P(NoteTest, FifthsWalkThroughAllAccidentalsThenBreakOut)
{
    const QStringList up = u"G D A E B F# C# G# D# A# E# B# F## C## G## D## A## E## B##"_s.split(u' ');
    const QStringList down = u"F Bb Eb Ab Db Gb Cb Fb Bbb Ebb Abb Dbb Gbb Cbb Fbb"_s.split(u' ');
    const auto walk = [](const QStringList& names, int prime, int semitones) {
        Note note(u"C4"_s, 0);
        for (int i = 0; i < names.size(); ++i) {
            note.addInterval(prime);
            EXPECT_EQ(note.noteSpelling(), names[i] + QString::number(note.octave()));
            EXPECT_EQ(note.toSemitonePitch(), static_cast<float>(48 + (i + 1) * semitones));
            EXPECT_FALSE(note.enharmonic());
        }
        return note;
    };

    Note note = walk(up, 3, 7); // B##13
    note.addInterval(3);
    expectNote(note, "G#15", 0.0, ENHARMONIC);
    // By frequency now: the just fifth is 1.955 cents wide, and the constant for a semitone adds
    // 0.00008 for each of 131 semitones above A4.
    note.addInterval(3);
    expectNote(note, "Eb16", 1.965, ENHARMONIC);
    EXPECT_GT(note.cents(), 1.96F);
    note = walk(down, -3, -7); // Fbb-5
    note.addInterval(-3);
    EXPECT_EQ(note.toSemitonePitch(), -64.0F);
    expectNote(note, "G#-6", 0.0, ENHARMONIC);
}

TEST_P(NoteTest, BaseNoteLendsItsNameWhileTheFlagIsOff)
{
    const float ds4 = 311.1270F;
    tune(Ds4);
    expectNote(Note(ds4), "D#4", 0.0);
    expectNote(Note(frequencyAbove(ds4, 49.9)), "D#4", 49.9);
    expectNote(Note(frequencyAbove(ds4, 50.2)), "Eb4", 50.2);
    expectNote(Note(ds4 * 2), "Eb5", 0.0);
    // Octave and cents stay, even where the tuning's own name is the neighbour's.
    expectNote(Note(frequencyAbove(ds4, -49.9)), "D#4", 50.1);

    Note walking(u"G3#"_s, 0);
    walking.makeEnharmonic();
    walking.addInterval(3);
    expectNote(walking, "D#4", 1.955, ENHARMONIC);

    settings.oneOneFreqTempered = true;
    expectNote(Note(ds4), "Eb4", 0.0);
    settings.oneOneFreqTempered = false;
    for (const char* text : {"Eb4", "E 4", "", "h"}) {
        settings.baseNote = QString::fromLatin1(text);
        expectNote(Note(ds4), std::string_view(text) == "E 4" ? "E4" : "Eb4", 0.0);
    }
}

TEST_P(NoteTest, TextsNumbersAndFrequenciesAgree)
{
    const struct
    {
        const char* text;
        const char* spelling;
        int semitone;
    } rows[] = {{"C4#", "C#4", 49},      {"b-1bb", "Bbb-1", -3}, {"A4", "A4", 57},
                {"g10##", "G##10", 129}, {"F", "F0", 5},         {"d1-2b", "Db0", 1},
                {"e3x", "E3", 40},       {"", "C0", 0},          {"h2b", "Cb2", 23}};
    for (const auto& row : rows) {
        const Note note(QString::fromLatin1(row.text), -7);
        EXPECT_EQ(note.noteSpelling(), QLatin1StringView(row.spelling));
        EXPECT_EQ(note.toSemitonePitch(), static_cast<float>(row.semitone - 0.07)) << row.text;
    }

    settings.calibrationFrequency = 442.0; // frequencies back are at 440 all the same
    EXPECT_EQ(Note(u"A4"_s, 0).toFrequency(), 440.0F);
    // The constant for a semitone is wide by 5e-8: exact would be 261.62557 and 905.7860.
    EXPECT_NEAR(Note(u"C4"_s, 0).toFrequency(), 261.62546, 0.00005);
    EXPECT_NEAR(Note(u"A5"_s, 50).toFrequency(), 905.7865, 0.0001);
}

TEST_P(NoteTest, WhatHasNoPitchStillEnds)
{
    for (const float frequency : {0.0F, -440.0F, std::numeric_limits<float>::infinity(), std::nanf("")}) {
        expectNote(Note(frequency), "C0", 0.0);
        expectNote(Note::getNoteForPath(std::make_unique<OrloPathUnlimited>().get(), frequency), "C0", 0.0,
                   ENHARMONIC);
    }
    settings.baseFrequency = 0.0;
    expectNote(Note::getNoteForPath(std::make_unique<OrloPathUnlimited>().get(), 440.0F), "A4", 0.0,
               ENHARMONIC);
}

TEST(NoteInterval, StandsForAPrime)
{
    const struct
    {
        int prime;
        const char* text;
        int semitones;
    } rows[] = {{2, "p8", 12}, {3, "p5", 7},  {5, "M3", 4},    {7, "m7", 10},  {11, "aug4", 6}, {13, "m6", 8},
                {17, "m2", 1}, {19, "m3", 3}, {23, "aug4", 6}, {29, "m7", 10}, {31, "M7", 11}};
    for (const auto& row : rows) {
        const NoteInterval up(row.prime);
        const NoteInterval down(-row.prime);
        EXPECT_EQ(up.toString(), QLatin1StringView(row.text));
        EXPECT_EQ(down.toString(), u'-' + QString::fromLatin1(row.text));
        EXPECT_EQ(up.toSemitoneDistance(), row.semitones);
        EXPECT_EQ(down.toSemitoneDistance(), -row.semitones);
    }
}

TEST(NoteInterval, ReadsTexts)
{
    const struct
    {
        const char* text;
        const char* printed;
        int semitones;
    } rows[] = {{"-M3", "-M3", -4},  {"dim3", "dim3", 2}, {"dim5", "dim5", 6}, {"dim8", "dim8", 11},
                {"aug1", "aug1", 1}, {"m5", "dim5", 6},   {"M4", "p4", 5},     {"-aug2", "-aug2", -3},
                {"x6", "M6", 9},     {"p1", "p1", 0},     {"m9", "9", -1}};
    for (const auto& row : rows) {
        const NoteInterval interval(QString::fromLatin1(row.text));
        EXPECT_EQ(interval.toString(), QLatin1StringView(row.printed));
        EXPECT_EQ(interval.toSemitoneDistance(), row.semitones) << row.text;
    }
    EXPECT_EQ(NoteInterval(u"pX"_s).steps(), -1);
    EXPECT_EQ(NoteInterval(QString()).toSemitoneDistance(), 0);
}

} // namespace
