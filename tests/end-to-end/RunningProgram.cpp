#include "end-to-end/RunningProgram.h"

#include "end-to-end/Waiting.h"

#include <QCoreApplication>

#include <csignal>

#include <sys/prctl.h>

using namespace Qt::StringLiterals;

namespace {

const QString MAIN_TITLE = u"Brevick Tuning Orlo 2"_s;
const QString BOX_TITLE = u"Brevick Tuning Orlo"_s;

} // namespace

QString RunningProgram::executable()
{
    return QCoreApplication::applicationDirPath() + u"/brevick-tuning-orlo"_s;
}

RunningProgram::RunningProgram(VirtualDesk& desk, const QStringList& arguments, const QString& executable)
    : mDesk(desk)
{
    mProcess.setProcessEnvironment([&desk] {
        QProcessEnvironment environment = desk.environment();
        // The desk may be older than the test's home.
        environment.insert(u"XDG_DATA_HOME"_s, qEnvironmentVariable("XDG_DATA_HOME"));
        return environment;
    }());
    mProcess.setStandardOutputFile(QProcess::nullDevice());
    mProcess.setStandardErrorFile(QProcess::nullDevice());
    mProcess.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
    mProcess.start(executable, arguments);
    mProcess.waitForStarted();
}

RunningProgram::~RunningProgram()
{
    if (!isRunning())
        return;
    mProcess.kill();
    mProcess.waitForFinished(5000);
}

bool RunningProgram::waitForWindow()
{
    const auto settled = [this] { return !isRunning() || mDesk.window(MAIN_TITLE); };
    if (!waitUntil(settled, 30000))
        return false;
    const auto window = mDesk.window(MAIN_TITLE);
    // No window manager gives the keys to anyone.
    return window && mDesk.act({u"windowfocus"_s, QString::number(window->id)});
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
    const QString id = QString::number(window->id);
    const QString move = u"windowmove %1 %2 %3 "_s.arg(id).arg(wanted.x()).arg(wanted.y());
    const QString resize = u"windowsize %1 %2 %3"_s.arg(id).arg(wanted.width()).arg(wanted.height());
    return mDesk.act((move + resize).split(u' ')) && waitUntil([&] { return place() == wanted; });
}

QRect RunningProgram::place() const
{
    const auto window = mDesk.window(MAIN_TITLE);
    return window ? window->place : QRect();
}

bool RunningProgram::press(QPoint point, const QString& how)
{
    const QRect window = place();
    if (window.isEmpty())
        return false;
    const QPoint there = window.topLeft() + point;
    const QPoint away = window.topLeft() + QPoint(2, 2);
    const auto move = [](QPoint to) { return u"mousemove %1 %2"_s.arg(to.x()).arg(to.y()); };
    return mDesk.act((move(there) + u' ' + how + u' ' + move(away)).split(u' '));
}

bool RunningProgram::click(QPoint point)
{
    return press(point, u"click 1"_s);
}

bool RunningProgram::doubleClick(QPoint point)
{
    return press(point, u"click --repeat 2 --delay 40 1"_s);
}

bool RunningProgram::type(const QString& keys)
{
    return mDesk.act({u"key"_s, keys});
}

bool RunningProgram::confirmBox()
{
    const auto box = mDesk.window(BOX_TITLE);
    return box && mDesk.act({u"windowfocus"_s, QString::number(box->id), u"key"_s, u"Return"_s})
           && waitUntil([this] { return !hasBox(); });
}

void RunningProgram::requestClose()
{
    if (const auto window = mDesk.window(MAIN_TITLE))
        mDesk.requestClose(*window);
}

std::optional<int> RunningProgram::waitForExit(int longestMs)
{
    if (!waitUntil([this] { return !isRunning(); }, longestMs) || mProcess.exitStatus() != QProcess::NormalExit)
        return std::nullopt;
    return mProcess.exitCode();
}

std::optional<int> RunningProgram::quit()
{
    requestClose();
    return waitForExit();
}
