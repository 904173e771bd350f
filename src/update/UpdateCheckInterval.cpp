#include "update/UpdateCheckInterval.h"

#include <QDateTime>

namespace {

// Of the option `updateCheckInterval`.
enum Interval { Always, Weekly, Monthly, Quarterly, Never, FiveMinutes };

// The stored text has no time zone: after a flight the last check may lie a day ahead.
constexpr int ZONES_DAYS = 2;

/// A check that never was, cannot be read, or lies in the future, since the clock stood wrong then,
/// counts as one year old. Otherwise a wrong text would end all checks for good.
QDateTime timeOfCheck(const QString& text, const QDateTime& now)
{
    const QDateTime time = QDateTime::fromString(text, Qt::TextDate);
    return time.isValid() && time <= now.addDays(ZONES_DAYS) ? time : now.addYears(-1);
}

} // namespace

bool updatecheck::isDue(int interval, const QString& lastCheck, const QDateTime& now)
{
    const QDateTime last = timeOfCheck(lastCheck, now);
    switch (interval) {
    case Always: return true;
    case Weekly: return last.addDays(7) < now;
    case Monthly: return last.addMonths(1) < now;
    case Quarterly: return last.addMonths(3) < now;
    case FiveMinutes: return last.addSecs(300) < now;
    default: return false; // never, and what no menu gives
    }
}
