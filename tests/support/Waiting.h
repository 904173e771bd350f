#pragma once

#include <QtCore/qtestsupport_core.h>

/// Delivers this thread's events until the condition holds; false when that takes too long. A wait that
/// fails is a failed test, so the limit can be generous: a busy machine must not fail one.
template <class Condition>
bool waitUntil(const Condition& condition, int limitMs = 15000)
{
    return QTest::qWaitFor(condition, limitMs);
}
