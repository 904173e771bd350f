#include "harmony/Drift.h"

#include "harmony/IntervalNames.h"

#include <QStringList>

#include <cmath>

namespace {

QString reducedText(const Drift& drift)
{
    const bool isUp = drift.reduced > 1;
    const WideRatio size = isUp ? drift.reduced : WideRatio(1) / drift.reduced;
    const QString text = QStringLiteral("%1 %2, %3 cents")
                             .arg(wideratio::text(size), isUp ? QStringLiteral("up") : QStringLiteral("down"),
                                  QString::number(std::abs(drift.cents), 'f', 3));
    return drift.name.isEmpty() ? text : text + QStringLiteral(": ") + drift.name;
}

QString octavesText(int octaves)
{
    const int count = std::abs(octaves);
    return QStringLiteral("%1 %2 %3")
        .arg(count)
        .arg(count == 1 ? QStringLiteral("octave") : QStringLiteral("octaves"),
             octaves > 0 ? QStringLiteral("up") : QStringLiteral("down"));
}

} // namespace

Drift Drift::of(const OrloRatio& transposition)
{
    Drift drift;
    drift.whole = wideratio::of(transposition);
    const auto [reduced, octaves] = wideratio::withoutOctaves(drift.whole);
    drift.reduced = reduced;
    drift.octaves = octaves;
    drift.cents = wideratio::cents(reduced);
    if (reduced == 1)
        return drift;
    drift.name = intervalnames::nameOf(reduced);
    if (drift.name.isEmpty()) {
        if (const auto power = intervalnames::powerOfComma(reduced))
            drift.name = QStringLiteral("%1 times the %2").arg(power->count).arg(power->name);
    }
    return drift;
}

QString Drift::text() const
{
    QStringList parts;
    if (reduced != 1)
        parts.append(reducedText(*this));
    if (octaves != 0)
        parts.append(octavesText(octaves));
    return parts.isEmpty() ? QStringLiteral("where it began") : parts.join(QStringLiteral(", and "));
}
