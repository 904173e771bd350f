#pragma once

#include <QProcess>

#include <csignal>

/// A program that a test must not leave behind: it ends with this object, or with the test's process.
/// What it prints goes nowhere.
class TestProcess : public QProcess
{
public:
    TestProcess();
    ~TestProcess() override;

    bool isRunning() const { return state() != NotRunning; }
    void send(int signal) const;
    void freeze() const { send(SIGSTOP); }
    void thaw() const { send(SIGCONT); }
    void killNow();
};
