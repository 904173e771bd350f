#pragma once

#include "tuning/TuningScale.h"

/// Which keys play a scale, and at which pitch, as a file ".kbm". [gui]
namespace keyboardtext {

QByteArray write(const TuningScale& scale);

} // namespace keyboardtext
