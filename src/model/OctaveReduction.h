#pragma once

#include "model/RatioFraction.h"

/// A ratio moved by octaves until it lies from 1 up to 2, as far as that fits in 64 bits. Only texts are
/// reduced: a pitch keeps its octave.
RatioFraction withinOctave(RatioFraction fraction);
