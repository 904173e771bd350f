#pragma once

#include <bit>
#include <cstdint>

/// A note is a MIDI key as a fraction: 69.0 is 440 Hz, whatever the player's calibration.
namespace midi {

constexpr double MAX_NOTE = 128.0; // exclusive
/// What a note at or above it becomes, 127.99999.
constexpr double TOP_NOTE = std::bit_cast<double>(std::uint64_t{0x405FFFFFD60E94EE});

/// [any] What is no pitch (negative, not a number) lies below every note: minus infinity.
double noteOfFrequency(float hz);

} // namespace midi
