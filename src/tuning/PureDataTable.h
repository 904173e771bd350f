#pragma once

#include "tuning/TuningScale.h"

/// A patch for Pure Data 0.52 and above that holds three tables and nothing else: "orlo-pitches" and
/// "orlo-keys", in Hz, and the exact ratios as the text "orlo-ratios". [gui]
namespace puredatatable {

QByteArray write(const TuningScale& scale);

} // namespace puredatatable
