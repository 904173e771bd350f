#include "external/MidiBytes.h"

#include "external/MidiDouble.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using midi::Tuning;

namespace {

/// The fraction of a note whose two bytes would be `msb` and `lsb`, the latter with its own fraction.
constexpr double fraction(double msb, double lsb)
{
    return (msb + lsb / 128.0) / 128.0;
}

} // namespace

TEST(MidiBytes, TunesAKeyToTheNearestStep)
{
    struct Row
    {
        double note;
        Tuning tuning;
    };
    // A step is 1/16384 semitone.
    const Row rows[] = {
        {midi::noteOfFrequency(440.0F), {69, 0, 0}},
        {midi::noteOfFrequency(441.0F), {69, 5, 4}},
        {midi::noteOfFrequency(660.0F), {76, 2, 64}},
        {midi::noteOfFrequency(550.0F), {72, 110, 62}}, // 386.3137 cents: 110.4816 and 61.64
        {midi::noteOfFrequency(770.0F), {78, 88, 12}},  // 968.8259 cents: 88.0972 and 12.44
        {0.0, {0, 0, 0}},
        {60 + fraction(5, 127.4), {60, 5, 127}},
        {60 + fraction(5, 127.5), {60, 6, 0}},    // the last byte carries
        {60 + fraction(127, 127.6), {61, 0, 0}},  // both carry
        {60 + fraction(127, 127.4), {60, 127, 127}},
        {127 + fraction(126, 127.6), {127, 127, 0}},
        {127 + fraction(127, 127.6), {127, 127, 127}}, // a carry would leave the range
        {midi::TOP_NOTE, {127, 127, 127}},
    };
    for (const auto& [note, expected] : rows) {
        const Tuning tuning = midi::tuningOfNote(note);
        EXPECT_EQ(tuning, expected) << note << ": " << int(tuning.semitone) << ' ' << int(tuning.fractionMsb) << ' '
                                    << int(tuning.fractionLsb);
    }
    EXPECT_NEAR(midi::TOP_NOTE, 127.99999, 1e-9);
}

// Decoded again, every pitch between two keys is at most half a step away, whichever way it rounds.
TEST(MidiBytes, IsNeverFurtherOffThanHalfAStep)
{
    for (int i = 0; i < 128 * 1000; ++i) {
        const double note = i * 0.001 + 0.000137;
        const Tuning tuning = midi::tuningOfNote(note);
        const double decoded = tuning.semitone + tuning.fractionMsb / 128.0 + tuning.fractionLsb / 16384.0;
        ASSERT_LE(std::abs(decoded - note), 0.5 / 16384.0 + 1e-12) << note;
    }
}

TEST(MidiBytes, WhatIsNoPitchLiesBelowAll)
{
    for (const float hz : {0.0F, -1.0F, -INFINITY, NAN})
        EXPECT_EQ(midi::noteOfFrequency(hz), -std::numeric_limits<double>::infinity()) << hz;
    EXPECT_EQ(midi::noteOfFrequency(INFINITY), std::numeric_limits<double>::infinity());
}

TEST(MidiBytes, CountsKeysInOneByte)
{
    midi::Bytes message;
    midi::beginTuningChange(message, 258);
    midi::addKeyTuning(message, 160, {1, 2, 3});
    midi::endTuningChange(message);
    EXPECT_EQ(hex(message), QStringLiteral("F0 7F 7F 08 02 00 02 A0 01 02 03 F7"));
    EXPECT_EQ(message.size(), midi::tuningChangeSize(1));
}

