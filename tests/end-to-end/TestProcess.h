#pragma once

#include <QProcess>

/// A program that a test must not leave behind: it ends with this object, or with the test's process.
/// What it prints goes nowhere.
class TestProcess : public QProcess
{
public:
    TestProcess();
    ~TestProcess() override;

    bool isRunning() const { return state() != NotRunning; }
    void send(int signal) const;
    void freeze() const;
    void thaw() const;
    void killNow();
};
