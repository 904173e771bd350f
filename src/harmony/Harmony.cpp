#include "harmony/Harmony.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <tuple>

namespace {

using boost::multiprecision::denominator;
using boost::multiprecision::gcd;
using boost::multiprecision::lcm;
using boost::multiprecision::numerator;

constexpr double CENTS_OF_OCTAVE = 1200.0;
constexpr double ROUNDING = 1e-12; // of the lowest pair of partials, so that 8 : 6 is not nearer than 4 : 3

/// Glided by the same, so that their ratio holds.
bool isExactBetween(const SoundingNote& a, const SoundingNote& b)
{
    if (a.isTempered || b.isTempered)
        return false;
    if (a.isExact() || b.isExact())
        return a.isExact() && b.isExact();
    return std::abs(a.offset - b.offset) < Harmony::SAME_OFFSET;
}

bool isBelow(const SoundingNote& a, const SoundingNote& b)
{
    return std::tuple(a.frequency, a.ratio.numerator()) < std::tuple(b.frequency, b.ratio.numerator());
}

/// The exact order, which equal frequencies may hide.
void sortByRatio(QList<int>& numbered, const QList<SoundingNote>& notes)
{
    std::sort(numbered.begin(), numbered.end(),
              [&](int a, int b) { return wideratio::of(notes[a].ratio) < wideratio::of(notes[b].ratio); });
    const auto same = [&](int a, int b) { return notes[a].ratio == notes[b].ratio; };
    numbered.erase(std::unique(numbered.begin(), numbered.end(), same), numbered.end());
}

QList<int> numberedOf(const QList<SoundingNote>& notes)
{
    QList<int> numbered;
    const bool allTogether = std::all_of(notes.begin(), notes.end(), [&](const SoundingNote& note) {
        return isExactBetween(note, notes.first());
    });
    for (int i = 0; i < notes.size(); ++i) {
        if (allTogether || notes[i].isExact())
            numbered.append(i);
    }
    sortByRatio(numbered, notes);
    return numbered;
}

/// The ratios as smallest whole numbers.
QList<WideInt> wholeNumbers(const QList<WideRatio>& ratios)
{
    WideInt multiple = 1;
    for (const WideRatio& ratio : ratios)
        multiple = lcm(multiple, denominator(ratio));
    QList<WideInt> numbers;
    WideInt divisor = 0;
    for (const WideRatio& ratio : ratios) {
        numbers.append(numerator(ratio) * (multiple / denominator(ratio)));
        divisor = gcd(divisor, numbers.last());
    }
    for (WideInt& number : numbers)
        number /= divisor;
    return numbers;
}

WideInt oddPart(const WideInt& number)
{
    return number >> boost::multiprecision::lsb(number);
}

struct Complexity
{
    WideInt odd = 0;
    WideInt highest = 0;
    WideInt sum = 0;
};

Complexity complexityOf(const QList<WideInt>& numbers)
{
    Complexity complexity;
    for (const WideInt& number : numbers) {
        complexity.odd = std::max(complexity.odd, oddPart(number));
        complexity.highest = std::max(complexity.highest, number);
        complexity.sum += number;
    }
    return complexity;
}

bool isSimpler(const Complexity& a, const Complexity& b)
{
    return std::tie(a.odd, a.highest, a.sum) < std::tie(b.odd, b.highest, b.sum);
}

int primeLimitOf(const QList<WideInt>& numbers)
{
    int limit = 1;
    for (const WideInt& number : numbers) {
        const int prime = wideratio::primeLimit(WideRatio(number));
        if (prime == 0)
            return 0;
        limit = std::max(limit, prime);
    }
    return limit;
}

void findNumbers(Harmony& harmony)
{
    harmony.numbered = numberedOf(harmony.notes);
    if (harmony.numbered.size() < 2)
        return;
    QList<WideRatio> ratios;
    QList<WideRatio> inverse;
    for (const int note : harmony.numbered) {
        ratios.append(wideratio::of(harmony.notes[note].ratio));
        inverse.append(1 / ratios.last());
    }
    harmony.otonal = wholeNumbers(ratios);
    harmony.utonal = wholeNumbers(inverse);
    harmony.isOtonal = !isSimpler(complexityOf(harmony.utonal), complexityOf(harmony.otonal));
    harmony.primeLimit = primeLimitOf(harmony.otonal);
    harmony.fundamental =
        harmony.notes[harmony.numbered.first()].frequency / harmony.otonal.first().convert_to<double>();
}

/// Of partials of the low note in `low` Hz and of one `ratio` times higher.
void findBeats(Harmony::Pair& pair, double low, double ratio)
{
    double nearest = -1.0;
    for (int a = 1; a <= Harmony::MAX_PARTIAL; ++a) {
        for (int b = 1; b <= a; ++b) {
            const double apart = std::abs(a - b * ratio);
            if (nearest < 0.0 || apart < nearest - ROUNDING) {
                nearest = apart;
                pair.lowPartial = a;
                pair.highPartial = b;
            }
        }
    }
    pair.beats = nearest * low;
}

void measureExact(Harmony::Pair& pair)
{
    if (pair.ratio < 1) {
        pair.ratio = 1 / pair.ratio;
        std::swap(pair.low, pair.high);
    }
    pair.cents = wideratio::cents(pair.ratio);
    pair.isComma = pair.ratio != 1 && pair.cents < Harmony::COMMA_CENTS;
}

Harmony::Pair pairOf(const QList<SoundingNote>& notes, int low, int high)
{
    Harmony::Pair pair;
    pair.low = low;
    pair.high = high;
    pair.isExact = isExactBetween(notes[low], notes[high]);
    if (pair.isExact) {
        pair.ratio = wideratio::between(notes[low].ratio, notes[high].ratio);
        measureExact(pair);
    } else {
        pair.cents = CENTS_OF_OCTAVE * std::log2(notes[high].frequency / notes[low].frequency);
        pair.isComma = pair.cents > 0.0 && pair.cents < Harmony::COMMA_CENTS;
    }
    const double ratio =
        pair.isExact ? std::exp2(pair.cents / CENTS_OF_OCTAVE) : notes[high].frequency / notes[low].frequency;
    findBeats(pair, notes[pair.low].frequency, ratio);
    // Of an exact pair exactly: partials that coincide do not beat, and slow beats are no rounding.
    if (pair.isExact) {
        const WideRatio apart = pair.lowPartial - pair.highPartial * pair.ratio;
        pair.beats = std::abs(apart.convert_to<double>()) * notes[pair.low].frequency;
    }
    return pair;
}

} // namespace

Harmony Harmony::of(QList<SoundingNote> notes)
{
    Harmony harmony;
    std::sort(notes.begin(), notes.end(), isBelow);
    harmony.notes = std::move(notes);
    if (harmony.notes.isEmpty())
        return harmony;
    findNumbers(harmony);
    const auto count = static_cast<int>(harmony.notes.size());
    for (int low = 0; low < count; ++low) {
        for (int high = low + 1; high < count; ++high)
            harmony.pairs.append(pairOf(harmony.notes, low, high));
    }
    return harmony;
}
