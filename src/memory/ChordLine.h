#pragma once

#include "memory/ChordFileError.h"
#include "model/OrloRatio.h"

#include <QList>
#include <QString>

/// One line of a chord file, such as "1/1 3/2 5/4 0"; "0" ends it, and alone is an empty slot.
namespace chordline {

/// What is known of a file after the lines that were read so far.
struct Reading
{
    bool ok = true; // of the last number that was read
    QString error;
    QList<ChordFileError::Part> noRatios; // such as "3/0"
    bool lost = false;                    // what is written of it again does not say the same
};

bool isEmptySlot(const QString& line);
/// Such as "0/1 3/2 0", an empty slot all the same.
bool holdsMoreThanAnEmptySlot(const QString& line);
/// A wrong ratio cuts the chord short. `slot` counts from 1.
QList<OrloRatio> read(const QString& line, int slot, Reading& reading);
/// With its line end.
QString write(const QList<OrloRatio>& chord);

} // namespace chordline
