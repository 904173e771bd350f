#include "app/LogFile.h"

#include <QDateTime>
#include <QDebug>
#include <QMutexLocker>
#include <QTextStream>

bool LogFile::open(const QString& path)
{
    mFile.setFileName(path);
    if (!mFile.open(QIODevice::WriteOnly | QIODevice::Append)) {
        qCritical().noquote() << QStringLiteral("Couldn't open log file %1 for writing.").arg(path);
        return false;
    }
    QTextStream(&mFile) << '\n'
                        << QString(78, u'-') << '\n'
                        << "Starting app at "
                        << QDateTime::currentDateTime().toString(QStringLiteral("dd/MM/yy hh:mm:ss.z"))
                        << '\n';
    mFile.flush();
    return true;
}

QString LogFile::stamp()
{
    const QMutexLocker locker(&mMutex); // the writes are not serialised: threads may interleave in the file
    return QTime::currentTime().toString(QStringLiteral("[hh:mm:ss.zzz] "));
}

void LogFile::write(QtMsgType type, const QString& stamp, const QString& message) const
{
    if (type == QtDebugMsg)
        return;
    QString text;
    QTextStream stream(&text);
    if (type == QtCriticalMsg)
        stream << "\nCRITICAL:\n";
    else if (type == QtFatalMsg)
        stream << "\nFATAL:\n";
    stream << stamp << message << '\n';
    if (type == QtCriticalMsg || type == QtFatalMsg)
        stream << '\n';
    // A file object of its own for each message: threads share nothing but the open handle, and one
    // message is one write.
    QFile file;
    if (file.open(mFile.handle(), QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered))
        file.write(text.toUtf8());
}
