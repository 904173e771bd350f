#pragma once

#include "tuning/TuningSet.h"

#include <QByteArray>
#include <QStringList>

/// A set of pitches in the formats of other programs. Each text is ASCII and as the narrowest reader takes
/// it. [gui]
namespace tuningexport {

enum class Format {
    Scala,    // .scl
    Keyboard, // .kbm, which gives the scale's true pitch
    BulkDump, // .syx, MIDI Tuning Standard
    PureData, // a table of frequencies in Hz
    Text,     // ratios, cents and Hz, also for the clipboard
};
enum class Range {
    WithinOctave, // each pitch within the octave above 1/1, ascending, once, with 2/1 as the period
    AsPlayed,     // from the lowest pitch up, with the octave above the highest as the period
};

QString suffix(Format format); // "scl"
/// The whole file. Empty, with the reason, for a set that the format cannot hold.
QByteArray write(const TuningSet& set, Format format, Range range, QString& reason);

} // namespace tuningexport
