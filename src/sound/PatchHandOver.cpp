#include "sound/PatchHandOver.h"

#include <QDebug>
#include <QElapsedTimer>
#include <QMutexLocker>
#include <QThread>

namespace {

constexpr unsigned long POLL_MS = 20;
// Longer than any block: 8192 frames at 44100 Hz last 186 ms.
constexpr qint64 STALLED_MS = 400;
constexpr qint64 GIVE_UP_MS = 10000;
constexpr qint64 GIVE_UP_WORK_MS = 2000;
// For a block that was given up already.
constexpr qint64 GIVE_UP_AGAIN_MS = 500;
// A block that runs when the event is queued may have drained the ring already; the next one
// must take it. One more for good measure, and the event was lost.
constexpr std::uint64_t BLOCKS_UNTIL_LOST = 3;

} // namespace

bool PatchHandOver::enterBlock()
{
    mBlocks.fetch_add(1, std::memory_order_relaxed);
    if (!tryTakeEngine())
        return false;
    if (mWork.load(std::memory_order_relaxed)) {
        if (const auto* work = mWork.exchange(nullptr, std::memory_order_acquire)) {
            (*work)();
            mWorkDone.store(true, std::memory_order_release);
        }
    }
    return true;
}

void PatchHandOver::leaveBlock()
{
    giveEngineBack();
}

void PatchHandOver::finish(Change change)
{
    if (change == mAwaited)
        mAwaited = Change::None;
    mCondition.wakeAll();
}

/// Whether a block that holds the engine is to be given up. Waiting long once is enough.
bool PatchHandOver::patienceEnds(qint64 waitedMs, qint64 limitMs)
{
    const std::uint64_t block = blocks();
    if (waitedMs <= (block == mStuckInBlock ? GIVE_UP_AGAIN_MS : limitMs))
        return false;
    mStuckInBlock = block;
    return true;
}

bool PatchHandOver::request(Change change, const std::function<void()>& queue,
                            const std::function<void()>& drain)
{
    QMutexLocker locker(&mMutex);
    mAwaited = change;
    std::uint64_t queuedAt = blocks();
    queue();

    std::uint64_t lastSeen = queuedAt;
    QElapsedTimer sinceLastBlock;
    sinceLastBlock.start();
    while (mAwaited != Change::None) {
        mCondition.wait(&mMutex, POLL_MS);
        if (mAwaited == Change::None)
            break;
        if (const std::uint64_t now = blocks(); now != lastSeen) {
            lastSeen = now;
            sinceLastBlock.restart();
            if (now - queuedAt > BLOCKS_UNTIL_LOST) { // the ring was full
                queuedAt = now;
                queue();
            }
            continue;
        }
        if (sinceLastBlock.elapsed() < STALLED_MS)
            continue;
        if (!tryTakeEngine()) {
            if (patienceEnds(sinceLastBlock.elapsed(), GIVE_UP_MS)) {
                qCritical()
                    << "The audio thread does not come out of the patch. The change of patch is given up.";
                return false;
            }
            continue;
        }
        qWarning() << "No audio stream is running: the patch is changed without it.";
        locker.unlock();
        drain();
        giveEngineBack();
        locker.relock();
        if (mAwaited != Change::None) {
            queue(); // the ring was full and has been drained now
            queuedAt = blocks();
        }
    }
    return true;
}

bool PatchHandOver::runBetweenBlocks(const std::function<void()>& work)
{
    QElapsedTimer timer;
    timer.start();
    while (!tryTakeEngine()) {
        if (patienceEnds(timer.elapsed(), GIVE_UP_MS)) {
            qCritical() << "The audio thread does not come out of a block.";
            return false;
        }
        QThread::usleep(100);
    }
    work();
    giveEngineBack();
    return true;
}

bool PatchHandOver::runInBlock(const std::function<void()>& work)
{
    mWorkDone = false;
    mWork.store(&work, std::memory_order_release);
    std::uint64_t lastSeen = blocks();
    // Where no callback came the last time none is waited for now.
    const qint64 stalledMs = lastSeen == mStalledAtBlock ? 0 : STALLED_MS;
    QElapsedTimer sinceLastBlock;
    sinceLastBlock.start();
    while (!mWorkDone.load(std::memory_order_acquire)) {
        if (const std::uint64_t now = blocks(); now != lastSeen) {
            lastSeen = now;
            sinceLastBlock.restart();
        } else if (sinceLastBlock.elapsed() >= stalledMs) {
            if (tryTakeEngine()) {
                mStalledAtBlock = lastSeen;
                const bool taken = mWork.exchange(nullptr, std::memory_order_acquire) != nullptr;
                if (taken)
                    work();
                giveEngineBack();
                if (taken)
                    return true;
            } else if (patienceEnds(sinceLastBlock.elapsed(), GIVE_UP_WORK_MS)
                       && mWork.exchange(nullptr, std::memory_order_acquire)) {
                qCritical() << "The audio thread does not come out of a block.";
                return false;
            }
        }
        QThread::usleep(500);
    }
    return true;
}
