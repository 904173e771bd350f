#include "files/SetAside.h"

#include "files/WriteThrough.h"

#include <QDateTime>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMutex>
#include <QSet>

namespace SetAside {

namespace {

QMutex theMutex;
QSet<QString> theMarked;

const QString ENDING = QStringLiteral(".bad-");

bool takeMark(const QString& path)
{
    const QMutexLocker locker(&theMutex);
    return theMarked.remove(path);
}

QString equalCopy(const QFileInfo& file, const QByteArray& content)
{
    const QFileInfoList copies =
        file.dir().entryInfoList({file.fileName() + ENDING + u'*'}, QDir::Files | QDir::Hidden);
    for (const QFileInfo& entry : copies) {
        QFile copy(entry.filePath());
        if (entry.size() == content.size() && copy.open(QIODevice::ReadOnly) && copy.readAll() == content)
            return copy.fileName();
    }
    return QString();
}

QString freeName(const QString& path)
{
    const QString first =
        path + ENDING + QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    QString name = first;
    for (int number = 2; QFileInfo::exists(name); ++number)
        name = QStringLiteral("%1-%2").arg(first).arg(number);
    return name;
}

/// On the disk when this returns. Never over another file.
Result copyTo(const QString& name, const QByteArray& content)
{
    QFile copy(name);
    if (!copy.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered))
        return {.reason = copy.errorString()};
    const QString reason = writeThrough(copy.handle(), content);
    if (reason.isEmpty())
        return {.place = name, .isNew = true};
    copy.remove();
    return {.reason = reason};
}

Result copyAside(const QString& path)
{
    QFile file(path);
    if (!file.exists())
        return {};
    if (!file.open(QIODevice::ReadOnly))
        return {.reason = file.errorString()};
    const QByteArray content = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return {.reason = file.errorString()};
    if (content.isEmpty())
        return {};
    if (const QString copy = equalCopy(QFileInfo(path), content); !copy.isEmpty())
        return {.place = copy};
    return copyTo(freeName(path), content);
}

} // namespace

void mark(const QString& path)
{
    const QMutexLocker locker(&theMutex);
    theMarked.insert(path);
}

bool isMarked(const QString& path)
{
    const QMutexLocker locker(&theMutex);
    return theMarked.contains(path);
}

Result copyMarked(const QString& path)
{
    if (!takeMark(path))
        return {};
    Result result = copyAside(path);
    if (!result.reason.isEmpty())
        mark(path);
    else if (result.isNew)
        qWarning().noquote() << QStringLiteral("%1 could not be read whole. As it was, it lies in %2.")
                                    .arg(path, result.place);
    return result;
}

Result moveMarked(const QString& path)
{
    Result result = copyMarked(path);
    if (!result.reason.isEmpty())
        return result;
    if (QFile file(path); file.exists() && !file.remove())
        return {.reason = file.errorString()};
    return result;
}

} // namespace SetAside
