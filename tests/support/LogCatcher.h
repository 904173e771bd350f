#pragma once

#include <QList>
#include <QMutex>
#include <QString>

#include <algorithm>
#include <utility>
#include <vector>

/// Catches all log messages while it lives, from any thread. One at a time.
class LogCatcher
{
public:
    struct Line
    {
        QtMsgType type;
        QString text;
    };

    LogCatcher()
        : mPrevious((theCatcher = this, qInstallMessageHandler(&LogCatcher::handle)))
    {
    }
    ~LogCatcher()
    {
        qInstallMessageHandler(mPrevious);
        theCatcher = nullptr;
    }
    LogCatcher(const LogCatcher&) = delete;
    LogCatcher& operator=(const LogCatcher&) = delete;

    QList<Line> lines() const
    {
        const QMutexLocker locker(&mMutex);
        return {mLines.begin(), mLines.end()};
    }
    /// Lines of this type that contain the text.
    int count(QtMsgType type, const QString& text) const
    {
        const QList<Line> all = lines();
        return static_cast<int>(std::ranges::count_if(
            all, [&](const Line& line) { return line.type == type && line.text.contains(text); }));
    }
    bool has(QtMsgType type, const QString& text) const { return count(type, text) > 0; }
    void clear()
    {
        const QMutexLocker locker(&mMutex);
        mLines.clear();
    }

private:
    static void handle(QtMsgType type, const QMessageLogContext&, const QString& text)
    {
        if (!theCatcher)
            return;
        const QMutexLocker locker(&theCatcher->mMutex);
        theCatcher->mLines.push_back({type, text});
    }

    inline static LogCatcher* theCatcher = nullptr;
    mutable QMutex mMutex;
    std::vector<Line> mLines; // shares nothing with what lines() gave out
    QtMessageHandler mPrevious;
};
