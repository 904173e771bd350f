#include "model/OrloConstants.h"

namespace OrloConstants {

const std::array<int, 12> PRIMES{1, 2, 3, 5, 7, 11, 13, 17, 19, 23, 29, 31};

unsigned long long octaveDivisor(int prime)
{
    unsigned long long divisor = 1;
    while (divisor * 2 < static_cast<unsigned long long>(prime))
        divisor *= 2;
    return divisor;
}

namespace {

std::array<Rational, HIGHEST_PRIME + 1> makeRationals()
{
    std::array<Rational, HIGHEST_PRIME + 1> table{};
    for (const int prime : PRIMES) {
        if (prime > 1)
            table[static_cast<size_t>(prime)] =
                Rational(static_cast<unsigned long long>(prime), octaveDivisor(prime));
    }
    return table;
}

std::array<float, HIGHEST_PRIME + 1> makeRatios()
{
    std::array<float, HIGHEST_PRIME + 1> table{};
    table.fill(-1.0F);
    for (const int prime : PRIMES) {
        if (prime > 1)
            table[static_cast<size_t>(prime)] =
                static_cast<float>(prime) / static_cast<float>(octaveDivisor(prime));
    }
    return table;
}

} // namespace

const std::array<float, HIGHEST_PRIME + 1> PRIME_RATIOS = makeRatios();
const std::array<Rational, HIGHEST_PRIME + 1> PRIME_RATIONALS = makeRationals();

bool isValidPrime(int step)
{
    if (step < -HIGHEST_PRIME || step > HIGHEST_PRIME)
        return false;
    return PRIME_RATIOS[static_cast<size_t>(step < 0 ? -step : step)] > 0.0F;
}

} // namespace OrloConstants
