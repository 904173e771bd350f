#include "model/AbsoluteRatio.h"

#include "app/Accessors.h"
#include "model/Orlo.h"

namespace {

RatioFraction transposition()
{
    const Orlo* orlo = app::orlo();
    if (!orlo)
        return {1, 1};
    const auto value = orlo->publishedTransposition();
    return {value.numerator, value.denominator};
}

/// Multiplied first, then the primes cancelled.
RatioFraction multipliedAndCancelled(const OrloRatio& ratio, RatioFraction by)
{
    auto n = by.first * ratio.numerator();
    auto d = by.second * ratio.denominator();
    if (n == 0 || d == 0)
        return {n, d}; // 0 is divisible for ever
    for (const int prime : OrloConstants::PRIMES) {
        const auto p = static_cast<unsigned long long>(prime);
        while (p > 1 && n % p == 0 && d % p == 0) {
            n /= p;
            d /= p;
        }
    }
    return {n, d};
}

OrloRatio ratioOrZero(RatioFraction fraction)
{
    return fraction.second == 0 ? OrloRatio() : OrloRatio(fraction.first, fraction.second);
}

} // namespace

namespace ratios {

RatioFraction absoluteFraction(const OrloRatio& relative)
{
    return multipliedAndCancelled(relative, transposition());
}

RatioFraction relativeFraction(const OrloRatio& absolute)
{
    const auto [numerator, denominator] = transposition();
    return multipliedAndCancelled(absolute, {denominator, numerator});
}

OrloRatio absoluteOf(const OrloRatio& relative)
{
    return ratioOrZero(absoluteFraction(relative));
}

OrloRatio relativeOf(const OrloRatio& absolute)
{
    return ratioOrZero(relativeFraction(absolute));
}

} // namespace ratios
