#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

/// Asks again and again until the answer is yes. A wait that fails is a failed test, so the
/// longest time can be generous: a busy machine must not fail one.
template <class Condition>
bool waitUntil(Condition&& condition, int longestMs = 15000)
{
    constexpr unsigned long POLL_MS = 20;
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > longestMs)
            return false;
        QCoreApplication::processEvents(); // how a QProcess learns that its process ended
        QThread::msleep(POLL_MS);
    }
    return true;
}
