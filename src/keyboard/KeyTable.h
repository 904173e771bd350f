#pragma once

#include "model/OrloRatio.h"

#include <array>
#include <cstddef>

/// What a key plays: an exact pitch, one without an exact ratio, or nothing.
struct KeyTarget
{
    OrloRatio ratio;       // from 1/1 before the transposition; 0/1: none
    double tempered = 0.0; // where there is no exact ratio: Hz for each Hz of 1/1; 0: none
};

/// What every key of one MIDI input plays. Nobody changes a table once it is handed on.
struct KeyTable
{
    static constexpr int CHANNELS = 16;
    static constexpr int KEYS = 128;

    /// [any] Both count from 0.
    const KeyTarget& at(int channel, int key) const { return targets[index(channel, key)]; }
    /// [any]
    KeyTarget& at(int channel, int key) { return targets[index(channel, key)]; }

    std::array<KeyTarget, std::size_t{CHANNELS} * KEYS> targets;

private:
    static std::size_t index(int channel, int key) { return static_cast<std::size_t>(channel * KEYS + key); }
};
