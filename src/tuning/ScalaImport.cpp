#include "tuning/ScalaImport.h"

#include "model/AbsoluteRatio.h"
#include "model/Orlo.h"
#include "model/PitchRange.h"
#include "scala/ScalaKeyboard.h"
#include "scala/ScalaScale.h"

#include <algorithm>
#include <limits>
#include <set>

namespace {

bool isOctave(const ScalaPitch& pitch)
{
    constexpr double octave = 1200.0; // cents
    return pitch.isExact() ? pitch.ratio == OrloRatio(2, 1) : pitch.cents == octave;
}

/// 1/1 first, whether it is mapped or not; then each once, ascending.
QList<int> degreesOf(const ScalaScale& scale, const std::optional<ScalaKeyboard>& keyboard)
{
    std::set<int> numbers;
    if (keyboard && !keyboard->degrees.isEmpty()) {
        for (const std::optional<int>& degree : keyboard->degrees)
            numbers.insert(degree.value_or(0));
    } else if (const QList<ScalaPitch>& pitches = scale.pitches(); !pitches.isEmpty()) {
        for (int number = 1; number < pitches.size(); ++number)
            numbers.insert(number);
        if (!isOctave(pitches.last()))
            numbers.insert(static_cast<int>(pitches.size()));
    }
    numbers.erase(0);
    QList<int> degrees{0};
    degrees.append(QList<int>(numbers.begin(), numbers.end()));
    return degrees;
}

/// Of the pitch that a degree repeats; 0 for 1/1.
int lineOf(const ScalaScale& scale, int degree)
{
    const auto count = static_cast<int>(scale.pitches().size());
    return degree == 0 ? 0 : scale.lineOf(((degree - 1) % count + count) % count);
}

/// Whether the product as the lattice forms it stays within 64 bits: multiplied before anything cancels.
bool fits(const OrloRatio& a, const OrloRatio& b)
{
    constexpr auto most = std::numeric_limits<unsigned long long>::max();
    return a.numerator() <= most / b.numerator() && a.denominator() <= most / b.denominator();
}

/// Chord files have numbers of 32 bits with a sign.
bool isStorable(const OrloRatio& ratio)
{
    constexpr unsigned long long most = std::numeric_limits<int>::max();
    return ratio.numerator() <= most && ratio.denominator() <= most;
}

bool isOfLatticePrimes(unsigned long long number)
{
    for (const int prime : OrloConstants::PRIMES) {
        const auto p = static_cast<unsigned long long>(prime);
        while (p > 1 && number % p == 0)
            number /= p;
    }
    return number == 1;
}

/// The absolute ratio; nothing, with the reason, where the lattice has none. Within 64 bits every ratio of
/// its primes has a path of at most 82 steps.
std::optional<OrloRatio> onLattice(const ScalaPitch& pitch, const Orlo& orlo, QString& reason)
{
    const OrloRatio& ratio = pitch.ratio;
    const OrloRatio& moved = orlo.transposition();
    if (!pitch.isExact()) {
        reason = QStringLiteral("%1 cents is no ratio within 64 bits.").arg(pitch.toText());
        return std::nullopt;
    }
    if (!isOfLatticePrimes(ratio.numerator()) || !isOfLatticePrimes(ratio.denominator())) {
        reason =
            QStringLiteral("%1 has a prime above %2.").arg(pitch.toText()).arg(OrloConstants::HIGHEST_PRIME);
        return std::nullopt;
    }
    OrloRatio absolute = ratio;
    absolute *= moved;
    const OrloRatio back(moved.denominator(), moved.numerator());
    if (!fits(ratio, moved) || !isStorable(absolute) || !fits(absolute, back)) {
        reason = QStringLiteral("%1 has larger numbers than a chord can keep%2.")
                     .arg(pitch.toText(),
                          moved == OrloRatio(1, 1) ? QString() : QStringLiteral(" in this transposition"));
        return std::nullopt;
    }
    const float frequency = ratios::quotient(absolute) * orlo.baseFrequency();
    if (!pitchrange::sounds(frequency)) {
        reason = QStringLiteral("%1 is %2 Hz here, and notes sound from %3 to %4 Hz.")
                     .arg(pitch.toText(), QString::number(static_cast<double>(frequency), 'g', 6))
                     .arg(static_cast<double>(pitchrange::LOWEST))
                     .arg(static_cast<double>(pitchrange::HIGHEST));
        return std::nullopt;
    }
    return absolute;
}

} // namespace

ScalaImport ScalaImport::of(const ScalaScale& scale, const std::optional<ScalaKeyboard>& keyboard,
                            const Orlo& orlo)
{
    ScalaImport import;
    for (const int number : degreesOf(scale, keyboard)) {
        const auto pitch = scale.degree(number);
        if (!pitch)
            continue;
        const bool isFull = import.ratios.size() == MAX_NOTES;
        QString reason;
        const auto ratio = onLattice(*pitch, orlo, reason);
        if (ratio && import.ratios.contains(*ratio))
            continue;
        if (ratio && isFull)
            reason = QStringLiteral("A chord has %1 notes at most; this and what follows is left out.")
                         .arg(MAX_NOTES);
        else if (ratio)
            import.ratios.append(*ratio);
        if (!reason.isEmpty())
            import.leftOut.append(ScalaError{.line = lineOf(scale, number), .reason = reason}.text());
        if (ratio && isFull)
            break;
    }
    std::ranges::sort(import.ratios,
                      [](const OrloRatio& a, const OrloRatio& b) { return a.ratio() < b.ratio(); });
    return import;
}
