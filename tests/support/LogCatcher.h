#pragma once

#include <QList>
#include <QMutex>
#include <QString>

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

    LogCatcher();
    ~LogCatcher();
    LogCatcher(const LogCatcher&) = delete;
    LogCatcher& operator=(const LogCatcher&) = delete;

    QList<Line> lines() const;
    /// Lines of this type that contain the text.
    int count(QtMsgType type, const QString& text) const;
    bool has(QtMsgType type, const QString& text) const { return count(type, text) > 0; }
    void clear();

private:
    static void handle(QtMsgType type, const QMessageLogContext& context, const QString& text);

    mutable QMutex mMutex;
    std::vector<Line> mLines; // shares nothing with what lines() gave out
    QtMessageHandler mPrevious = nullptr;
};
