#pragma once

#include <QFile>
#include <QMutex>
#include <QString>

/// The log file: what is written into it and how. Open for the whole run, never rotated or truncated.
/// Opened and closed on the graphical thread; any thread writes.
class LogFile
{
public:
    /// Appends the banner of a start. False, with a critical line, when the file cannot be written.
    bool open(const QString& path);

    /// The present time as it stands before each message, with a blank at its end.
    QString stamp();
    /// Warnings and above; critical and fatal messages stand under a heading. Debug messages never
    /// reach the file.
    void write(QtMsgType type, const QString& stamp, const QString& message) const;

private:
    QFile mFile;
    QMutex mMutex;
};
