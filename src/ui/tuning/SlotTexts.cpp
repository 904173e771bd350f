#include "ui/tuning/SlotTexts.h"

#include <QStringList>

namespace slottexts {

QString name(int slot)
{
    return QStringLiteral("Chord %1").arg(slot);
}

QString count(qsizetype pitches)
{
    if (pitches == 1)
        return QStringLiteral("1 pitch");
    return pitches == 0 ? QStringLiteral("no pitch") : QStringLiteral("%1 pitches").arg(pitches);
}

QString ratios(const QList<OrloRatio>& ratios)
{
    QStringList texts;
    for (const OrloRatio& ratio : ratios)
        texts.append(QStringLiteral("%1/%2").arg(ratio.numerator()).arg(ratio.denominator()));
    return texts.join(QStringLiteral("  "));
}

} // namespace slottexts
