#pragma once

#include "sound/GlissandoMapping.h"

#include <array>

/// What a sounding or selected node carries: eight macros and two glissando values, on the scale of the
/// sliders from 0.0 to 1.0. The middle of a glissando changes nothing.
struct NodeParameters
{
    static constexpr int MACRO_COUNT = 8;

    std::array<float, MACRO_COUNT> macros{};
    float glissOne = glissando::MIDDLE; // coarse
    float glissTwo = glissando::MIDDLE; // fine
};
