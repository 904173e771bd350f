#pragma once

/// Pure Data computes sound in blocks of so many frames, also called ticks. It renders only multiples of
/// them.
inline constexpr int PD_BLOCK_FRAMES = 64;
