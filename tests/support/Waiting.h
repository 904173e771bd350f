#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

/// Asks again and again until the answer is yes, and delivers this thread's events meanwhile. False when
/// that takes too long. A wait that fails is a failed test, so the limit can be generous: a busy machine
/// must not fail one.
template <class Condition>
bool waitUntil(Condition&& condition, int limitMs = 15000)
{
    constexpr unsigned long POLL_MS = 2;
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > limitMs)
            return false;
        QCoreApplication::processEvents();
        QThread::msleep(POLL_MS);
    }
    return true;
}
