#pragma once

#include <QDebug>

#include <cstdio>
#include <mutex>
#include <set>
#include <string>

/// Prints a line, the first time only. From any thread.
inline void sayOnce(const std::string& line)
{
    static std::mutex mutex;
    static std::set<std::string> said;
    const std::lock_guard lock(mutex);
    if (said.insert(line).second)
        std::fprintf(stderr, "%s\n", line.c_str());
}

/// The engine's log lines and Qt's own would drown the figures; what went wrong still shows. To be called
/// before the application object is made, which warns too.
inline void installQuietLog()
{
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
        if (type == QtCriticalMsg || type == QtFatalMsg)
            sayOnce(text.toStdString());
    });
}
