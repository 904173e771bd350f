#include "model/OctaveReduction.h"

#include <limits>

namespace {

constexpr unsigned long long LARGEST = std::numeric_limits<unsigned long long>::max();

} // namespace

RatioFraction withinOctave(RatioFraction fraction)
{
    auto [n, d] = fraction;
    if (n == 0 || d == 0)
        return fraction;
    while (n / 2 >= d) {
        if (n % 2 == 0)
            n /= 2;
        else if (d <= LARGEST / 2)
            d *= 2;
        else
            break;
    }
    while (n < d) {
        if (d % 2 == 0)
            d /= 2;
        else if (n <= LARGEST / 2)
            n *= 2;
        else
            break;
    }
    return {n, d};
}
