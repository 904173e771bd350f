#pragma once

#include <limits>

/// The range of the pitch bend in MPE.
namespace mpe {

/// Cents that the distance of a pitch from its key can need.
inline constexpr int ROUNDING_CENTS = 50;

/// [any] In cents, from the option of how far a glissando may go, which a file can set to any number.
constexpr int bendRange(int glissandoCents)
{
    constexpr int max = std::numeric_limits<int>::max() - ROUNDING_CENTS;
    return (glissandoCents < max ? glissandoCents : max) + ROUNDING_CENTS;
}

} // namespace mpe
