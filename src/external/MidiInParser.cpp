#include "external/MidiInParser.h"

#include <utility>

namespace {

constexpr std::uint8_t SYSEX_START = 0xF0;
constexpr std::uint8_t SYSEX_END = 0xF7;
constexpr std::uint8_t FIRST_REAL_TIME = 0xF8; // may stand anywhere, also within a message
constexpr std::uint8_t FIRST_STATUS = 0x80;
constexpr std::uint8_t PROGRAM_CHANGE = 0xC0;
constexpr std::uint8_t CHANNEL_PRESSURE = 0xD0;

} // namespace

/// How many bytes turned out to belong to no message.
std::size_t MidiInParser::take(std::uint8_t byte)
{
    if (byte >= FIRST_REAL_TIME)
        return 0;
    if (byte >= FIRST_STATUS) {
        const std::size_t cutShort = std::exchange(mCount, 0);
        mInSysEx = byte == SYSEX_START;
        mMessage = {};
        mMessage.status = byte;
        const int kind = mMessage.kind();
        // A system message ends the running status.
        mNeeded = byte >= SYSEX_START ? 0 : kind == PROGRAM_CHANGE || kind == CHANNEL_PRESSURE ? 1 : 2;
        mSystem = byte > SYSEX_START && byte < SYSEX_END;
        return cutShort;
    }
    if (mInSysEx || mSystem)
        return 0;
    if (mNeeded == 0)
        return 1;
    (mCount == 0 ? mMessage.data1 : mMessage.data2) = byte;
    ++mCount;
    return 0;
}
