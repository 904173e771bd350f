#pragma once

#include <QObject>

#include <atomic>
#include <memory>

class QSocketNotifier;

/// Wakes the thread that made it, which must have an event loop, from any other one: by one system
/// call that never waits, and by none while the last wake has not been answered. It takes no lock
/// and allocates nothing, as a posted event would.
class ThreadWaker : public QObject
{
    Q_OBJECT

public:
    ThreadWaker();
    ~ThreadWaker() override;

    /// [any] What was written before is seen by whoever answers.
    void wake();
    /// The thread that made it: from now on a wake is a new one. Before reading what there is.
    void answer();

signals:
    void woken();

private:
    std::unique_ptr<QSocketNotifier> mNotifier;
    int mReadEnd = -1;
    int mWriteEnd = -1; // the same where an event descriptor is both
    std::atomic<bool> mPending{false};
};
