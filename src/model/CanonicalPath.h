#pragma once

#include "model/OrloConstants.h"

/// The path that stands for a ratio of which only the value is known: odd primes up, odd primes down, each
/// ascending, then twos. Factors above 31 are dropped, and so are steps past the path's limit.
namespace canonicalpath {

/// Appends `sign * p` for each odd prime p in `number`, ascending, and moves p's power of 2 into it.
template <class Path>
void takeOddPrimes(Path& path, unsigned long long& number, int sign)
{
    for (const int prime : OrloConstants::PRIMES) {
        if (prime < 3)
            continue;
        const auto p = static_cast<unsigned long long>(prime);
        while (number % p == 0) {
            path.addLeaf(static_cast<signed char>(sign * prime));
            number = number / p * OrloConstants::octaveDivisor(prime);
        }
    }
}

/// Of a ratio that is not 0; the root for 0.
template <class Path>
Path of(const OrloConstants::Rational& ratio)
{
    Path path;
    unsigned long long n = ratio.numerator();
    unsigned long long d = ratio.denominator();
    if (n == 0 || d == 0)
        return path;
    takeOddPrimes(path, n, 1);
    takeOddPrimes(path, d, -1);
    while (n % 2 == 0 && d % 2 == 0) {
        n /= 2;
        d /= 2;
    }
    for (; n % 2 == 0; n /= 2)
        path.addLeaf(2);
    for (; d % 2 == 0; d /= 2)
        path.addLeaf(-2);
    return path;
}

} // namespace canonicalpath
