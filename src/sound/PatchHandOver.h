#pragma once

#include <QElapsedTimer>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>

/// Hands a patch over between the graphical and the audio thread, and settles which of them runs
/// the engine. Nothing here is a lock: whoever has the engine runs it, and only the graphical thread
/// waits for it, no longer than Limits say. Capacity: one request or one piece of work at a time, since
/// the graphical thread waits for each.
///
/// The audio callback encloses each block in enterBlock/leaveBlock. The graphical thread asks for
/// work by an event and waits in request() until the audio thread calls finish(). When no callback
/// comes (no stream, or a device that was unplugged), the graphical thread takes the engine and has the
/// work done on another thread, since a patch may loop for ever. In debug builds each change of hands is
/// told to ThreadCheck.
///
/// A patch that never comes back keeps the engine. That is the end of the sound for this run: every
/// later wait fails at once, and no block gets the engine any more. The stuck thread goes on using the
/// player, so the process must then end without destroying it.
class PatchHandOver
{
public:
    enum class Change { None, Open, Close };

    /// How long the graphical thread waits at most.
    struct Limits
    {
        /// When no block has come for this long, there is no stream. Longer than any block: 8192 frames
        /// at 44100 Hz last 186 ms.
        std::chrono::milliseconds stalled{400};
        /// For a block that changes the patch. After that it counts as stuck for ever.
        std::chrono::milliseconds change{10000};
        /// For a block that only delays other work.
        std::chrono::milliseconds work{2000};
        /// For a block that was waited for before; not 0, since the machine itself may have slept.
        std::chrono::milliseconds again{500};
    };
    /// [any] For a program that is about to end and has saved everything.
    static Limits limitsAtEnd()
    {
        Limits limits;
        limits.change = std::chrono::milliseconds(1000);
        limits.work = std::chrono::milliseconds(500);
        return limits;
    }

    /// [gui] For all later waits, until the system asks the program to end.
    void setLimits(const Limits& limits) { mLimits = limits; }

    /// [audio] Effect: counts the block, claims the engine and does what runInBlock() asks for. False
    /// when another thread has it: write silence and return. Never blocks.
    bool enterBlock();
    /// [audio] Effect: any thread may take the engine again. Never blocks.
    void leaveBlock();

    /// [audio] Whether the graphical thread waits for this change; then finish() must follow. A physical
    /// device can name both events too, and those must change nothing.
    bool isAwaiting(Change change) const { return mAwaited.load(std::memory_order_acquire) == change; }
    /// [audio] Effect: ends the wait for this change. Never blocks.
    void finish(Change change);

    /// [gui] Calls `queue` to send the event, and waits. `drain` runs the engine's pending events; it
    /// is called, on another thread, only while no callback comes, and may outlive this call. False
    /// when the engine does not come back.
    bool request(Change change, const std::function<void()>& queue, const std::function<void()>& drain);

    /// [gui] Waits until `ready`, which the next blocks bring about; for `drain` see request(). False
    /// when that takes too long.
    bool waitUntil(const std::function<bool()>& ready, const std::function<void()>& drain);

    /// [gui] Runs `work` while no block runs. False, without running it, when a block does not end.
    bool runBetweenBlocks(const std::function<void()>& work);

    /// [gui] Runs `work` on the audio thread, at the beginning of the next block, and waits for it: the
    /// way to change together what the audio thread owns, without a lock and without missing a block.
    /// `work` must be short and may do only what a block may. When no callback comes it runs on a thread
    /// of its own. False, without running it, when a block does not end; also when the patch never
    /// comes back from it, so that work which sends messages to the patch must not refer to locals.
    bool runInBlock(const std::function<void()>& work);

    /// [any] A patch has kept the engine for good: there is no sound until the program is started anew.
    bool isOver() const { return mOver.load(std::memory_order_acquire); }

    /// [any] Count of callbacks so far.
    std::uint64_t blocks() const { return mBlocks.load(std::memory_order_relaxed); }

private:
    using Milliseconds = std::chrono::milliseconds;

    bool tryTakeEngine() { return !mEngineTaken.exchange(true, std::memory_order_acquire); }
    void giveEngineBack();
    std::uint64_t rounds() const;
    Limits limits() const;
    Milliseconds sinceLastBlock();
    bool hasWaitedEnough(const QElapsedTimer& waited, Milliseconds limit);
    bool await(const std::function<bool()>& done, const std::function<void()>& drain,
               Milliseconds Limits::*limit);
    bool runAside(const std::function<void()>& work);
    void doOfferedWork();
    void giveUpForGood();

    Limits mLimits;
    std::atomic<Change> mAwaited{Change::None};
    std::atomic<bool> mEngineTaken{false};
    std::atomic<bool> mOver{false};
    std::atomic<std::uint64_t> mBlocks{0};
    std::atomic<std::uint64_t> mEntered{0}; // of these, the ones that got the engine
    std::function<void()> mWork;            // of runInBlock; [gui] but while it is offered
    std::atomic<bool> mWorkOffered{false};
    std::atomic<bool> mWorkDone{false};
    // [gui] The last block that a wait has seen, since when, and how often this side stood in.
    std::uint64_t mSeenBlock = 0;
    QElapsedTimer mSeenSince;
    std::uint64_t mDrained = 0;
};
