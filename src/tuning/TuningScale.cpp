#include "tuning/TuningScale.h"

#include "tuning/AsciiTitle.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double A_HERTZ = 440.0;
constexpr int A_KEY = 69;
constexpr int LAST_KEY = 127;
constexpr int STEPS = 12;

/// From 1 to below 2.
WideRatio withinOctave(const WideRatio& ratio)
{
    const WideRatio reduced = wideratio::withoutOctaves(ratio).reduced;
    return reduced < 1 ? WideRatio(reduced * 2) : reduced;
}

QList<WideRatio> ascending(const TuningSet& set)
{
    QList<WideRatio> found;
    for (const OrloRatio& ratio : set.ratios)
        found.append(wideratio::of(ratio));
    std::sort(found.begin(), found.end());
    return found;
}

} // namespace

TuningScale::TuningScale(const TuningSet& set, tuningexport::Range range)
    : title(asciititle::of(set.title))
    , oneOne(set.oneOne)
{
    QList<WideRatio> found = ascending(set);
    if (found.isEmpty())
        return;
    root = found.first();
    if (range == tuningexport::Range::WithinOctave) {
        const auto lattice = std::find_if(found.cbegin(), found.cend(),
                                          [](const WideRatio& ratio) { return withinOctave(ratio) == 1; });
        root = lattice != found.cend() ? *lattice : root;
    }
    for (WideRatio& ratio : found) {
        ratio /= root;
        if (range == tuningexport::Range::WithinOctave)
            ratio = withinOctave(ratio);
    }
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    const auto pitchOf = [&](const WideRatio& ratio) {
        const WideRatio absolute = root * ratio;
        return Pitch{ratio, wideratio::cents(ratio), set.oneOne * absolute.convert_to<double>()};
    };
    for (const WideRatio& ratio : std::as_const(found))
        pitches.append(pitchOf(ratio));
    degrees = pitches.sliced(1);
    WideRatio period = 2;
    for (; period < found.last(); period *= 2)
        ++periodOctaves;
    if (period != found.last())
        degrees.append(pitchOf(period));
}

int TuningScale::rootKey() const
{
    const double key = A_KEY + STEPS * std::log2(pitches.first().hertz / A_HERTZ);
    return static_cast<int>(std::lround(std::clamp(key, 0.0, double{LAST_KEY})));
}

double TuningScale::hertzOfKey(int key) const
{
    const int count = static_cast<int>(degrees.size());
    const int offset = key - rootKey();
    const int step = (offset % count + count) % count;
    const int periods = (offset - step) / count;
    const Pitch& pitch = step == 0 ? pitches.first() : degrees[step - 1];
    return std::ldexp(pitch.hertz, periods * periodOctaves);
}

QByteArray TuningScale::rootText() const
{
    const QByteArray text = "1/1 is " + hertzText(pitches.first().hertz) + " Hz";
    return root == 1
               ? text
               : text + ", which is " + wideratio::text(root).toLatin1() + " of " + hertzText(oneOne) + " Hz";
}

QByteArray TuningScale::hertzText(double hertz)
{
    constexpr int decimals = 10;
    QByteArray text = QByteArray::number(hertz, 'f', decimals);
    while (text.endsWith('0') && !text.endsWith(".0"))
        text.chop(1);
    return text;
}
