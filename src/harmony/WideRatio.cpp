#include "harmony/WideRatio.h"

#include "model/OrloConstants.h"

#include <algorithm>
#include <cmath>

namespace wideratio {
namespace {

using boost::multiprecision::denominator;
using boost::multiprecision::msb;
using boost::multiprecision::numerator;

constexpr int BITS = 80; // more than a double holds
constexpr double CENTS_OF_OCTAVE = 1200.0;

/// a / b, right to the last digit of a double. Both are above 0.
double quotient(const WideInt& a, const WideInt& b)
{
    const int shift = BITS + static_cast<int>(msb(b)) - static_cast<int>(msb(a));
    const WideInt scaled = shift > 0 ? WideInt(a << shift) / b : a / WideInt(b << -shift);
    return std::ldexp(scaled.convert_to<double>(), -shift);
}

WideInt shifted(const WideInt& number, int bits)
{
    return bits > 0 ? WideInt(number << bits) : number;
}

} // namespace

WideRatio of(const OrloRatio& ratio)
{
    return {WideInt(ratio.numerator()), WideInt(ratio.denominator())};
}

WideRatio between(const OrloRatio& low, const OrloRatio& high)
{
    return of(high) / of(low);
}

QString text(const WideRatio& ratio)
{
    return QString::fromStdString(numerator(ratio).str() + '/' + denominator(ratio).str());
}

/// The octaves apart, since the logarithm of what is left keeps its digits only near 1.
double cents(const WideRatio& ratio)
{
    const OctaveParts parts = withoutOctaves(ratio);
    const WideInt n = numerator(parts.reduced);
    const WideInt d = denominator(parts.reduced);
    const WideInt above = n - d;
    if (above == 0)
        return CENTS_OF_OCTAVE * parts.octaves;
    const double part = above > 0 ? quotient(above, d) : -quotient(-above, d);
    return CENTS_OF_OCTAVE * (parts.octaves + std::log1p(part) / std::log(2.0));
}

double harmonicDistance(const WideRatio& ratio)
{
    const WideInt product = numerator(ratio) * denominator(ratio);
    const auto bits = static_cast<int>(msb(product));
    return bits + std::log2(quotient(product, WideInt(1) << bits));
}

int primeLimit(const WideRatio& ratio)
{
    int highest = 1;
    for (WideInt left : {numerator(ratio), denominator(ratio)}) {
        for (const int prime : OrloConstants::PRIMES) {
            while (prime > 1 && left % prime == 0) {
                left /= prime;
                highest = std::max(highest, prime);
            }
        }
        if (left != 1)
            return 0;
    }
    return highest;
}

OctaveParts withoutOctaves(const WideRatio& ratio)
{
    WideInt n = numerator(ratio);
    WideInt d = denominator(ratio);
    int octaves = static_cast<int>(msb(n)) - static_cast<int>(msb(d));
    n = shifted(n, -octaves);
    d = shifted(d, octaves);
    // What is left lies between half and double. Squares tell on which side of half an octave.
    if (n * n >= 2 * d * d) {
        ++octaves;
        d *= 2;
    } else if (2 * n * n < d * d) {
        --octaves;
        n *= 2;
    }
    return {WideRatio(n, d), octaves};
}

} // namespace wideratio
