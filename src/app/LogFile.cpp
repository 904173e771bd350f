#include "app/LogFile.h"

#include <QDateTime>
#include <QDebug>
#include <QFileInfo>
#include <QMutexLocker>
#include <QTextStream>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

bool LogFile::open(const QString& path)
{
    mFile.setFileName(path);
    if (!mFile.open(QIODevice::WriteOnly | QIODevice::Append)) {
        qCritical().noquote() << QStringLiteral("Couldn't open log file %1 for writing.").arg(path);
        return false;
    }
    QString text;
    QTextStream(&text) << '\n'
                       << QString(78, u'-') << '\n'
                       << "Starting app at "
                       << QDateTime::currentDateTime().toString(QStringLiteral("dd/MM/yy hh:mm:ss.z"))
                       << '\n';
    append(text.toUtf8());
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
    append(text.toUtf8());
}

QString LogFile::olderPath(const QString& path)
{
    const QFileInfo file(path);
    return file.path() + u'/' + file.completeBaseName() + QStringLiteral(".1.") + file.suffix();
}

void LogFile::append(const QByteArray& bytes) const
{
    // A file object of its own for each message: threads share nothing but the open handle, and one
    // message is one write.
    QFile file;
    if (!file.open(mFile.handle(), QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered))
        return;
    if (file.size() + bytes.size() > LIMIT)
        beginAnew(bytes.size());
    file.write(bytes);
}

/// Puts the file aside and lets the handle lead into a new one. A thread that writes meanwhile writes its
/// whole message into one of the two. In a folder that takes no new file nothing is lost: the file grows on.
void LogFile::beginAnew(qint64 bytes) const
{
    const QMutexLocker locker(&mMutex);
    const off_t end = lseek(mFile.handle(), 0, SEEK_END);
    if (end == 0 || end + bytes <= LIMIT)
        return; // another thread was faster
    const QByteArray path = QFile::encodeName(mFile.fileName());
    const QByteArray next = path + ".next";
    const int handle = ::open(next, O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0666);
    if (handle < 0)
        return;
    const bool isAside = std::rename(path, QFile::encodeName(olderPath(mFile.fileName()))) == 0
                         || errno == ENOENT; // somebody has removed it
    if (isAside && std::rename(next, path) == 0 && dup2(handle, mFile.handle()) >= 0)
        fcntl(mFile.handle(), F_SETFD, FD_CLOEXEC);
    else
        unlink(next);
    close(handle);
}
