#pragma once

#include "model/OrloRatio.h"

#include <cmath>

/// The fraction that stands for a pitch without an exact ratio, within 0.001 cent from 0.001 up. Its
/// denominator is a prime that no ball, no chord file and no scale has, so that voices can be kept by
/// their ratio all the same, and nobody takes such a note for one of the lattice's.
namespace temperedratio {

inline constexpr unsigned long long DENOMINATOR = 4294967291; // the largest prime below 2^32
inline constexpr double HIGHEST = 1e6;                        // above every audible pitch

/// [any]
inline bool is(const OrloRatio& ratio)
{
    return ratio.denominator() == DENOMINATOR;
}

/// [any] 0/1 for what is no audible pitch.
inline OrloRatio of(double value)
{
    if (!(value > 0.0 && value < HIGHEST))
        return {};
    const auto rounded = static_cast<unsigned long long>(std::llround(value * double{DENOMINATOR}));
    // A whole number would lose the denominator.
    return OrloRatio(rounded % DENOMINATOR == 0 ? rounded + 1 : rounded, DENOMINATOR);
}

} // namespace temperedratio
