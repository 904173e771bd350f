#include "end-to-end/RunningProgram.h"

#include "support/Waiting.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

namespace {

const QString MAIN_TITLE = u"Brevick Tuning Orlo 2"_s;
const QString BOX_TITLE = u"Brevick Tuning Orlo"_s;

} // namespace

QString RunningProgram::executable()
{
    return QCoreApplication::applicationDirPath() + u"/brevick-tuning-orlo"_s;
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
    const auto settled = [this] { return !isRunning() || mDesk.window(MAIN_TITLE); };
    if (!waitUntil(settled, 30000))
        return false;
    const auto window = mDesk.window(MAIN_TITLE);
    // No window manager gives the keys to anyone.
    return window && mDesk.act(u"windowfocus %1"_s.arg(window->id));
}

bool RunningProgram::waitForBox()
{
    return waitUntil([this] { return !isRunning() || hasBox(); }, 30000) && hasBox();
}

bool RunningProgram::hasBox() const
{
    return mDesk.window(BOX_TITLE).has_value();
}

bool RunningProgram::moveTo(const QRect& wanted)
{
    const auto window = mDesk.window(MAIN_TITLE);
    if (!window)
        return false;
    const QString act = u"windowmove %1 %2 %3 windowsize %1 %4 %5"_s;
    return mDesk.act(
               act.arg(window->id).arg(wanted.x()).arg(wanted.y()).arg(wanted.width()).arg(wanted.height()))
           && waitUntil([&] { return place() == wanted; });
}

QRect RunningProgram::place() const
{
    const auto window = mDesk.window(MAIN_TITLE);
    return window ? window->place : QRect();
}

bool RunningProgram::click(QPoint point)
{
    const QRect window = place();
    if (window.isEmpty())
        return false;
    const QPoint there = window.topLeft() + point;
    const QPoint away = window.topLeft() + QPoint(2, 2);
    const QString act = u"mousemove %1 %2 click 1 mousemove %3 %4"_s;
    return mDesk.act(act.arg(there.x()).arg(there.y()).arg(away.x()).arg(away.y()));
}

bool RunningProgram::type(const QString& keys)
{
    return mDesk.act(u"key "_s + keys);
}

bool RunningProgram::confirmBox()
{
    const auto box = mDesk.window(BOX_TITLE);
    return box && mDesk.act(u"windowfocus %1 key Return"_s.arg(box->id))
           && waitUntil([this] { return !hasBox(); });
}

std::optional<int> RunningProgram::waitForExit(int longestMs)
{
    if (!waitUntil([this] { return !isRunning(); }, longestMs) || exitStatus() != NormalExit)
        return std::nullopt;
    return exitCode();
}

std::optional<int> RunningProgram::quit()
{
    if (const auto window = mDesk.window(MAIN_TITLE))
        mDesk.requestClose(*window);
    return waitForExit();
}
