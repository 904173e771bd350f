#pragma once

#include "external/MidiInMessage.h"

#include <cstddef>
#include <cstdint>
#include <span>

/// Finds the channel messages in what one input delivers, a packet at a time, and leaves out the rest: SysEx,
/// clocks, and bytes that make no message. A packet may hold several messages and use running status (MIDI
/// 1.0). Nothing is put together from two packets, not even by running status: the data bytes of a SysEx that
/// was cut, or a lost byte, would make a wrong note.
class MidiInParser
{
public:
    /// [receiver] Calls `found` for each message; `input` stays 0. How many data bytes belonged to none.
    template <class Found>
    std::size_t parse(std::span<const std::uint8_t> packet, Found&& found)
    {
        std::size_t bad = 0;
        mNeeded = mCount = 0;
        for (const std::uint8_t byte : packet) {
            bad += take(byte);
            if (isWhole()) {
                found(mMessage);
                mCount = 0;
            }
        }
        bad += mCount;
        mCount = 0;
        return bad;
    }

private:
    std::size_t take(std::uint8_t byte);
    bool isWhole() const { return mCount != 0 && mCount == mNeeded; }

    MidiInMessage mMessage;
    std::size_t mNeeded = 0; // data bytes after the status; 0 without one
    std::size_t mCount = 0;  // of them are there
    bool mInSysEx = false;
    bool mSystem = false; // in a system message that is no SysEx
};
