#pragma once

#include "model/RatioFraction.h"

#include <QString>

/// "n/d" as the player reads it: within one octave when the option `ratiosWithinOctave` is on.
QString ratioText(RatioFraction fraction);
