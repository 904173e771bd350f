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
    /// [gui] The thread that is woken.
    ThreadWaker();
    /// [gui]
    ~ThreadWaker() override;

    /// [any] Effect: woken() follows on [gui], where all that was written before is seen. Capacity: one
    /// wake; more of them before the answer are the same one. Never blocks.
    void wake();
    /// [gui] Makes the next wake a new one. Call it before reading what has come.
    void answer();

signals:
    /// [gui]
    void woken();

private:
    std::unique_ptr<QSocketNotifier> mNotifier;
    int mReadEnd = -1;
    int mWriteEnd = -1; // the same where an event descriptor is both
    std::atomic<bool> mPending{false};
};
