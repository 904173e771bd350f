#pragma once

#include <cstdint>

/// One whole channel message of a MIDI input. SysEx, clocks and broken bytes never become one.
struct MidiInMessage
{
    std::uint8_t status = 0; // 0x80 to 0xEF, with the channel in its low four bits
    std::uint8_t data1 = 0;  // 0 to 127, as the next
    std::uint8_t data2 = 0;  // 0 where the message has only one data byte
    std::uint8_t input = 0;  // its slot in MidiInputs

    int kind() const { return status & 0xF0; }
    int channel() const { return status & 0x0F; }
};
