#pragma once

#include <QDebug>

#include <cstdio>

/// The engine's log lines and Qt's own would drown the figures; what ends a benchmark still shows.
inline void installQuietLog()
{
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
        if (type == QtCriticalMsg || type == QtFatalMsg)
            std::fprintf(stderr, "%s\n", qPrintable(text));
    });
}
