#include "ui/cards/PitchTexts.h"

#include <QStringList>

#include <cmath>

namespace texts {

int frequencyDecimals(float frequency)
{
    if (frequency >= 10000.0F)
        return 1;
    if (frequency >= 1000.0F)
        return 2;
    if (frequency >= 100.0F)
        return 3;
    return frequency >= 10.0F ? 4 : 5;
}

double roundedCents(float cents)
{
    return std::round(static_cast<double>(cents) * 100.0) / 100.0 + 0.0; // no negative zero
}

QString centsText(double cents, int decimals)
{
    // An option that was edited by hand may be any number.
    const QString number = QString::number(cents, 'f', qBound(0, decimals, 10));
    return cents < 0.0 ? number : u'+' + number;
}

bool RatioParts::areWithinBounds() const
{
    // What does not fit reads as 0.
    return numerator.toInt() > 0 && denominator.toInt() > 0;
}

std::optional<RatioParts> ratioParts(const QString& ratio)
{
    const QStringList parts = ratio.split(u'/');
    if (parts.size() != 2)
        return std::nullopt;
    return RatioParts{parts[0], parts[1]};
}

} // namespace texts
