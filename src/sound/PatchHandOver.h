#pragma once

#include <QMutex>
#include <QWaitCondition>

#include <atomic>
#include <functional>

/// Hands a patch over between the graphical and the audio thread, and settles which of them runs
/// the engine.
///
/// The audio callback encloses each block in enterBlock/leaveBlock. The graphical thread asks for
/// work by an event and waits in request() until the audio thread calls finish(). When no callback
/// comes (no stream, or a device that was unplugged), the waiting thread takes the engine and does
/// the work itself, so it never waits for ever. The callback never waits for the graphical thread
/// but in lock(), which it takes only for a patch change.
class PatchHandOver
{
public:
    enum class Change { None, Open, Close };

    /// [audio] Effect: counts the block, claims the engine and does what runInBlock() asks for. False
    /// when the graphical thread has it: write silence and return. Never blocks.
    bool enterBlock();
    /// [audio]
    void leaveBlock();

    /// [audio] Taken around opening and closing a patch, and nowhere else. [gui] Guards what is
    /// handed over, for a moment.
    void lock() { mMutex.lock(); }
    /// [audio] Whether the graphical thread waits for this change. A physical device can name both
    /// events too, and its ones must change nothing. Call while locked.
    bool isAwaiting(Change change) const { return mAwaited == change; }
    /// [audio] Wakes the waiting thread if this is the change it waits for. Call while locked.
    void finish(Change change);
    void unlock() { mMutex.unlock(); }

    /// [gui] Calls `queue` to send the event, and waits. `drain` runs the engine's pending events
    /// on this thread; it is called only while no callback comes. False when the callback is inside
    /// a block that does not end (a patch that loops for ever).
    bool request(Change change, const std::function<void()>& queue, const std::function<void()>& drain);

    /// [gui] Runs `work` while no block runs. False, without running it, when a block does not end.
    bool runBetweenBlocks(const std::function<void()>& work);

    /// [gui] Runs `work` on the audio thread, at the beginning of the next block, and waits for it: the
    /// way to change together what the audio thread owns, without a lock and without missing a block.
    /// `work` must be short and may do only what a block may. When no callback comes it runs on this
    /// thread. False, without running it, when a block does not end.
    bool runInBlock(const std::function<void()>& work);

    /// Count of callbacks so far; any thread.
    std::uint64_t blocks() const { return mBlocks.load(std::memory_order_relaxed); }

private:
    bool tryTakeEngine() { return !mEngineTaken.exchange(true, std::memory_order_acquire); }
    bool patienceEnds(qint64 waitedMs, qint64 limitMs);
    void giveEngineBack() { mEngineTaken.store(false, std::memory_order_release); }

    QMutex mMutex;
    QWaitCondition mCondition;
    Change mAwaited = Change::None; // guarded by the mutex; None once it is done
    std::atomic<bool> mEngineTaken{false};
    std::atomic<std::uint64_t> mBlocks{0};
    std::atomic<const std::function<void()>*> mWork{nullptr}; // of runInBlock, until somebody takes it
    std::atomic<bool> mWorkDone{false};
    std::uint64_t mStalledAtBlock = 0; // [gui] the last block that was followed by no other in time
    std::uint64_t mStuckInBlock = 0; // [gui] the block that was given up last; blocks count from 1
};
