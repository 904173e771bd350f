#include "sound/PatchHandOver.h"

#include "app/EndRequest.h"
#include "sound/BoundedCall.h"
#include "sound/ThreadCheck.h"

#include <QDebug>
#include <QThread>

#include <algorithm>

namespace {

constexpr unsigned long POLL_US = 500;
// A block that runs when the event is queued may have drained the ring already; the next one takes the
// event. With one block of margin, it counts as lost after three.
constexpr std::uint64_t BLOCKS_UNTIL_LOST = 3;

} // namespace

/// As they are now: a wait that began before the program was asked to end is cut short too.
PatchHandOver::Limits PatchHandOver::limits() const
{
    return EndRequest::isMade ? limitsAtEnd() : mLimits;
}

bool PatchHandOver::enterBlock()
{
    mBlocks.fetch_add(1, std::memory_order_relaxed);
    // After the end the engine stays where it is, even if its block should come back.
    if (isOver() || !tryTakeEngine())
        return false;
    ThreadCheck::engineTaken();
    mEntered.fetch_add(1, std::memory_order_relaxed);
    doOfferedWork();
    return true;
}

/// The caller holds the engine.
void PatchHandOver::doOfferedWork()
{
    if (mWorkOffered.load(std::memory_order_relaxed)
        && mWorkOffered.exchange(false, std::memory_order_acquire)) {
        mWork();
        mWorkDone.store(true, std::memory_order_release);
    }
}

void PatchHandOver::giveEngineBack()
{
    ThreadCheck::engineGivenBack();
    mEngineTaken.store(false, std::memory_order_release);
}

void PatchHandOver::leaveBlock()
{
    ThreadCheck::audio();
    giveEngineBack();
}

void PatchHandOver::finish(Change change)
{
    ThreadCheck::audio();
    mAwaited.compare_exchange_strong(change, Change::None, std::memory_order_release,
                                     std::memory_order_relaxed);
}

/// How often the rings were drained; this side stands in for enough blocks to find a lost event.
std::uint64_t PatchHandOver::rounds() const
{
    return mEntered.load(std::memory_order_relaxed) + mDrained * (BLOCKS_UNTIL_LOST + 1);
}

/// As far as the waits have watched. Blocks that did not get the engine do not count.
std::chrono::milliseconds PatchHandOver::sinceLastBlock()
{
    const std::uint64_t block = mEntered.load(std::memory_order_relaxed);
    if (block != mSeenBlock || !mSeenSince.isValid()) {
        mSeenBlock = block;
        mSeenSince.start();
    }
    return Milliseconds(mSeenSince.elapsed());
}

/// Whether the block that holds the engine is to be given up.
bool PatchHandOver::hasWaitedEnough(const QElapsedTimer& waited, Milliseconds limit)
{
    return sinceLastBlock() >= limit && Milliseconds(waited.elapsed()) >= std::min(limits().again, limit);
}

void PatchHandOver::giveUpForGood()
{
    mOver.store(true, std::memory_order_release);
    ThreadCheck::engineLost();
    mAwaited.store(Change::None, std::memory_order_relaxed);
    qCritical() << "The audio thread does not come out of the patch. There is no more sound.";
}

/// The caller has taken the engine for another thread, which runs the work and gives the engine back. That
/// thread owns all that it is given, since it may never come back.
bool PatchHandOver::runAside(const std::function<void()>& work)
{
    const auto ticket = BoundedCall::start([this, work](BoundedCall::Ticket& own) {
        ThreadCheck::engineTaken();
        work();
        giveEngineBack();
        own.finish();
    });
    QElapsedTimer waited;
    waited.start();
    while (!ticket->isFinished() && Milliseconds(waited.elapsed()) < limits().change)
        QThread::usleep(POLL_US);
    if (!ticket->giveUp())
        return true;
    giveUpForGood();
    return false;
}

bool PatchHandOver::await(const std::function<bool()>& done, const std::function<void()>& drain,
                          Milliseconds Limits::*limit)
{
    QElapsedTimer waited;
    waited.start();
    while (!isOver() && Milliseconds(waited.elapsed()) < limits().*limit) {
        if (done())
            return true;
        // Before the first block of all there is no stream to wait for.
        const bool stalled = sinceLastBlock() >= limits().stalled || mSeenBlock == 0;
        if (stalled && tryTakeEngine()) {
            runAside(drain);
            ++mDrained;
        } else if (stalled && hasWaitedEnough(waited, limits().*limit)) {
            return false;
        }
        QThread::usleep(POLL_US);
    }
    return false;
}

bool PatchHandOver::request(Change change, const std::function<void()>& queue,
                            const std::function<void()>& drain)
{
    ThreadCheck::gui();
    if (isOver())
        return false;
    mAwaited.store(change, std::memory_order_release);
    std::uint64_t queuedAt = rounds();
    queue();
    const auto done = [&] {
        if (mAwaited.load(std::memory_order_acquire) == Change::None)
            return true;
        if (const std::uint64_t now = rounds(); now - queuedAt > BLOCKS_UNTIL_LOST) {
            queuedAt = now;
            queue(); // the ring was full
        }
        return false;
    };
    const auto drainInstead = [drain] {
        qWarning() << "No audio stream is running: the patch is changed without it.";
        drain();
    };
    if (await(done, drainInstead, &Limits::change))
        return true;
    if (isOver())
        return false;
    if (mAwaited.exchange(Change::None, std::memory_order_acquire) == Change::None)
        return true; // it ended at the last moment
    giveUpForGood();
    return false;
}

bool PatchHandOver::waitUntil(const std::function<bool()>& ready, const std::function<void()>& drain)
{
    ThreadCheck::gui();
    return await(ready, drain, &Limits::work);
}

bool PatchHandOver::runBetweenBlocks(const std::function<void()>& work)
{
    ThreadCheck::gui();
    QElapsedTimer waited;
    waited.start();
    while (!tryTakeEngine()) {
        if (isOver() || hasWaitedEnough(waited, limits().work)) {
            qCritical() << "The audio thread does not come out of a block.";
            return false;
        }
        QThread::usleep(100);
    }
    ThreadCheck::engineTaken();
    work();
    giveEngineBack();
    return true;
}

bool PatchHandOver::runInBlock(const std::function<void()>& work)
{
    ThreadCheck::gui();
    if (isOver())
        return false;
    mWork = work;
    mWorkDone.store(false, std::memory_order_relaxed);
    mWorkOffered.store(true, std::memory_order_release);
    const auto done = [this] { return mWorkDone.load(std::memory_order_acquire); };
    const auto workInstead = [this] { doOfferedWork(); };
    if (await(done, workInstead, &Limits::work))
        return true;
    if (mWorkOffered.exchange(false, std::memory_order_relaxed)) {
        qCritical() << "The audio thread does not come out of a block.";
        return false;
    }
    // The work was taken at the last moment, or it is the work that does not come back.
    if (await(done, workInstead, &Limits::change))
        return true;
    if (!isOver())
        giveUpForGood();
    return false;
}
