#include "ui/harmony/HarmonyTexts.h"

#include "harmony/IntervalNames.h"
#include "model/Note.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harmonytexts {

namespace {

constexpr qsizetype MOST_DIGITS = 40;
constexpr qsizetype MOST_DIGITS_IN_PAIRS = 4;
/// What is farther from a named interval is not told by it.
constexpr double NEAR_CENTS = 25.0;
constexpr double NEAR_COMMA_CENTS = 3.0;
/// Hz. What lies lower has no name that a player would look for.
constexpr double LOWEST_NAMED = 8.0;
constexpr double LOWEST_WITH_DECIMALS = 0.1;

QString chord(const QList<WideInt>& numbers)
{
    QStringList texts;
    for (const WideInt& each : numbers)
        texts.append(number(each));
    return texts.join(u" : "_s);
}

QString signedText(double cents)
{
    return (cents < 0.0 ? u"-"_s : u"+"_s) + QString::number(std::abs(cents), 'f', 1);
}

QString noteText(double frequency)
{
    const Note note(static_cast<float>(frequency));
    const double cents = static_cast<double>(note.cents());
    return u"%1 %2 cents"_s.arg(note.noteSpelling(), signedText(cents));
}

/// Digits that fit whatever the size is.
QString beatsText(double beats)
{
    return QString::number(beats, 'f', beats < 10.0 ? 2 : beats < 100.0 ? 1 : 0);
}

void fillNear(PairTexts& texts, const Harmony::Pair& pair)
{
    texts.ratio = NEAR_SIGN;
    const auto near = intervalnames::nearestTo(pair.cents, pair.isComma ? NEAR_COMMA_CENTS : NEAR_CENTS);
    if (!near)
        return;
    WideRatio ratio(WideInt(near->entry->numerator), WideInt(near->entry->denominator));
    ratio *= WideInt(1) << near->octaves;
    texts.ratio += u' ' + wideratio::text(ratio);
    texts.name = intervalnames::nameOf(*near);
    texts.beside = signedText(near->cents);
}

} // namespace

QString number(const WideInt& number)
{
    const QString digits = QString::fromStdString(number.str());
    return digits.size() <= MOST_DIGITS ? digits : u"(a number of %1 digits)"_s.arg(digits.size());
}

QString otonal(const Harmony& harmony)
{
    return harmony.otonal.size() < 2 ? QString() : chord(harmony.otonal);
}

QString utonal(const Harmony& harmony)
{
    return harmony.utonal.size() < 2 ? QString() : u"1/(%1)"_s.arg(chord(harmony.utonal));
}

QString limit(const Harmony& harmony)
{
    if (harmony.otonal.size() < 2)
        return {};
    return harmony.primeLimit == 0 ? u"beyond 31"_s : QString::number(harmony.primeLimit);
}

QString fundamental(const Harmony& harmony)
{
    const double frequency = harmony.fundamental;
    if (!(frequency > 0.0) || harmony.otonal.size() < 2)
        return {};
    QString text = frequency < LOWEST_WITH_DECIMALS ? QString::number(frequency, 'g', 3)
                                                    : QString::number(frequency, 'f', 3);
    text += u" Hz"_s;
    if (frequency >= LOWEST_NAMED)
        text += u", "_s + noteText(frequency);
    return harmony.otonal.first() == 1
               ? text + u"; the lowest note"_s
               : text + u"; the lowest note is its harmonic "_s + number(harmony.otonal.first());
}

QString leftOut(const Harmony& harmony)
{
    if (harmony.notes.size() < 2)
        return u"Sound two notes or more."_s;
    const qsizetype count = harmony.notes.size() - harmony.numbered.size();
    if (count <= 0)
        return {};
    return count == 1 ? u"1 glided note is near, not exact."_s
                      : u"%1 glided notes are near, not exact."_s.arg(count);
}

PairTexts ofPair(const Harmony& harmony, const Harmony::Pair& pair)
{
    PairTexts texts;
    texts.cents = u"%1 cents"_s.arg(pair.cents, 0, 'f', 3);
    texts.beats = u"%1/s (%2:%3)"_s.arg(beatsText(pair.beats)).arg(pair.lowPartial).arg(pair.highPartial);
    if (pair.isExact) {
        texts.ratio = wideratio::text(pair.ratio);
        texts.name = pair.name;
        texts.distance = QString::number(pair.harmonicDistance, 'f', 2);
        const qsizetype low = harmony.numbered.indexOf(pair.low);
        const qsizetype high = harmony.numbered.indexOf(pair.high);
        if (low >= 0 && high >= 0) {
            const QString numbers[] = {number(harmony.otonal[low]), number(harmony.otonal[high])};
            if (std::ranges::all_of(numbers,
                                    [](const QString& each) { return each.size() <= MOST_DIGITS_IN_PAIRS; }))
                texts.beside = numbers[0] + u" : "_s + numbers[1];
        }
    } else {
        fillNear(texts, pair);
    }
    if (pair.isComma && !texts.name.endsWith(u"comma"_s))
        texts.name = texts.name.isEmpty() ? u"comma"_s : u"comma: "_s + texts.name;
    return texts;
}

QString PairTexts::all() const
{
    QString text = ratio;
    for (const QString& part :
         {beside, cents, name, distance.isEmpty() ? distance : u"distance "_s + distance,
          u"beats "_s + beats}) {
        if (!part.isEmpty())
            text += u", "_s + part;
    }
    return text;
}

const Harmony::Pair& fromLowest(const Harmony& harmony, int note)
{
    return harmony.pairs[note - 1]; // they are sorted by their lower note first
}

} // namespace harmonytexts
