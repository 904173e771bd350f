#pragma once

#include "model/OrloRatio.h"
#include "model/RatioFraction.h"

/// From relative to absolute ratios and back, by the lattice's present transposition. Any thread.
namespace ratios {

/// The product is taken before anything cancels, so it may wrap beyond 64 bits, and its denominator may
/// become 0; Orlo::canTransposeTo keeps players away from that.
RatioFraction absoluteFraction(const OrloRatio& relative);
RatioFraction relativeFraction(const OrloRatio& absolute);

/// The same as ratios, for pitches from anywhere, such as a chord file: 0/1 where the product wraps to a
/// denominator of 0.
OrloRatio absoluteOf(const OrloRatio& relative);
OrloRatio relativeOf(const OrloRatio& absolute);

/// In single precision, for a frequency or a place on the screen.
inline float quotient(const OrloRatio& ratio)
{
    return static_cast<float>(ratio.numerator()) / static_cast<float>(ratio.denominator());
}

} // namespace ratios
