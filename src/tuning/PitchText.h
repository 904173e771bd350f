#pragma once

#include "tuning/TuningScale.h"

/// Ratios, cents and Hz in columns, for people. [gui]
namespace pitchtext {

QByteArray write(const TuningScale& scale);

} // namespace pitchtext
