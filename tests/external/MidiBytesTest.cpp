#include "external/MidiBytes.h"

#include "external/MidiDouble.h"

#include <gtest/gtest.h>

#include <cmath>

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
    const std::pair<double, Tuning> rows[] = {
        // a step is 1/16384 semitone
        {midi::noteOfFrequency(440.0F), {69, 0, 0}},
        {midi::noteOfFrequency(441.0F), {69, 5, 4}},
        {midi::noteOfFrequency(660.0F), {76, 2, 64}},
        {midi::noteOfFrequency(770.0F), {78, 88, 12}}, // 968.8259 cents: 88.0972 and 12.44
        {60 + fraction(5, 127.5), {60, 6, 0}},         // the last byte carries
        {60 + fraction(127, 127.6), {61, 0, 0}},       // both carry
        {127 + fraction(126, 127.6), {127, 127, 0}},
        {127 + fraction(127, 127.6), {127, 127, 127}}, // a carry would leave the range
        {midi::TOP_NOTE, {127, 127, 127}},
    };
    for (const auto& [note, expected] : rows)
        EXPECT_EQ(midi::tuningOfNote(note), expected) << note;
    EXPECT_NEAR(midi::TOP_NOTE, 127.99999, 1e-9);
}

TEST(MidiBytes, CountsKeysInOneByte)
{
    midi::Bytes message;
    midi::beginTuningChange(message, 258);
    midi::addKeyTuning(message, 160, {1, 2, 3});
    midi::endTuningChange(message);
    EXPECT_EQ(hex(message.data(), message.size()), "F0 7F 7F 08 02 00 02 A0 01 02 03 F7");
    EXPECT_EQ(message.size(), midi::tuningChangeSize(1));
}

TEST(MidiBytes, BendsByTheFactorOfTheRange)
{
    // Two times seven bits: 64 * 128 steps for a factor of 1.
    constexpr double step = 1.0 / (64 * 128);
    const std::tuple<double, int, int> rows[] = {
        // factor, low and high byte
        {0.0, 0x00, 0x40},          {0.5, 0x00, 0x60},
        {0.8, 0x1A, 0x73}, // 115.2, and 25.6 of 128
        {step, 0x01, 0x40},         {127.4 * step, 0x7F, 0x40},
        {127.6 * step, 0x00, 0x41},                                 // the low byte carries
        {1.0 - step, 0x7F, 0x7F},   {1.0 - 0.4 * step, 0x7F, 0x7F}, // both would carry
        {1.0, 0x7F, 0x7F},          {7.0, 0x7F, 0x7F},
        {INFINITY, 0x7F, 0x7F},     {-0.5, 0x00, 0x20},
        {-1.0 + step, 0x01, 0x00},  {-1.0 + 0.4 * step, 0x00, 0x00},
        {-1.0, 0x00, 0x00},         {-7.0, 0x00, 0x00},
        {-INFINITY, 0x00, 0x00},
    };
    for (const auto& [factor, lsb, msb] : rows) {
        const midi::Bend bend = midi::bendOfFactor(factor);
        EXPECT_EQ(bend.lsb, lsb) << factor;
        EXPECT_EQ(bend.msb, msb) << factor;
    }
}

TEST(MidiBytes, AGlissandoEndsAtTheLimit)
{
    // Taken at 60.3 with key 60: 30 cents from the key. 250 cents leave 200 for the glissando.
    const std::tuple<double, int, double> rows[] = {
        // note, range, cents
        {60.3, 250, 30.0},  {61.3, 250, 130.0},    {62.2, 250, 220.0},
        {62.4, 250, 230.0}, {127.0, 250, 230.0},   {58.0, 250, -170.0},
        {72.0, 50, 30.0},   {-INFINITY, 50, 30.0}, // without room it stays where it began
    };
    for (const auto& [note, range, cents] : rows)
        EXPECT_NEAR(midi::bendCents(note, 60.3, 60, range), cents, 1e-9) << note << " in " << range;
    // Midway, under the upper key, is the lower end of the narrowest range.
    EXPECT_EQ(midi::bendOfCents(midi::bendCents(69.5, 69.5, 70, 50), 50).factor, -1.0);
    // No range, no bend, whatever the option's file says.
    EXPECT_EQ(midi::bendOfCents(0.0, 0).msb, 0x40);
    EXPECT_EQ(midi::bendOfCents(0.0, 0).lsb, 0);
}

TEST(MidiBytes, SetsTheRangeInSemitonesAndCents)
{
    const std::tuple<int, const char*, const char*> rows[] = {
        {50, "00", "32"},   {200, "02", "00"},        {250, "02", "32"},
        {1250, "0C", "32"}, {1299, "0C", "63"},       {0, "00", "00"},
        {-50, "00", "00"},  {2000000000, "7F", "00"}, {-2000000000, "00", "00"},
    };
    for (const auto& [cents, semitones, rest] : rows) {
        MidiSystem sent;
        for (const midi::ShortMessage& message : midi::bendRange(cents).messages)
            sent.add(hex(message.data(), message.size()));
        EXPECT_EQ(sent.take(), bendRange(semitones, rest)) << cents;
    }
}
