#pragma once

#include <QObject>

#include <memory>

class QSocketNotifier;

/// Turns a termination request of the system (SIGTERM, SIGINT, SIGHUP) into an orderly quit, so that
/// Ctrl+C in a terminal or the end of a session saves what a closed window saves. A signal that the program
/// was started to ignore stays ignored. Only one object may exist at a time.
class TerminationSignals : public QObject
{
    Q_OBJECT

public:
    explicit TerminationSignals(QObject* parent = nullptr);
    ~TerminationSignals() override;

    /// True once the system has asked. A request that comes during start-up, while a message box is
    /// open, is kept until the event loop runs.
    bool wasAsked() const { return mAsked; }

private:
    void quit();

    std::unique_ptr<QSocketNotifier> mNotifier;
    bool mAsked = false;
};
