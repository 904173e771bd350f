#pragma once

#include <QString>

/// What a player calls a MIDI key, counted from 0: "C4 60". [any]
QString keyName(int key);
