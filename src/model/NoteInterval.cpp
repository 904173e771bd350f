#include "model/NoteInterval.h"

#include <QLatin1StringView>

#include <array>
#include <cstddef>

namespace {

struct PrimeInterval
{
    int prime;
    QLatin1StringView text;
};

constexpr PrimeInterval PRIME_INTERVALS[] = {
    {2, QLatin1StringView("p8")},  {3, QLatin1StringView("p5")},    {5, QLatin1StringView("M3")},
    {7, QLatin1StringView("m7")},  {11, QLatin1StringView("aug4")}, {13, QLatin1StringView("m6")},
    {17, QLatin1StringView("m2")}, {19, QLatin1StringView("m3")},   {23, QLatin1StringView("aug4")},
    {29, QLatin1StringView("m7")}, {31, QLatin1StringView("M7")},
};

enum class Form { Major, Perfect, Unknown };

/// What an interval of this many diatonic steps is called when nothing is altered.
struct Size
{
    Form form;
    int semitones;
};

constexpr std::array<Size, 8> SIZES{{
    {Form::Perfect, 0},
    {Form::Major, 2},
    {Form::Major, 4},
    {Form::Perfect, 5},
    {Form::Perfect, 7},
    {Form::Major, 9},
    {Form::Major, 11},
    {Form::Perfect, 12},
}};

Size sizeOf(int steps)
{
    const bool isKnown = steps >= 0 && steps < static_cast<int>(SIZES.size());
    return isKnown ? SIZES[static_cast<size_t>(steps)] : Size{Form::Unknown, 0};
}

/// By quality from -2, then by form.
constexpr QLatin1StringView QUALITIES[4][3] = {
    {QLatin1StringView("dim"), QLatin1StringView("dim"), QLatin1StringView("dim")},
    {QLatin1StringView("m"), QLatin1StringView("dim"), QLatin1StringView()},
    {QLatin1StringView("M"), QLatin1StringView("p"), QLatin1StringView()},
    {QLatin1StringView("aug"), QLatin1StringView("aug"), QLatin1StringView("aug")},
};

QString qualityText(int quality, Form form)
{
    if (quality < -2 || quality > 1)
        return {};
    return QUALITIES[quality + 2][static_cast<int>(form)];
}

} // namespace

NoteInterval::NoteInterval(const QString& text)
{
    init();
    storeFromString(text);
}

NoteInterval::NoteInterval(int prime)
{
    init();
    storeFromPrime(prime);
}

void NoteInterval::init()
{
    mDirection = 1;
    mOctaves = 0;
    mSteps = 0;
    mQuality = 0;
}

void NoteInterval::storeFromString(const QString& text)
{
    const bool isDown = text.startsWith(u'-');
    mDirection = isDown ? -1 : 1;
    QString quality = text.mid(isDown ? 1 : 0);
    mSteps = quality.right(1).toInt() - 1; // 0 for what is no number
    quality.chop(1);

    const Form form = sizeOf(mSteps).form;
    if (quality == QLatin1StringView("m"))
        mQuality = -1;
    else if (quality == QLatin1StringView("M") || quality == QLatin1StringView("p"))
        mQuality = 0;
    else if (quality == QLatin1StringView("aug"))
        mQuality = 1;
    else if (quality == QLatin1StringView("dim") && form != Form::Unknown)
        mQuality = form == Form::Major ? -2 : -1; // a major interval shrinks to the minor one first
}

void NoteInterval::storeFromPrime(int prime)
{
    for (const PrimeInterval& row : PRIME_INTERVALS) {
        if (row.prime == qAbs(prime))
            storeFromString(prime < 0 ? u'-' + QString(row.text) : QString(row.text));
    }
}

QString NoteInterval::toString() const
{
    const QString sign = mDirection < 0 ? QStringLiteral("-") : QString();
    return sign + qualityText(mQuality, sizeOf(mSteps).form) + QString::number(mSteps + 1);
}

int NoteInterval::toSemitoneDistance() const
{
    return (sizeOf(mSteps).semitones + mOctaves * 12 + mQuality) * mDirection;
}
