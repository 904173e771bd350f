#pragma once

#include "model/OrloRatio.h"

#include <QHash>
#include <QString>

#include <memory>

struct KeyTable;

/// What a player calls a MIDI key, counted from 0: "C4 60". [any]
QString keyName(int key);

/// The keys that play each exact pitch, for the player: "E4 64", or "E4 64 ch 3" where the key does not play
/// it on all channels. Of several keys the lowest stand there, separated by commas. By the ratio from 1/1
/// before the transposition. [any]
QHash<OrloRatio, QString> keysOfPitches(const QList<std::shared_ptr<const KeyTable>>& tables);
