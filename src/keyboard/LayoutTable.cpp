#include "keyboard/LayoutTable.h"

#include "keyboard/Layout.h"
#include "keyboard/TwelveSteps.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <optional>

namespace {

/// What a layout says of a key; nothing where it does not have it. Channel as in Layout.
using Rule = std::function<std::optional<KeyTarget>(int channel, int key)>;

int floorDivided(int value, int by)
{
    return (value >= 0 ? value : value - by + 1) / by;
}

/// Whether a number has no prime factor beyond 31.
bool isOnLattice(unsigned long long number)
{
    for (const int prime : OrloConstants::PRIMES) {
        const auto p = static_cast<unsigned long long>(prime);
        while (p > 1 && number % p == 0)
            number /= p;
    }
    return number == 1;
}

/// Silent where the frequency is beyond all numbers.
KeyTarget targetOf(const ScalaPitch& pitch)
{
    if (pitch.isExact() && isOnLattice(pitch.ratio.numerator()) && isOnLattice(pitch.ratio.denominator()))
        return {.ratio = pitch.ratio};
    const double factor = pitch.factor();
    return {.ratio = {}, .tempered = std::isfinite(factor) ? factor : 0.0};
}

std::optional<KeyTarget> targetOf(const std::optional<ScalaPitch>& pitch)
{
    return pitch ? std::optional(targetOf(*pitch)) : std::nullopt;
}

Rule learnedRule(const Layout& layout)
{
    return [&keys = layout.learned.keys](int channel, int key) -> std::optional<KeyTarget> {
        auto found = keys.find({channel, key});
        if (found == keys.end())
            found = keys.find({Layout::Learned::ANY_CHANNEL, key});
        return found != keys.end() ? std::optional(targetOf(ScalaPitch::of(*found))) : std::nullopt;
    };
}

Rule twelveRule(const Layout& layout)
{
    const auto ratios = twelvesteps::ratios(layout.twelve.primeLimit, layout.twelve.window);
    return [ratios, root = layout.rootKey](int, int key) {
        const int octave = floorDivided(key - root, twelvesteps::STEPS);
        const int step = key - root - octave * twelvesteps::STEPS;
        const ScalaPitch octaves = ScalaPitch::of(OrloRatio(2, 1)).times(octave);
        return std::optional(targetOf(ScalaPitch::of(ratios[static_cast<std::size_t>(step)]) + octaves));
    };
}

/// How often each prime is in a ratio, by the prime itself; below 0 in its denominator.
using Exponents = std::array<int, OrloConstants::HIGHEST_PRIME + 1>;

Exponents exponentsOf(const OrloPathUnlimited& path)
{
    Exponents exponents{};
    for (const int step : path.toList()) {
        const int direction = step < 0 ? -1 : 1;
        exponents[static_cast<std::size_t>(std::abs(step))] += direction;
        for (auto octaves = OrloConstants::octaveDivisor(std::abs(step)); octaves > 1; octaves /= 2)
            exponents[2] -= direction;
    }
    return exponents;
}

/// Only what is left of both paths is multiplied, so that a ratio within 64 bits is always exact.
ScalaPitch combined(const Exponents& along, int column, const Exponents& across, int row)
{
    ScalaPitch above;
    ScalaPitch below;
    for (const int prime : OrloConstants::PRIMES) {
        const auto i = static_cast<std::size_t>(prime);
        const int exponent = along[i] * column + across[i] * row;
        const ScalaPitch power =
            ScalaPitch::of(OrloRatio(static_cast<unsigned long long>(prime), 1)).times(std::abs(exponent));
        (exponent > 0 ? above : below) = (exponent > 0 ? above : below) + power;
    }
    return above + below.times(-1);
}

Rule generatorsRule(const Layout& layout)
{
    const Layout::Generators& values = layout.generators;
    if (!values.along.isValid() || !values.across.isValid())
        return [](int, int) -> std::optional<KeyTarget> { return std::nullopt; };
    const Exponents along = exponentsOf(values.along);
    const Exponents across = exponentsOf(values.across);
    return [along, across, &values, root = layout.rootKey](int channel, int key) {
        int column = key - root;
        int row = channel - values.rootChannel;
        if (values.rows == Layout::Generators::Rows::OfKeys) {
            row = floorDivided(column, values.rowLength);
            column -= row * values.rowLength;
        }
        return std::optional(targetOf(combined(along, column, across, row)));
    };
}

Rule scalaRule(const Layout& layout)
{
    return [&values = layout.scala, root = layout.rootKey](int, int key) {
        return targetOf(values.keyboard ? values.keyboard->pitchOf(key, values.scale)
                                        : values.scale.degree(key - root));
    };
}

/// The number that lies `steps` after the first one, of those that the lattice has; below 1 there is none.
std::optional<int> numberOnLattice(int first, int steps)
{
    int number = first;
    while (!isOnLattice(static_cast<unsigned long long>(number)))
        ++number;
    const int direction = steps < 0 ? -1 : 1;
    for (; steps != 0; steps -= direction) {
        do
            number += direction;
        while (number > 0 && !isOnLattice(static_cast<unsigned long long>(number)));
        if (number < 1)
            return std::nullopt;
    }
    return number;
}

Rule harmonicsRule(const Layout& layout)
{
    const int direction = layout.kind == Layout::Kind::Harmonics ? 1 : -1;
    return [&values = layout.harmonics, direction,
            root = layout.rootKey](int, int key) -> std::optional<KeyTarget> {
        const int steps = direction * (key - root);
        const bool skips = values.beyond31 == Layout::Harmonics::Beyond31::Skipped;
        const std::optional<int> number = skips ? numberOnLattice(values.first, steps) : values.first + steps;
        if (!number || *number < 1)
            return std::nullopt;
        const auto n = static_cast<unsigned long long>(*number);
        if (!isOnLattice(n))
            return KeyTarget{};
        const unsigned long long octaves = 1ULL << static_cast<unsigned>(values.octaves);
        return KeyTarget{.ratio = direction > 0 ? OrloRatio(n, octaves) : OrloRatio(octaves, n)};
    };
}

/// Refers to the layout.
Rule ruleOf(const Layout& layout)
{
    switch (layout.kind) {
    case Layout::Kind::Learned: return learnedRule(layout);
    case Layout::Kind::Twelve: return twelveRule(layout);
    case Layout::Kind::Generators: return generatorsRule(layout);
    case Layout::Kind::Scala: return scalaRule(layout);
    case Layout::Kind::Harmonics:
    case Layout::Kind::Subharmonics: return harmonicsRule(layout);
    }
    return {};
}

} // namespace

std::shared_ptr<const KeyTable> LayoutTable::make(const QList<Layout>& layouts, const QString& input)
{
    auto table = std::make_shared<KeyTable>();
    std::array<bool, std::size_t{KeyTable::CHANNELS} * KeyTable::KEYS> taken{};
    for (const Layout& layout : layouts) {
        if (!layout.isFor(input))
            continue;
        const Rule rule = ruleOf(layout);
        const int last = std::min(layout.lastChannel, KeyTable::CHANNELS);
        for (int channel = std::max(layout.firstChannel, 1); channel <= last; ++channel) {
            for (int key = 0; key < KeyTable::KEYS; ++key) {
                bool& isTaken = taken[static_cast<std::size_t>((channel - 1) * KeyTable::KEYS + key)];
                const std::optional<KeyTarget> target = isTaken ? std::nullopt : rule(channel, key);
                if (!target)
                    continue;
                isTaken = true;
                table->at(channel - 1, key) = *target;
            }
        }
    }
    return table;
}
