#pragma once

#include <cstdint>

/// How keys play, beside which pitch each of them has. Eight bytes, so that both threads share it as one
/// atomic value.
struct KeySettings
{
    static constexpr std::uint8_t MAX_BEND_SEMITONES = 96;

    std::uint8_t bendSemitones = 2; // up and down; where the input tells no range of its own
    bool mpe = true;                // zones that an input announces are heeded
    std::uint8_t pressureMacro = 0; // 1 to 8; 0: none
    std::uint8_t timbreMacro = 0;   // of controller 74; as above
    std::uint32_t unused = 0;

    bool operator==(const KeySettings&) const = default;
};
