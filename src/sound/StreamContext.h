#pragma once

#include <atomic>
#include <cstdint>

class PaAudioOutput;

/// What a stream's callback is given. It outlives the output if the stream was given up; then it is
/// retired, and a callback that wakes again writes silence and touches nothing else.
struct StreamContext
{
    PaAudioOutput* output;
    std::atomic<bool> retired{false};    // set by [gui]
    std::atomic<bool> inBlock{false};    // set by the callback
    std::atomic<std::uint64_t> calls{0}; // of the callback, retired or not
};
