#include "harmony/IntervalNames.h"

#include "model/OrloConstants.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace intervalnames {

namespace {

constexpr double OCTAVE = 1200.0;               // cents
constexpr unsigned long long HIGHEST_NEAR = 64; // of numerator and denominator

/// Of a ratio above 0, itself or its inverse.
WideRatio upward(const WideRatio& ratio)
{
    return ratio < 1 ? WideRatio(1 / ratio) : ratio;
}

const Entry* find(const WideRatio& ratio)
{
    constexpr auto most = std::numeric_limits<unsigned long long>::max();
    const WideInt above = numerator(ratio);
    const WideInt below = denominator(ratio);
    if (above > most || below > most)
        return nullptr;
    const auto entries = table();
    const auto found = std::ranges::find_if(
        entries, [n = static_cast<unsigned long long>(above), d = static_cast<unsigned long long>(below)](
                     const Entry& entry) { return entry.numerator == n && entry.denominator == d; });
    return found == entries.end() ? nullptr : &*found;
}

/// Takes the octaves out of a ratio of at least 1, which then lies below 2.
int takeOctaves(WideRatio& ratio)
{
    auto octaves = static_cast<int>(msb(numerator(ratio))) - static_cast<int>(msb(denominator(ratio)));
    ratio /= WideRatio(WideInt(1) << static_cast<unsigned>(octaves));
    if (ratio >= 1)
        return octaves;
    ratio *= 2;
    return octaves - 1;
}

/// How often each prime of the lattice is in a ratio, below 0 in its denominator.
using Exponents = std::array<int, OrloConstants::PRIMES.size()>;

int takeFactor(WideInt& number, int prime)
{
    int count = 0;
    for (; number % prime == 0; number /= prime)
        ++count;
    return count;
}

/// Nothing for a ratio of other primes.
std::optional<Exponents> exponentsOf(const WideRatio& ratio)
{
    WideInt above = numerator(ratio);
    WideInt below = denominator(ratio);
    Exponents exponents{};
    for (std::size_t i = 0; i < exponents.size(); ++i) {
        const int prime = OrloConstants::PRIMES.at(i);
        if (prime > 1)
            exponents.at(i) = takeFactor(above, prime) - takeFactor(below, prime);
    }
    return above == 1 && below == 1 ? std::optional(exponents) : std::nullopt;
}

/// How many of the part make up the whole; 0 for none.
int countOf(const Exponents& part, const Exponents& whole)
{
    const auto at =
        static_cast<std::size_t>(std::ranges::find_if(part, [](int e) { return e != 0; }) - part.begin());
    const int count = whole.at(at) / part.at(at);
    for (std::size_t i = 0; i < part.size(); ++i) {
        if (whole.at(i) != count * part.at(i))
            return 0;
    }
    return count;
}

QString octavesText(int octaves)
{
    return octaves == 1 ? QStringLiteral("1 octave") : QStringLiteral("%1 octaves").arg(octaves);
}

QString nameOf(const Entry& entry, int octaves)
{
    QString name = QString::fromLatin1(entry.name);
    if (octaves == 0)
        return name;
    const bool isOctave = entry.numerator == 2 && entry.denominator == 1;
    return isOctave ? octavesText(octaves + 1) : QStringLiteral("%1 + %2").arg(name, octavesText(octaves));
}

} // namespace

QString nameOf(const WideRatio& ratio)
{
    WideRatio within = upward(ratio);
    if (const Entry* entry = find(within))
        return QString::fromLatin1(entry->name);
    const int octaves = takeOctaves(within);
    if (within == 1)
        return octaves > 0 ? octavesText(octaves) : QString();
    const Entry* const entry = find(within);
    return entry ? nameOf(*entry, octaves) : QString();
}

QString nameOf(const Near& found)
{
    return nameOf(*found.entry, found.octaves);
}

QString commaNameOf(const WideRatio& ratio)
{
    const Entry* const entry = find(upward(ratio));
    return entry && entry->isComma ? QString::fromLatin1(entry->name) : QString();
}

std::optional<CommaPower> powerOfComma(const WideRatio& ratio)
{
    const auto whole = exponentsOf(upward(ratio));
    std::optional<CommaPower> best;
    for (const Entry& entry : table()) {
        if (!whole || !entry.isComma)
            break;
        const int count = countOf(*exponentsOf(WideRatio(entry.numerator, entry.denominator)), *whole);
        if (count > 1 && (!best || count < best->count))
            best = CommaPower{.count = count, .name = QString::fromLatin1(entry.name)};
    }
    return best;
}

std::optional<Near> nearestTo(double cents, double within)
{
    const double size = std::abs(cents);
    std::optional<Near> best;
    for (const Entry& entry : table()) {
        if (std::max(entry.numerator, entry.denominator) > HIGHEST_NEAR)
            continue;
        const double named =
            OCTAVE * std::log2(static_cast<double>(entry.numerator) / static_cast<double>(entry.denominator));
        const double octaves = std::max(0.0, std::round((size - named) / OCTAVE));
        const double rest = size - named - octaves * OCTAVE;
        if (std::abs(rest) <= (best ? std::abs(best->cents) : within))
            best = Near{.entry = &entry, .octaves = static_cast<int>(octaves), .cents = rest};
    }
    return best;
}

} // namespace intervalnames
