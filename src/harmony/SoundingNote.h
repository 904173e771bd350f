#pragma once

#include "model/OrloRatio.h"

/// A note that sounds: its ratio, and the frequency in which it is heard.
struct SoundingNote
{
    OrloRatio ratio;         // absolute, from 1/1 before the transposition
    double frequency = 0.0;  // Hz as heard, with glissando and bend
    double offset = 0.0;     // cents that the heard pitch lies above its ratio; 0 exactly for an exact note
    bool isTempered = false; // has no exact ratio at all; then the ratio is a close fraction only

    /// Counts with its true pitch, and as near to its ratio, not equal to it.
    bool isExact() const { return offset == 0.0 && !isTempered; }
    bool operator==(const SoundingNote&) const = default;
};
