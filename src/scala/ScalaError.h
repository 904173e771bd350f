#pragma once

#include <QString>

/// Why a Scala file was refused.
struct ScalaError
{
    int line = 0; // counted from 1; 0: the file as a whole
    QString reason = {};

    /// "Line 5: ..." for the player.
    QString text() const { return line > 0 ? QStringLiteral("Line %1: %2").arg(line).arg(reason) : reason; }
};
