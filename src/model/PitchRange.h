#pragma once

/// The frequencies that 1/1 and the notes may have.
namespace pitchrange {

inline constexpr float LOWEST = 20.0F; // Hz
inline constexpr float HIGHEST = 20000.0F;

} // namespace pitchrange
