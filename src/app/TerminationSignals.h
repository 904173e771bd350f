#pragma once

#include <QObject>

#include <memory>

class QSocketNotifier;

/// Turns the system's wish to end the program (SIGTERM, SIGINT, SIGHUP) into an orderly quit, so
/// that Ctrl+C in a terminal or the end of a session saves what a closed window saves. One object.
class TerminationSignals : public QObject
{
    Q_OBJECT

public:
    explicit TerminationSignals(QObject* parent = nullptr);
    ~TerminationSignals() override;

    /// True once the system has asked. A wish that comes during start-up, while a message box is
    /// open, finds no event loop to end and is kept for it.
    bool wasAsked() const { return mAsked; }

private:
    void quit();

    std::unique_ptr<QSocketNotifier> mNotifier;
    bool mAsked = false;
};
