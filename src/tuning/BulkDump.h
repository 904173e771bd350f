#pragma once

#include "tuning/TuningScale.h"

/// The tuning of all keys as a bulk dump of the MIDI Tuning Standard (MIDI 1.0 Detailed Specification): for
/// tuning program 0 of all devices. Empty for a scale that leaves every key out of its range, from 8.18 to
/// 13289 Hz. [gui]
namespace bulkdump {

QByteArray write(const TuningScale& scale);

} // namespace bulkdump
