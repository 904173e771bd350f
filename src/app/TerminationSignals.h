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

private:
    void quit();

    std::unique_ptr<QSocketNotifier> mNotifier;
};
