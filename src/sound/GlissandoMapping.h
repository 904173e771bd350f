#pragma once

#include <cmath>

/// What a glissando slider means: its position as a factor of the frequency.
namespace glissando {

/// The slider's position that changes nothing.
inline constexpr float MIDDLE = 0.5F;
/// Until the options tell other ranges.
inline constexpr float DEFAULT_RANGE_ONE = 1200.0F; // cents
inline constexpr float DEFAULT_RANGE_TWO = 100.0F;

/// [any] What a position stands for, upward from the middle.
inline double cents(float rangeCents, float slider)
{
    const double position = static_cast<double>(slider) - static_cast<double>(MIDDLE);
    return static_cast<double>(rangeCents) * 2.0 * position;
}

/// [any] `slider` 1.0 gives the range upward and 0.0 the range downward. Positions beyond them go on along
/// the same curve.
inline float factor(float rangeCents, float slider)
{
    return static_cast<float>(std::exp2(cents(rangeCents, slider) / 1200.0));
}

} // namespace glissando
