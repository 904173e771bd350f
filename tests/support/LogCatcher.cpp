#include "support/LogCatcher.h"

#include <QMutexLocker>

#include <algorithm>

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
    return {mLines.begin(), mLines.end()};
}

int LogCatcher::count(QtMsgType type, const QString& text) const
{
    const QMutexLocker locker(&mMutex);
    return static_cast<int>(std::ranges::count_if(
        mLines, [&](const Line& line) { return line.type == type && line.text.contains(text); }));
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
    theCatcher->mLines.push_back({type, text});
}
