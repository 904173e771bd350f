#include "end-to-end/RunningProgram.h"

#include "end-to-end/Waiting.h"

#include <QCoreApplication>

#include <csignal>

#include <sys/prctl.h>

namespace {

const QString MAIN_TITLE = QStringLiteral("Brevick Tuning Orlo 2");
const QString BOX_TITLE = QStringLiteral("Brevick Tuning Orlo");

} // namespace

QString RunningProgram::executable()
{
    return QCoreApplication::applicationDirPath() + QStringLiteral("/brevick-tuning-orlo");
}

RunningProgram::RunningProgram(VirtualDesk& desk, const QStringList& arguments, const QString& executable)
    : mDesk(desk)
{
    mProcess.setProcessEnvironment([&desk] {
        QProcessEnvironment environment = desk.environment();
        // The desk may be older than the test's home.
        environment.insert(QStringLiteral("XDG_DATA_HOME"), qEnvironmentVariable("XDG_DATA_HOME"));
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
    return window && mDesk.act({QStringLiteral("windowfocus"), QString::number(window->id)});
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
    return mDesk.act({QStringLiteral("windowmove"), id, QString::number(wanted.x()), QString::number(wanted.y()),
                      QStringLiteral("windowsize"), id, QString::number(wanted.width()),
                      QString::number(wanted.height())})
           && waitUntil([&] { return place() == wanted; });
}

QRect RunningProgram::place() const
{
    const auto window = mDesk.window(MAIN_TITLE);
    return window ? window->place : QRect();
}

bool RunningProgram::press(QPoint point, const QStringList& how)
{
    const QRect window = place();
    if (window.isEmpty())
        return false;
    const QPoint there = window.topLeft() + point;
    const QPoint away = window.topLeft() + QPoint(2, 2);
    const auto move = [](QPoint to) {
        return QStringList{QStringLiteral("mousemove"), QString::number(to.x()), QString::number(to.y())};
    };
    return mDesk.act(move(there) + how + move(away));
}

bool RunningProgram::click(QPoint point)
{
    return press(point, {QStringLiteral("click"), QStringLiteral("1")});
}

bool RunningProgram::doubleClick(QPoint point)
{
    return press(point, {QStringLiteral("click"), QStringLiteral("--repeat"), QStringLiteral("2"),
                         QStringLiteral("--delay"), QStringLiteral("40"), QStringLiteral("1")});
}

bool RunningProgram::type(const QString& keys)
{
    return mDesk.act({QStringLiteral("key"), keys});
}

bool RunningProgram::confirmBox()
{
    const auto box = mDesk.window(BOX_TITLE);
    if (!box || !mDesk.act({QStringLiteral("windowfocus"), QString::number(box->id), QStringLiteral("key"),
                            QStringLiteral("Return")}))
        return false;
    return waitUntil([this] { return !hasBox(); });
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
