#pragma once

#include "external/MidiBytes.h"

#include <algorithm>
#include <limits>

/// The pitch bend in MPE: its range, how far a voice may be bent before it is held, and the two bytes of a
/// bend. Pure functions without state or allocation. A note is a MIDI key as a fraction (MidiNote.h).
namespace mpe {

/// Cents that the distance of a pitch from its key can need.
inline constexpr int ROUNDING_CENTS = 50;

/// [any] In cents, from the option of how far a glissando may go, which a file can set to any number.
constexpr int bendRange(int glissandoCents)
{
    constexpr int max = std::numeric_limits<int>::max() - ROUNDING_CENTS;
    return (glissandoCents < max ? glissandoCents : max) + ROUNDING_CENTS;
}

/// [any] The range of a zone's members: that bend range in whole semitones, as devices want it, from the two
/// that each device starts with to the 96 that MPE allows.
constexpr int zoneRange(int bendRangeCents)
{
    return (std::clamp(bendRangeCents, 200, 9600) + 99) / 100 * 100;
}

/// [any] By how many cents the channel of a voice is bent. `start` is the note at which the voice took
/// its channel with `key`; of the range, 50 cents are kept for the distance between these two, and
/// the rest is how far a glissando can go. Past that the voice stays at the limit.
double bendCents(double note, double start, int key, int rangeCents);

struct Bend
{
    double factor = 0.0; // of the range, -1.0 to 1.0; beyond, the bytes are at their limit
    double coarse = 0.0; // the most significant byte and its fraction; 0 at the limit
    double fine = 0.0;   // the least significant byte before rounding; 0 at the limit
    midi::Byte msb = 0x40;
    midi::Byte lsb = 0;
};
/// [any]
Bend bendOfFactor(double factor);
/// [any] No bend in a range of 0.
Bend bendOfCents(double cents, int rangeCents);
/// [any] What a device makes of the two bytes.
double centsOfBend(const Bend& bend, int rangeCents);
/// [any] From one bend to the next.
double stepCents(int rangeCents);

} // namespace mpe
