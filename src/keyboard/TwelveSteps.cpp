#include "keyboard/TwelveSteps.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace {

constexpr double CENTS = 1200.0; // of an octave
constexpr double STEP = CENTS / twelvesteps::STEPS;
constexpr double EQUAL = 1e-9; // cents; what differs by less is equally near

/// No numerator up to twice its denominator is higher while their product fits in 64 bits.
constexpr std::uint64_t HIGHEST = 6074001000U;
/// Ratios of such numbers are nearly always simple enough.
constexpr std::uint64_t FIRST_BOUND = 4096;

using Numbers = std::vector<std::uint64_t>;

/// All numbers up to the bound without a prime beyond the limit, ascending.
Numbers smoothNumbers(int primeLimit, std::uint64_t bound)
{
    Numbers numbers{1};
    for (const int prime : OrloConstants::PRIMES) {
        if (prime < 2 || prime > primeLimit)
            continue;
        const auto p = static_cast<std::uint64_t>(prime);
        for (std::size_t i = 0; i < numbers.size(); ++i) { // those that it appends too
            if (numbers[i] <= bound / p)
                numbers.push_back(numbers[i] * p);
        }
    }
    std::ranges::sort(numbers);
    return numbers;
}

struct Candidate
{
    std::uint64_t numerator = 0;
    std::uint64_t denominator = 0;
    std::uint64_t product = 0; // 0: there is none
    double distance = 0.0;     // cents
};

/// None where the product leaves 64 bits or the ratio the octave.
Candidate candidate(std::uint64_t n, std::uint64_t d, double place)
{
    Candidate made{.numerator = n, .denominator = d};
    if (n < d || n > 2 * d || __builtin_mul_overflow(n, d, &made.product))
        return {};
    const auto quotient = static_cast<long double>(n) / static_cast<long double>(d);
    made.distance = std::abs(static_cast<double>(std::log2(quotient) * CENTS) - place);
    return made;
}

bool isSimpler(const Candidate& a, const Candidate& b)
{
    return b.product == 0 || a.product < b.product || (a.product == b.product && a.distance < b.distance);
}

bool isNearer(const Candidate& a, const Candidate& b)
{
    return b.product == 0 || a.distance < b.distance - EQUAL
           || (a.distance < b.distance + EQUAL && a.product < b.product);
}

Candidate simplestInWindow(const Numbers& numbers, double place, double window)
{
    const double lowest = std::exp2((place - window - EQUAL) / CENTS);
    const double highest = std::exp2((place + window + EQUAL) / CENTS);
    Candidate best;
    auto begin = numbers.begin();
    for (const std::uint64_t d : numbers) {
        const auto below = static_cast<double>(d);
        if (best.product != 0 && below * below > static_cast<double>(best.product))
            break; // a numerator is not lower than its denominator
        while (begin != numbers.end() && static_cast<double>(*begin) < below * lowest)
            ++begin;
        for (auto n = begin; n != numbers.end() && static_cast<double>(*n) <= below * highest; ++n) {
            const Candidate next = candidate(*n, d, place);
            if (next.product != 0 && next.distance <= window && isSimpler(next, best))
                best = next;
        }
    }
    return best;
}

Candidate nearest(const Numbers& numbers, double place)
{
    const double factor = std::exp2(place / CENTS);
    Candidate best;
    double reach = 1.0; // of a quotient that may be as near; spares most logarithms
    auto above = numbers.begin();
    for (const std::uint64_t d : numbers) {
        while (above != numbers.end() && static_cast<double>(*above) < static_cast<double>(d) * factor)
            ++above;
        const auto first = above == numbers.begin() ? above : above - 1;
        const auto last = above == numbers.end() ? above : above + 1;
        for (auto n = first; n != last; ++n) {
            const double off = std::abs(static_cast<double>(*n) / (static_cast<double>(d) * factor) - 1.0);
            const Candidate next = off <= reach ? candidate(*n, d, place) : Candidate();
            if (next.product == 0 || !isNearer(next, best))
                continue;
            best = next;
            reach = 2.0 * off + EQUAL;
        }
    }
    return best;
}

} // namespace

std::array<OrloRatio, twelvesteps::STEPS> twelvesteps::ratios(int primeLimit, double window)
{
    const Numbers few = smoothNumbers(primeLimit, FIRST_BOUND);
    Numbers all; // made where the few do not decide
    std::array<OrloRatio, STEPS> ratios;
    for (int step = 0; step < STEPS; ++step) {
        const double place = step * STEP;
        Candidate best = simplestInWindow(few, place, window);
        // Higher numbers have higher products than this.
        if (best.product == 0 || best.product > FIRST_BOUND * FIRST_BOUND / 2) {
            if (all.empty())
                all = smoothNumbers(primeLimit, HIGHEST);
            best = simplestInWindow(all, place, window);
            if (best.product == 0)
                best = nearest(all, place);
        }
        ratios[static_cast<std::size_t>(step)] = OrloRatio(best.numerator, best.denominator);
    }
    return ratios;
}
