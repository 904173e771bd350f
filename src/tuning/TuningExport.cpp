#include "tuning/TuningExport.h"

#include "tuning/BulkDump.h"
#include "tuning/KeyboardText.h"
#include "tuning/PitchText.h"
#include "tuning/PureDataTable.h"
#include "tuning/ScalaText.h"
#include "tuning/TuningScale.h"

namespace tuningexport {
namespace {

// What readers take as a frequency in Hz.
constexpr double LOWEST = 1e-3;
constexpr double HIGHEST = 1e6;

QByteArray written(const TuningScale& scale, Format format)
{
    switch (format) {
    case Format::Scala: return scalatext::write(scale);
    case Format::Keyboard: return keyboardtext::write(scale);
    case Format::BulkDump: return bulkdump::write(scale);
    case Format::PureData: return puredatatable::write(scale);
    case Format::Text: return pitchtext::write(scale);
    }
    return {};
}

} // namespace

QString suffix(Format format)
{
    switch (format) {
    case Format::Scala: return QStringLiteral("scl");
    case Format::Keyboard: return QStringLiteral("kbm");
    case Format::BulkDump: return QStringLiteral("syx");
    case Format::PureData: return QStringLiteral("pd");
    case Format::Text: return QStringLiteral("txt");
    }
    return {};
}

QByteArray write(const TuningSet& set, Format format, Range range, QString& reason)
{
    const TuningScale scale(set, range);
    if (scale.pitches.isEmpty()) {
        reason = QStringLiteral("There is no pitch to write.");
        return {};
    }
    const bool isWithin = scale.pitches.first().hertz >= LOWEST && scale.pitches.last().hertz <= HIGHEST;
    QByteArray text = isWithin ? written(scale, format) : QByteArray();
    if (!isWithin)
        reason = QStringLiteral("Not all pitches lie from 0.001 to 1000000 Hz.");
    else if (text.isEmpty())
        reason = QStringLiteral("No key lies within the 8.2 to 13289 Hz that MIDI keys can be tuned to.");
    return text;
}

} // namespace tuningexport
