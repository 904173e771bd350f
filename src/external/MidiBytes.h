#pragma once

#include <array>
#include <span>
#include <vector>

/// The short MIDI messages that the output sends, as bytes. Pure functions without state or allocation.
///
/// Channels count from 0 to 15. Key and velocity are cut to a byte without a test of their range.
namespace midi {

using Byte = unsigned char;
using Bytes = std::vector<Byte>;
using ShortMessage = std::array<Byte, 3>;

constexpr int CHANNELS = 16;
constexpr int DATA_VALUES = 128; // of a data byte, which has seven bits
constexpr int LAST_DATA = 127;
constexpr Byte SYSEX_START = 0xF0;
constexpr Byte SYSEX_END = 0xF7;

/// [any]
ShortMessage noteOn(int channel, int key, int velocity);
/// [any] Cut to a byte; where that would be no data byte, the end of the range that the velocity lies beyond.
Byte velocityByte(int velocity);
/// [any] Of a macro's value, 1.0 being full; the fraction is cut off, and any value fits.
int velocityOf(float value);
/// [any] With the release velocity 64.
ShortMessage noteOff(int channel, int key);
/// [any]
ShortMessage allNotesOff(int channel);

/// [any] A status byte and nothing but data bytes behind it. A key or velocity of 128 or more is neither: a
/// device would take it for the status of another message.
bool isWellFormed(std::span<const Byte> message);

/// [any]
ShortMessage pitchBend(int channel, Byte msb, Byte lsb);
/// [any]
ShortMessage pitchBendCentre(int channel);

// Registered parameters (RPN).
constexpr int BEND_RANGE_PARAMETER = 0;
constexpr int ZONE_PARAMETER = 6; // of MPE

/// [any] Sets a registered parameter by its most significant byte alone, which is all that semitones or a
/// count need, and selects none afterwards.
std::array<ShortMessage, 5> parameterMessages(int channel, int parameter, int value);

/// Sets the range of the pitch bend on the receiving device, by a registered parameter (RPN 0).
struct BendRange
{
    int semitones;
    int cents; // beyond the semitones
    std::array<ShortMessage, 6> messages;
};
/// [any] On channel 0 only, whichever channels are in use.
BendRange bendRangeMessages(int cents);

} // namespace midi
