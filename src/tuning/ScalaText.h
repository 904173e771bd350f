#pragma once

#include "tuning/TuningScale.h"

/// A scale as a file ".scl". [gui]
namespace scalatext {

QByteArray write(const TuningScale& scale);

} // namespace scalatext
