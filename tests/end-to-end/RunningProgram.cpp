#include "end-to-end/RunningProgram.h"

#include "support/Waiting.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

QString RunningProgram::executable()
{
    return qEnvironmentVariable("ORLO_PROGRAM",
                                QCoreApplication::applicationDirPath() + u"/brevick-tuning-orlo"_s);
}

RunningProgram::RunningProgram(VirtualDesk& desk, const QString& executable)
    : mDesk(desk)
{
    setProcessEnvironment(desk.environment());
    start(executable, QStringList());
    waitForStarted();
}

bool RunningProgram::waitForWindow()
{
    waitUntil([this] { return !isRunning() || window(); }, 30000);
    const auto there = window();
    // No window manager gives the keys to anyone.
    return there && mDesk.act(u"windowfocus %1"_s.arg(there->id));
}

bool RunningProgram::waitForBox()
{
    return waitUntil([this] { return !isRunning() || box(); }, 30000) && box();
}

bool RunningProgram::moveTo(const QRect& wanted)
{
    const auto there = window();
    if (!there)
        return false;
    const QString act = u"windowmove %1 %2 %3 windowsize %1 %4 %5"_s;
    return mDesk.act(
               act.arg(there->id).arg(wanted.x()).arg(wanted.y()).arg(wanted.width()).arg(wanted.height()))
           && waitUntil([&] { return place() == wanted; });
}

QRect RunningProgram::place() const
{
    const auto there = window();
    return there ? there->place : QRect();
}

bool RunningProgram::click(QPoint point)
{
    const QRect frame = place();
    if (frame.isEmpty())
        return false;
    const QPoint there = frame.topLeft() + point;
    const QPoint away = frame.topLeft() + QPoint(2, 2);
    const QString act = u"mousemove %1 %2 click 1 mousemove %3 %4"_s;
    return mDesk.act(act.arg(there.x()).arg(there.y()).arg(away.x()).arg(away.y()));
}

bool RunningProgram::confirmBox()
{
    const auto there = box();
    return there && mDesk.act(u"windowfocus %1 key Return"_s.arg(there->id))
           && waitUntil([this] { return !box(); });
}

std::optional<int> RunningProgram::waitForExit(int longestMs)
{
    if (!waitUntil([this] { return !isRunning(); }, longestMs) || exitStatus() != NormalExit)
        return std::nullopt;
    return exitCode();
}

std::optional<int> RunningProgram::quit()
{
    if (const auto there = window())
        mDesk.requestClose(*there);
    return waitForExit();
}
