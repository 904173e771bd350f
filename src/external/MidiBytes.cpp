#include "external/MidiBytes.h"

#include <QtGlobal>

#include <algorithm>
#include <limits>

namespace midi {

namespace {

constexpr Byte NOTE_OFF = 0x80;
constexpr Byte NOTE_ON = 0x90;
constexpr Byte CONTROL = 0xB0;
constexpr Byte PITCH_BEND = 0xE0;
constexpr Byte RELEASE_VELOCITY = 0x40;
constexpr Byte ALL_NOTES_OFF = 0x7B;
constexpr Byte RPN_LSB = 0x64;
constexpr Byte RPN_MSB = 0x65;
constexpr Byte DATA_MSB = 0x06;
constexpr Byte DATA_LSB = 0x26;
constexpr Byte NO_RPN = 0x7F;

Byte byte(int value)
{
    return static_cast<Byte>(value);
}

ShortMessage onChannel(Byte status, int channel, int first, int second)
{
    return {byte(status + channel), byte(first), byte(second)};
}

} // namespace

ShortMessage noteOn(int channel, int key, int velocity)
{
    return onChannel(NOTE_ON, channel, key, velocity);
}

Byte velocityByte(int velocity)
{
    const Byte cut = byte(velocity);
    if (cut < NOTE_OFF)
        return cut;
    return velocity < 0 ? 0 : byte(LAST_DATA);
}

int velocityOf(float value)
{
    constexpr double full = 127.0;
    constexpr double max = std::numeric_limits<int>::max();
    return static_cast<int>(qBound(-max, static_cast<double>(value) * full, max));
}

ShortMessage noteOff(int channel, int key)
{
    return onChannel(NOTE_OFF, channel, key, RELEASE_VELOCITY);
}

ShortMessage allNotesOff(int channel)
{
    return onChannel(CONTROL, channel, ALL_NOTES_OFF, 0);
}

bool isWellFormed(std::span<const Byte> message)
{
    if (message.empty() || message.front() < NOTE_OFF)
        return false;
    const bool ends = message.front() == SYSEX_START && message.back() == SYSEX_END;
    message = message.subspan(1, message.size() - (ends ? 2 : 1));
    return std::all_of(message.begin(), message.end(), [](Byte data) { return data < NOTE_OFF; });
}

ShortMessage pitchBend(int channel, Byte msb, Byte lsb)
{
    return onChannel(PITCH_BEND, channel, lsb, msb);
}

ShortMessage pitchBendCentre(int channel)
{
    return pitchBend(channel, 0x40, 0x00);
}

std::array<ShortMessage, 5> parameterMessages(int channel, int parameter, int value)
{
    return {onChannel(CONTROL, channel, RPN_LSB, parameter), onChannel(CONTROL, channel, RPN_MSB, 0),
            onChannel(CONTROL, channel, DATA_MSB, value), onChannel(CONTROL, channel, RPN_LSB, NO_RPN),
            onChannel(CONTROL, channel, RPN_MSB, NO_RPN)};
}

BendRange bendRangeMessages(int cents)
{
    const int semitones = static_cast<int>(static_cast<double>(static_cast<float>(cents)) / 100.0);
    const int rest = cents - semitones * 100;
    // An option of any size must not become a status byte.
    const int semitonesByte = std::clamp(semitones, 0, LAST_DATA);
    const int restByte = std::clamp(rest, 0, LAST_DATA);
    return {semitones,
            rest,
            {onChannel(CONTROL, 0, RPN_LSB, 0), onChannel(CONTROL, 0, RPN_MSB, 0),
             onChannel(CONTROL, 0, DATA_MSB, semitonesByte), onChannel(CONTROL, 0, DATA_LSB, restByte),
             onChannel(CONTROL, 0, RPN_LSB, NO_RPN), onChannel(CONTROL, 0, RPN_MSB, NO_RPN)}};
}

} // namespace midi
