#include "model/Note.h"
#include "model/LatticeSupport.h"
#include "model/OrloPathUnlimited.h"
#include "support/LocaleTest.h"

#include <cmath>
#include <limits>

namespace {

constexpr bool ENHARMONIC = true;

struct Tuning
{
    double base, calibration; // Hz
    const char* baseNote;
    bool isTempered; // 1/1
};

const Tuning A4{440.0, 440.0, "A 4", true};
const Tuning C4{261.6256, 440.0, "C 4", false};
const Tuning Ds4{311.1270, 440.0, "D#4", false};

// Tuning and transposition; then of each pitch its path, its name, with a star where it is
// enharmonic, and its cents. Worked out apart from the program: the names by the diatonic intervals,
// the cents as the distance of the exact ratio from the named semitone.
// clang-format off
const std::tuple<Tuning, const char*, const char*> NAMED[] = {
    {A4, "/",
     "/ A4 0.00, /2 A5 0.00, /-2 A3 0.00, /3 E5 1.96, /-3 D4 -1.96, /5 C#5 -13.69, /-5 F4 13.69, "
     "/7 G5 -31.17, /-7 B3 31.17, /11 D#5 -48.68, /-11 Eb4 48.68, /13 F5 40.53, /-13 C#4 -40.53, "
     "/17 Bb4 4.96, /-17 G#4 -4.96, /19 C5 -2.49, /-19 F#4 2.49, /23 D#5 28.27, /-23 Eb4 -28.27, "
     "/29 G5 29.58, /-29 B3 -29.58, /31 G#5 45.04, /-31 Bb3 -45.04, /3/3 B5 3.91, /3/3/3/3 C#7 7.82, "
     "/-3/-3/-3 C3 -5.87, /5/5 E#5 -27.37, /-5/-5 Db4 27.37, /5/5/5 G##5 -41.06, /7/7 E6* 37.65, "
     "/-7/-7 D3* -37.65, /11/-3 G4* 49.36, /13/5 A5 26.84, /3/5/7 F#6 -42.91, /-3/-5 Bb3 11.73, "
     "/11/11 G#5* 2.64, /13/13 D6* -18.94, /29/-31 Ab4 -15.46, /23/-11 Bb4* -23.04, "
     "/17/17/17 Dbb5 14.87, /19/-5/2 Ab5 11.20, /2/2/3/31 D#8 46.99, /-2/-2/-2/-2 A0 0.00, "
     "/-2/-2/-2/-2/-2/-3 D-1 -1.96, /3/3/3/3/3/3 D#8 11.73, /5/5/5/5/5/3 B6* 33.52, "
     "/-17/-17/-17/-17 F4* -19.82, /-5/-5/-5/-5/-5/-13 F2* 27.90"},
    {A4, "/3", "/ E5 1.96, /5 G#5 -11.73, /-3 A4 0.00, /-7 F#4 33.13, /11 A#5 -46.73, /13 C6 42.48"},
    {A4, "/-5", "/ F4 13.69, /3 C5 15.64, /-5 Db4 27.37, /17 Gb4 18.64, /-31 Gb3 -31.35"},
    {A4, "/7/7", "/ E6* 37.65, /-7 G5 -31.17, /3 B6* 39.61, /19 G6* 35.16"},
    {A4, "/11/-3/2", "/ G5* 49.36, /5 B5* 35.68, /-11 D5 -1.96, /29 F#6 -21.06"},
    {A4, "/5/5/5", "/ G##5 -41.06, /5 C6* 45.25, /-5/-5 C#5 -13.69, /3 D##6 -39.10, /5/5/5/-7 Bb5* 49.06"},
    {C4, "/",
     "/ C4 0.00, /3 G4 1.96, /-3 F3 -1.95, /5 E4 -13.69, /-5 Ab3 13.69, /7 Bb4 -31.17, /-7 D3 31.17, "
     "/11 F#4 -48.68, /13 Ab4 40.53, /17 Db4 4.96, /19 Eb4 -2.49, /23 F#4 28.27, /29 Bb4 29.58, "
     "/31 B4 45.04, /3/3/3/3/3/3 F#7 11.73, /-3/-3/-3/-3/-3/-3 Gb0 -11.73"},
    {Ds4, "/", "/ D#4 0.00, /3 A#4 1.96, /5 F##4 -13.69, /-5 B3 13.69, /7 C#5 -31.17, /-2 D#3 0.00"},
    {Ds4, "/5", "/5 A##4 -27.37, /-5/3 A#4 1.96"},
    {{442.0, 442.0, "A 4", true}, "/", "/3 E5 1.96, /5 C#5 -13.69, /-7 B3 31.17, /13 F5 40.53"},
    {{440.0, 442.0, "A 4", true}, "/",
     "/ A4 -7.85, /3 E5 -5.90, /-5 F4 5.83, /11 D5* 43.47, /5/5/5/5 C6* 37.40"},
    {{27.5, 440.0, "A 0", true}, "/",
     "/-3 D0 -1.96, /-2/-3 D-1 -1.96, /-2/3 E0 1.96, /-2/-2/5 C#-1 -13.69, /-31 Bb-1 -45.04, "
     "/-2/-7 B-2 31.17"},
    {{4186.01, 440.0, "C 8", false}, "/", "/3 G8 1.96, /-17 B7 -4.96"},
    {A4, "/-3/-3/-3/-3/-3/-3", "/-3/-3/-3/-3/-3/-3 Bbb-3 -23.46, /-3/5/-13 Eb0* 32.10"},
    // Fifths through all accidentals, and one more.
    {A4, "/", "/3/3/3/3/3/3/3/3/3/3/3/3/3/3/3/3 B##13 31.28, /3/3/3/3/3/3/3/3/3/3/3/3/3/3/3/3/3 G#14* 33.24, "
     "/-3/-3/-3/-3/-3/-3/-3/-3/-3/-3/-3/-3/-3/-3/-3/-3/-3/-3 Fbb-6 -35.19, "
     "/-3/-3/-3/-3/-3/-3/-3/-3/-3/-3/-3/-3/-3/-3/-3/-3/-3/-3/-3 G#-7* -37.15"},
};
// clang-format on

class NoteTest : public LocaleTest, protected LatticeFixture
{
protected:
    void tune(const Tuning& tuning)
    {
        settings.baseFrequency = tuning.base;
        settings.calibrationFrequency = tuning.calibration;
        settings.baseNote = QLatin1StringView(tuning.baseNote);
        settings.oneOneFreqTempered = tuning.isTempered;
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
IN_ALL_LOCALES(NoteTest);

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

TEST_P(NoteTest, RatiosAreNamedByTheWayTheyAreReached)
{
    for (const auto& [tuning, transposition, texts] : NAMED) {
        tune(tuning);
        transpose(OrloPathUnlimited(QLatin1StringView(transposition)));
        for (const QString& text : QString::fromLatin1(texts).split(u", "_s)) {
            SCOPED_TRACE(::testing::Message()
                         << tuning.baseNote << ' ' << transposition << " to " << qPrintable(text));
            const QStringList words = text.split(u' ');
            const QString name = words[1].section(u'*', 0, 0);
            expectNote(noteForPath(OrloPathUnlimited(words[0])), name, words[2].toDouble(), name != words[1]);
        }
    }
}

TEST_P(NoteTest, EveryTemperedPitchHasItsOwnName)
{
    const QStringList names = u"C C# D Eb E F F# G G# A Bb B"_s.split(u' ');
    settings.calibrationFrequency = 442.0;
    for (int semitone = 0; semitone <= 96; ++semitone)
        expectNote(Note(frequencyAbove(442.0, (semitone - 57) * 100.0)),
                   names[semitone % 12] + QString::number(semitone / 12), 0.0);
}

TEST_P(NoteTest, BoundsLieOffTheCentreOfTwoSemitones)
{
    const std::tuple<double, const char*, double> frequencies[] = {// cents above A4
                                                                   {50.4, "A4", 50.4},
                                                                   {50.6, "Bb4", -49.4},
                                                                   {-49.4, "A4", -49.4},
                                                                   {-49.6, "G#4", 50.4}};
    for (const auto& [above, name, cents] : frequencies)
        expectNote(Note(frequencyAbove(440.0, above)), QLatin1StringView(name), cents);
    // Below C0 the cents run the other way, and an octave still begins at C.
    const std::tuple<int, int, const char*, double> numbers[] = {
        {57, 50, "A4", 50.0},  {57, -50, "G#4", 50.0},  {0, 51, "C#0", -49.0}, {0, -40, "C0", -40.0},
        {0, -60, "B-1", 40.0}, {-11, -60, "C-1", 40.0}, {-12, 0, "C-1", 0.0},  {-13, 0, "B-2", 0.0},
    };
    for (const auto& [semitone, added, name, cents] : numbers)
        expectNote(Note(semitone, added), QLatin1StringView(name), cents);
}

TEST_P(NoteTest, BeyondTheBoundsCentsBreakOutOfTheIntervals)
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

TEST_P(NoteTest, BaseNoteLendsItsNameWhileTheFlagIsOff)
{
    const float ds4 = 311.1270F;
    tune(Ds4);
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

TEST_P(NoteTest, TextsNumbersAndFrequenciesAgree)
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

TEST_P(NoteTest, WhatHasNoPitchStillEnds)
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