TEST(MidiBytes, BendsByTheFactorOfTheRange)
{
    struct Row
    {
        double factor;
        const char* lsbMsb;
    };
    // Two times seven bits: 64 * 128 steps for a factor of 1.
    constexpr double step = 1.0 / (64 * 128);
    const Row rows[] = {
        {0.0, "00 40"},
        {0.5, "00 60"},
        {0.8, "1A 73"}, // 115.2, and 25.6 of 128
        {step, "01 40"},
        {127.4 * step, "7F 40"},
        {127.6 * step, "00 41"}, // the low byte carries
        {1.0 - step, "7F 7F"},
        {1.0 - 0.4 * step, "7F 7F"}, // both would carry
        {1.0, "7F 7F"},
        {7.0, "7F 7F"},
        {-0.5, "00 20"},
        {-1.0 + step, "01 00"},
        {-1.0 + 0.4 * step, "00 00"},
        {-1.0, "00 00"},
        {-7.0, "00 00"},
        {INFINITY, "7F 7F"},
        {-INFINITY, "00 00"},
    };
    for (const auto& [factor, expected] : rows) {
        const midi::Bend bend = midi::bendOfFactor(factor);
        EXPECT_EQ(hex(midi::pitchBend(9, bend.msb, bend.lsb)),
                  QStringLiteral("E9 ") + QLatin1StringView(expected))
            << factor;
    }
}

TEST(MidiBytes, AGlissandoEndsAtTheLimit)
{
    // Taken at 60.3 with key 60: 30 cents from the key. 250 cents leave 200 for the glissando.
    EXPECT_NEAR(midi::bendCents(60.3, 60.3, 60, 250), 30.0, 1e-9);
    EXPECT_NEAR(midi::bendCents(61.3, 60.3, 60, 250), 130.0, 1e-9);
    EXPECT_NEAR(midi::bendCents(62.2, 60.3, 60, 250), 220.0, 1e-9);
    EXPECT_NEAR(midi::bendCents(62.4, 60.3, 60, 250), 230.0, 1e-9);
    EXPECT_NEAR(midi::bendCents(127.0, 60.3, 60, 250), 230.0, 1e-9);
    EXPECT_NEAR(midi::bendCents(58.0, 60.3, 60, 250), -170.0, 1e-9);
    // Without room for a glissando it stays where it began.
    EXPECT_NEAR(midi::bendCents(72.0, 60.3, 60, 50), 30.0, 1e-9);
    EXPECT_NEAR(midi::bendCents(-INFINITY, 60.3, 60, 50), 30.0, 1e-9);
    // Midway, under the upper key, is the lower end of the narrowest range.
    const midi::Bend midway = midi::bendOfCents(midi::bendCents(69.5, 69.5, 70, 50), 50);
    EXPECT_EQ(midway.factor, -1.0);
    // No range, no bend, whatever the option's file says.
    EXPECT_EQ(hex(midi::pitchBend(0, midi::bendOfCents(0.0, 0).msb, midi::bendOfCents(0.0, 0).lsb)),
              QStringLiteral("E0 00 40"));
}

TEST(MidiBytes, SetsTheRangeInSemitonesAndCents)
{
    struct Row
    {
        int cents;
        const char* semitones;
        const char* rest;
    };
    const Row rows[] = {{50, "00", "32"},    {200, "02", "00"},  {250, "02", "32"}, {1250, "0C", "32"},
                        {1299, "0C", "63"},  {0, "00", "00"},    {-50, "00", "00"}, {2000000000, "7F", "00"},
                        {-2000000000, "00", "00"}};
    for (const auto& [cents, semitones, rest] : rows) {
        const midi::BendRange range = midi::bendRange(cents);
        const QStringList expected{QStringLiteral("B0 64 00"),
                                   QStringLiteral("B0 65 00"),
                                   QStringLiteral("B0 06 ") + QLatin1StringView(semitones),
                                   QStringLiteral("B0 26 ") + QLatin1StringView(rest),
                                   QStringLiteral("B0 64 7F"),
                                   QStringLiteral("B0 65 7F")};
        for (size_t i = 0; i < range.messages.size(); ++i)
            EXPECT_EQ(hex(range.messages[i]), expected[static_cast<qsizetype>(i)]) << cents;
    }
}
