#pragma once

#include "model/OrloRatio.h"

#include <QtGlobal>

#include <cmath>

/// How high a pitch stands beside the lattice, for the second card stack and the node stack.
namespace pitch {

/// ln 9: a ratio of 9 lies half the lattice's height above the centre.
inline constexpr double HALF_HEIGHT_LN = 2.1972246;

/// Of an absolute ratio, by the present transposition. 0/1 where the product leaves 64 bits in a
/// way that gives no ratio at all: a chord file may name any pitch.
inline OrloRatio relativeOf(const OrloRatio& absolute)
{
    try {
        return OrloRatio(absolute.getRelativeFromAbsoluteRatio());
    } catch (const boost::bad_rational&) {
        return {};
    }
}

/// The other way, with the same care.
inline OrloRatio absoluteOf(const OrloRatio& relative)
{
    try {
        return OrloRatio(relative.getAbsRatio());
    } catch (const boost::bad_rational&) {
        return {};
    }
}

inline float quotient(const OrloRatio& ratio)
{
    return static_cast<float>(ratio.numerator()) / static_cast<float>(ratio.denominator());
}

/// Pixels downward from the centre, rounded half away from zero, for a lattice of this height in
/// pixels. A ratio of 0 has no pitch and lies below everything.
inline int offsetFromCentre(float relativeRatio, int latticeHeight)
{
    constexpr double farthest = 1e6;
    if (!(relativeRatio > 0.0F))
        return static_cast<int>(farthest);
    const double offset =
        std::log(static_cast<double>(relativeRatio)) / HALF_HEIGHT_LN * -latticeHeight * 0.5;
    return static_cast<int>(std::round(qBound(-farthest, offset, farthest)));
}

} // namespace pitch
