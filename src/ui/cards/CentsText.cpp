#include "ui/cards/CentsText.h"

#include <cmath>

namespace texts {

double roundedCents(float cents)
{
    return std::round(static_cast<double>(cents) * 100.0) / 100.0 + 0.0; // + 0.0: no negative zero
}

QString centsText(double cents, int decimals)
{
    // An option that was edited by hand may be any number.
    const QString number = QString::number(cents, 'f', qBound(0, decimals, 10));
    return cents < 0.0 ? number : u'+' + number;
}

} // namespace texts
