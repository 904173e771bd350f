#include "support/LogCatcher.h"

#include <QMutexLocker>

namespace {
LogCatcher* theCatcher = nullptr;
}

LogCatcher::LogCatcher()
{
    theCatcher = this;
    mPrevious = qInstallMessageHandler(&LogCatcher::handle);
}

LogCatcher::~LogCatcher()
{
    qInstallMessageHandler(mPrevious);
    theCatcher = nullptr;
}

QList<LogCatcher::Line> LogCatcher::lines() const
{
    const QMutexLocker locker(&mMutex);
    return mLines;
}

int LogCatcher::count(QtMsgType type, const QString& text) const
{
    int found = 0;
    for (const Line& line : lines())
        found += line.type == type && line.text.contains(text) ? 1 : 0;
    return found;
}

void LogCatcher::clear()
{
    const QMutexLocker locker(&mMutex);
    mLines.clear();
}

void LogCatcher::handle(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    if (!theCatcher)
        return;
    const QMutexLocker locker(&theCatcher->mMutex);
    theCatcher->mLines.append({type, text});
}
