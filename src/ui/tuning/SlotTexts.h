#pragma once

#include "model/OrloRatio.h"

#include <QList>
#include <QString>

/// How dialogs name slots and pitches. [gui]
namespace slottexts {

/// "Chord 3".
QString name(int slot);
/// "no pitch", "1 pitch", "4 pitches".
QString count(qsizetype pitches);
/// "1/1  5/4  3/2".
QString ratios(const QList<OrloRatio>& ratios);

} // namespace slottexts
