#pragma once

#include "end-to-end/TestProcess.h"
#include "end-to-end/VirtualDesk.h"

#include <QPoint>
#include <QString>

#include <optional>

/// The real executable on a desk, with the test's home. Played by real pointer and key events;
/// points are in its window. Killed when this object goes and it still runs.
class RunningProgram : public TestProcess
{
public:
    /// Beside the test's own executable, or another copy that ORLO_PROGRAM names, such as an installed one.
    static QString executable();

    explicit RunningProgram(VirtualDesk& desk, const QString& executable = RunningProgram::executable());
    ~RunningProgram() override { killNow(); }

    /// The main window is there and has the keys. False too when the program ended before.
    bool waitForWindow();
    /// The box in which the program tells of a failure.
    bool waitForBox();
    /// Inside, on the screen; empty when the window is not there.
    QRect place() const;

    /// Waits until the window is there.
    bool moveTo(const QRect& place);
    /// One click. The pointer leaves afterwards, so that two of them never are a double click.
    bool click(QPoint point);
    bool type(const QString& keys) { return mDesk.act(QStringLiteral("key ") + keys); }
    /// Return on the box.
    bool confirmBox();

    /// Empty when it does not end by itself, or ends by a signal.
    std::optional<int> waitForExit(int longestMs = 20000);
    /// By the window's close button.
    std::optional<int> quit();

private:
    using Window = std::optional<VirtualDesk::Window>;
    Window window() const { return mDesk.window(QStringLiteral("Brevick Tuning Orlo 2")); }
    Window box() const { return mDesk.window(QStringLiteral("Brevick Tuning Orlo")); }

    VirtualDesk& mDesk;
};
