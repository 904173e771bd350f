#pragma once

#include <QFile>
#include <QMutex>
#include <QString>

/// The log file: what is written into it and how. Open for the whole run, and appended to from run to run;
/// only a file that would pass LIMIT is put aside, in place of the one before it, and another one begun.
/// Opened and closed on the graphical thread; any thread writes.
class LogFile
{
public:
    static constexpr qint64 LIMIT = 4 * 1024 * 1024; // bytes

    /// Appends the banner of a start. False, with a critical line, when the file cannot be written.
    bool open(const QString& path);

    /// The present time as it stands before each message, with a blank at its end.
    QString stamp();
    /// Warnings and above; critical and fatal messages stand under a heading. Debug messages never
    /// reach the file.
    void write(QtMsgType type, const QString& stamp, const QString& message) const;

    /// The file that was put aside: "log.1.txt" of "log.txt".
    static QString olderPath(const QString& path);

private:
    void append(const QByteArray& bytes) const;
    void beginAnew(qint64 bytes) const;

    QFile mFile;
    mutable QMutex mMutex;
};
