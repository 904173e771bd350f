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
constexpr double LEAST_BEATS = 0.005; // a second; of 0.01
/// Cents. Beyond the highest partial that is looked at, no two come near each other.
constexpr double HIGHEST_WITH_BEATS = 4801.0;
static_assert(Harmony::MAX_PARTIAL == 16);

QString chord(const QList<WideInt>& numbers)
{
    QStringList texts;
    for (const WideInt& each : numbers)
        texts.append(number(each));
    return texts.join(u" : "_s);
}

QString signedText(double cents)
{
    const QString size = QString::number(std::abs(cents), 'f', 1);
    return (cents < 0.0 && size != u"0.0" ? u"-"_s : u"+"_s) + size;
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
    if (beats > 0.0 && beats < LEAST_BEATS) // which do beat
        return u"<0.01"_s;
    return QString::number(beats, 'f', beats < 10.0 ? 2 : beats < 100.0 ? 1 : 0);
}

/// Near the ratio that the two notes have without their glides.
bool fillNearOwnRatio(PairTexts& texts, const Harmony& harmony, const Harmony::Pair& pair)
{
    const SoundingNote& low = harmony.notes[pair.low];
    const SoundingNote& high = harmony.notes[pair.high];
    const WideRatio ratio = wideratio::between(low.ratio, high.ratio);
    const double away = pair.cents - wideratio::cents(ratio);
    if (low.isTempered || high.isTempered || std::abs(away) > NEAR_CENTS || ratio <= 1)
        return false;
    texts.ratio += u' ' + wideratio::text(ratio);
    texts.name = intervalnames::nameOf(ratio);
    texts.beside = signedText(away);
    return true;
}

void fillNear(PairTexts& texts, const Harmony& harmony, const Harmony::Pair& pair)
{
    texts.ratio = NEAR_SIGN;
    if (fillNearOwnRatio(texts, harmony, pair))
        return;
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
    if (harmony.otonal.size() < 2)
        return {};
    if (!(frequency > 0.0))
        return u"lower than any number of Hz that can be told"_s;
    QString text = frequency < LOWEST_WITH_DECIMALS ? QString::number(frequency, 'g', 3)
                                                    : QString::number(frequency, 'f', 3);
    text += u" Hz"_s;
    if (frequency >= LOWEST_NAMED)
        text += u", "_s + noteText(frequency);
    if (harmony.numbered.first() != 0) // the lowest note of all is glided, and no harmonic of it
        return text;
    return harmony.otonal.first() == 1
               ? text + u"; the lowest note"_s
               : text + u"; the lowest note is its harmonic "_s + number(harmony.otonal.first());
}

QString leftOut(const Harmony& harmony)
{
    if (harmony.notes.size() < 2)
        return u"Sound two notes or more."_s;
    const qsizetype count = harmony.notes.size() - harmony.numbered.size();
    if (count > 0)
        return count == 1 ? u"1 note is near, not exact."_s : u"%1 notes are near, not exact."_s.arg(count);
    const double offset = harmony.notes.first().offset;
    return offset == 0.0 ? QString()
                         : u"All are glided by %1 cents; their ratios hold."_s.arg(signedText(offset));
}

PairTexts ofPair(const Harmony& harmony, const Harmony::Pair& pair)
{
    PairTexts texts;
    texts.cents = u"%1 cents"_s.arg(pair.cents, 0, 'f', 3);
    if (pair.cents < HIGHEST_WITH_BEATS)
        texts.beats = u"%1/s (%2:%3)"_s.arg(beatsText(pair.beats)).arg(pair.lowPartial).arg(pair.highPartial);
    if (pair.isExact) {
        texts.ratio = wideratio::text(pair.ratio);
        texts.name = intervalnames::nameOf(pair.ratio);
        texts.distance = QString::number(wideratio::harmonicDistance(pair.ratio), 'f', 2);
        const qsizetype low = harmony.numbered.indexOf(pair.low);
        const qsizetype high = harmony.numbered.indexOf(pair.high);
        if (low >= 0 && high >= 0) {
            const QString numbers[] = {number(harmony.otonal[low]), number(harmony.otonal[high])};
            if (std::ranges::all_of(numbers,
                                    [](const QString& each) { return each.size() <= MOST_DIGITS_IN_PAIRS; }))
                texts.beside = numbers[0] + u" : "_s + numbers[1];
        }
    } else {
        fillNear(texts, harmony, pair);
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
          beats.isEmpty() ? beats : u"beats "_s + beats}) {
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
