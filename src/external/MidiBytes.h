#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// What the MIDI output sends, as bytes. Pure functions without state; none but those that append
/// to a vector allocates, and those not while its capacity lasts.
///
/// A note is a MIDI key as a fraction: 69.0 is 440 Hz, whatever the player's calibration. Channels
/// count from 0 to 15. Key and velocity are cut to a byte without a test of their range.
namespace midi {

using Byte = unsigned char;
using Bytes = std::vector<Byte>;
using ShortMessage = std::array<Byte, 3>;

constexpr int CHANNELS = 16;
constexpr double MAX_NOTE = 128.0; // exclusive
/// What a note at or above it becomes, 127.99999.
constexpr double TOP_NOTE = std::bit_cast<double>(std::uint64_t{0x405FFFFFD60E94EE});

/// [any] What is no pitch (negative, not a number) lies below every note: minus infinity.
double noteOfFrequency(float hz);

/// [any]
ShortMessage noteOn(int channel, int key, int velocity);
/// [any] Cut to a byte; where that would be no data byte, the end of the range that the velocity lies beyond.
Byte velocityByte(int velocity);
/// [any] With the release velocity 64.
ShortMessage noteOff(int channel, int key);
/// [any]
ShortMessage allNotesOff(int channel);

/// [any] A status byte and nothing but data bytes behind it. A key or velocity of 128 or more is neither: a
/// device would take it for the status of another message.
bool isWellFormed(std::span<const Byte> message);

/// The pitch of one key in a tuning change.
struct Tuning
{
    Byte semitone;
    Byte fractionMsb; // 1/128 semitone
    Byte fractionLsb; // 1/16384 semitone

    bool operator==(const Tuning&) const = default;
};
/// [any] The note lies from 0.0 to below MAX_NOTE. Rounds to the nearest, and down at the very top.
Tuning tuningOfNote(double note);

/// [any] Begins a real-time single-note tuning change of the MIDI Tuning Standard, for tuning program 0 of
/// all devices: begin, one addKeyTuning for each key, end. The count is cut to its low eight bits.
void beginTuningChange(Bytes& message, std::int64_t count);
/// [any] Appends one key.
void addKeyTuning(Bytes& message, int key, const Tuning& tuning);
/// [any] Appends the end.
void endTuningChange(Bytes& message);
/// [any] The bytes of a tuning change of so many keys.
constexpr std::size_t tuningChangeSize(std::size_t keys)
{
    return 7 + 4 * keys + 1;
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
    Byte msb = 0x40;
    Byte lsb = 0;
};
/// [any]
Bend bendOfFactor(double factor);
/// [any] No bend in a range of 0.
Bend bendOfCents(double cents, int rangeCents);
/// [any]
ShortMessage pitchBend(int channel, Byte msb, Byte lsb);
/// [any]
ShortMessage pitchBendCentre(int channel);

/// Sets the range of the pitch bend on the receiving device.
struct BendRange
{
    int semitones;
    int cents; // beyond the semitones
    std::array<ShortMessage, 6> messages;
};
/// [any] On channel 0 only, whichever channels are in use.
BendRange bendRange(int cents);

} // namespace midi
