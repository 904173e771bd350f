#pragma once

#include "model/OrloRatio.h"

#include <array>
#include <cstdint>

/// What a key gives to the note that it begins, beside the pitch.
struct KeyTouch
{
    static constexpr float OF_SLIDER = -1.0F;

    std::uint32_t id = 0;  // the source's own name of the note, never twice and never 0
    float velocity = 1.0F; // 0 to 1: what the external output hears
    float bend = 1.0F;     // factor of the frequency
    /// 0 to 1, or as without a key. The first one is the velocity's at the start.
    std::array<float, 8> macros{OF_SLIDER, OF_SLIDER, OF_SLIDER, OF_SLIDER,
                                OF_SLIDER, OF_SLIDER, OF_SLIDER, OF_SLIDER};

    /// [any] Replaces those that the key gives.
    void applyTo(std::array<float, 8>& noteMacros) const
    {
        for (std::size_t i = 0; i < macros.size(); ++i) {
            if (macros[i] != OF_SLIDER)
                noteMacros[i] = macros[i];
        }
    }
};

/// A new bend of one note.
struct KeyBend
{
    OrloRatio ratio; // absolute
    std::uint32_t id = 0;
    float factor = 1.0F;
};
