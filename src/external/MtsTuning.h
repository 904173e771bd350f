#pragma once

#include "external/MidiBytes.h"

#include <cstddef>
#include <cstdint>

/// The tuning of keys by the MIDI Tuning Standard: how a pitch becomes key and fraction, and the messages
/// that say so. Pure functions without state; what appends to a vector allocates only beyond its capacity.
namespace mts {

/// From one pitch to the next that a tuning can say.
inline constexpr double STEP_CENTS = 100.0 / (midi::DATA_VALUES * midi::DATA_VALUES);

/// The pitch of one key in a tuning change.
struct Tuning
{
    midi::Byte semitone;
    midi::Byte fractionMsb; // 1/128 semitone
    midi::Byte fractionLsb; // 1/16384 semitone

    bool operator==(const Tuning&) const = default;
};
/// [any] The note lies from 0.0 to below midi::MAX_NOTE. Rounds to the nearest, and down at the very top.
Tuning tuningOfNote(double note);

/// [any] Begins a real-time single-note tuning change of the MIDI Tuning Standard, for tuning program 0 of
/// all devices: begin, one addKeyTuning for each key, end. The count is cut to its low eight bits.
void beginTuningChange(midi::Bytes& message, std::int64_t count);
/// [any] Appends one key.
void addKeyTuning(midi::Bytes& message, int key, const Tuning& tuning);
/// [any] Appends the end.
void endTuningChange(midi::Bytes& message);
/// [any] The bytes of a tuning change of so many keys.
constexpr std::size_t tuningChangeSize(std::size_t keys)
{
    return 7 + 4 * keys + 1;
}

} // namespace mts
