#pragma once

#include <QMetaObject>

class DiagnosticsDialog;
class QDir;

/// What the application does for the folders below it, which do not know its class. Graphical thread.
class ApplicationServices
{
public:
    virtual ~ApplicationServices() = default;

    /// Reads both style sheets again; nothing is applied unless both could be read.
    virtual bool loadStyleSheet() = 0;
    /// Connects the log lines that the filter lets through, which come from any thread, to the
    /// dialog's onMessage().
    virtual QMetaObject::Connection connectDiagnostics(DiagnosticsDialog* dialog) = 0;
    /// What a press is meant to do, as the mode buttons choose it; nothing reads it.
    virtual void setPressMode(qint16 mode) = 0;
    /// Reads a chord file into the chord memory, and writes one; the QDir carries the file's path.
    /// Always true: what goes wrong is logged, and an invalid ratio does not discard the rest of the file.
    virtual bool loadChordsFromDiskToStorage(QDir* file) = 0;
    virtual bool saveStoredChordsToDisk(QDir* file) = 0;
};
