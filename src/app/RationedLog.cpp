#include "app/RationedLog.h"

#include <QDebug>

#include <algorithm>
#include <utility>

namespace {

void warn(const QString& line, RationedLog::Place place)
{
    QMessageLogger(place.file, place.line, nullptr).warning().noquote() << line;
}

} // namespace

RationedLog::RationedLog(QString leftOut, int atOnce, std::chrono::milliseconds oneMoreEach)
    : mLeftOutText(std::move(leftOut))
    , mOneMoreEach(oneMoreEach)
    , mCredit(oneMoreEach * (atOnce - 1))
{
}

bool RationedLog::takeTurn()
{
    const Clock::time_point now = Clock::now();
    if (mSpent > now + mCredit)
        return false;
    mSpent = std::max(mSpent, now) + mOneMoreEach;
    return true;
}

void RationedLog::write(const QString& line, Place place)
{
    if (!takeTurn()) {
        ++mLeftOut;
        return;
    }
    tellLeftOutNow(place);
    warn(line, place);
}

void RationedLog::tellLeftOut(Place place)
{
    if (mLeftOut > 0 && takeTurn())
        tellLeftOutNow(place);
}

void RationedLog::tellLeftOutNow(Place place)
{
    if (const qint64 count = std::exchange(mLeftOut, 0))
        warn(QString::number(count) + u' ' + mLeftOutText, place);
}
