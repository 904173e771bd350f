#pragma once

/// The frequencies that 1/1 and the notes may have. The lattice takes both bounds for 1/1, the options dialog
/// clamps to them, and a note sounds only between them, both excluded.
namespace pitchrange {

inline constexpr float LOWEST = 20.0F; // Hz
inline constexpr float HIGHEST = 20000.0F;

/// A note exactly on a bound is silent, though Orlo::canTransposeTo allows 1/1 there.
constexpr bool sounds(float frequency)
{
    return frequency > LOWEST && frequency < HIGHEST;
}

} // namespace pitchrange
