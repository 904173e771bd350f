#include "ui/cards/RatioParts.h"

#include <QStringList>

namespace texts {

bool RatioParts::areWithinBounds() const
{
    // What does not fit reads as 0.
    return numerator.toInt() > 0 && denominator.toInt() > 0;
}

QString RatioParts::inTwoLines() const
{
    return numerator + QStringLiteral("/\n ") + denominator;
}

std::optional<RatioParts> ratioParts(const QString& ratio)
{
    const QStringList parts = ratio.split(u'/');
    if (parts.size() != 2)
        return std::nullopt;
    return RatioParts{parts[0], parts[1]};
}

} // namespace texts
