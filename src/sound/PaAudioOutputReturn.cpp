// PaAudioOutput: noticing a device that goes away, and bringing it back.

#include "app/LogText.h"
#include "sound/JackEpoch.h"
#include "sound/PaDeviceJobs.h"
#include "sound/PdPlayer.h"

#include <QDebug>
#include <QThread>

using std::chrono::milliseconds;

namespace {

constexpr milliseconds RETURN_LIMIT{1500}; // for a return that is to end
constexpr qint64 MAX_TRY_AGAIN_MS = 60000;
// Until then the MIDI output has let go of its client of the same dead server.
constexpr qint64 FIRST_TRY_MS = 1500;
constexpr int RETURN_INTERVAL_MS = 50;

} // namespace

/// The callback never ends a stream, so one that is not active has lost its device or server.
bool PaAudioOutput::streamDied() const
{
    return mStream && mLibrary->isStreamActive(mStream) != 1;
}

/// The stream's server is dead: nothing may be called for the stream, nor for its library.
bool PaAudioOutput::jackIsGone() const
{
    return mLibrary->isJack(mStreamApi) && (streamDied() || mLibrary->jackEpoch != JackEpoch::current());
}

void PaAudioOutput::watch()
{
    const unsigned late = mUnderruns + mOverruns;
    if (late != mLateBlocksTold)
        emit lateBlocksCounted(mLateBlocksTold = late);
    if (mParked)
        followParked();
    if (mStream) {
        const bool still = mLossWatch.look(mClock.elapsed(), player()->handOver().blocks());
        // A block that does not end is the patch's fault, not the device's.
        if (streamDied() || jackIsGone() || (still && !mContext->inBlock))
            giveUpStream();
    } else if (mReturn) {
        followReturn();
    } else if (mLost && mCanReturn && mClock.elapsed() >= mNextTryMs) {
        startReturn();
    }
}

/// Drops the stream of a lost device without waiting for its server.
void PaAudioOutput::giveUpStream()
{
    qCritical().noquote() << "The sound device is gone:" << logText(mDeviceName);
    if (jackIsGone()) {
        leaveStream();
    } else if (mLibrary->isJack(mStreamApi)) {
        parkStream();
    } else {
        const auto job = std::make_shared<CloseJob>(CloseJob{mLibrary, mStream, mContext});
        mLibrary->gates[mStreamApi].start([job](BoundedCall::Ticket&) { job->run(); });
        forgetStream();
    }
    lose(mDeviceName);
}

/// A JACK server that stands still may thaw or die, and a call for its stream that is under way when it
/// dies ends the program. So none is made until the server has done either.
void PaAudioOutput::parkStream()
{
    qCritical() << "The sound server does not answer.";
    mParked = std::make_shared<ParkedStream>(
        ParkedStream{{mLibrary, mStream, mContext}, mStreamApi, mContext->calls});
    forgetStream();
    mWatchTimer.start(LOOK_INTERVAL_MS);
}

void PaAudioOutput::followParked()
{
    const ParkedStream& parked = *mParked;
    PortAudioLibrary* library = parked.close.library;
    if (library->isStreamActive(parked.close.stream) != 1 || library->jackEpoch != JackEpoch::current()) {
        library->keep(parked.close.context);
        JackEpoch::end(library->jackEpoch);
        if (library == mLibrary && !mStream && !mReturn)
            leaveLibrary();
    } else if (parked.close.context->calls != parked.callsThen && !library->gates[parked.hostApi].isStuck()) {
        const auto job = std::make_shared<CloseJob>(parked.close);
        library->gates[parked.hostApi].start([job](BoundedCall::Ticket&) { job->run(); });
    } else {
        return;
    }
    mParked.reset();
}

/// With a stream whose JACK server died the whole library is left.
void PaAudioOutput::leaveStream()
{
    mLibrary->keep(mContext);
    forgetStream();
    JackEpoch::end(mLibrary->jackEpoch);
    leaveLibrary();
}

/// Goes on with a copy of the library. False when no copy can be loaded.
bool PaAudioOutput::leaveLibrary()
{
    if (PortAudioLibrary* copy = PortAudioLibrary::loadCopy())
        mLibrary = copy;
    else
        mCanReturn = false;
    return mCanReturn;
}

void PaAudioOutput::lose(const QString& name)
{
    if (name.isEmpty())
        return;
    mDeviceName = name;
    mLost = true;
    mReadAnew = false;
    mStuckUntilMs = mClock.elapsed() + mStuckLimitMs;
    mNextTryMs = mClock.elapsed() + FIRST_TRY_MS;
    mWatchTimer.start(LOOK_INTERVAL_MS);
    emit deviceLost(name);
}

void PaAudioOutput::tryAgain()
{
    if (mReadAnew) // the first try comes soon enough
        mNextTryMs = 0;
}

/// The first try goes by the list that there is: a server that only stood still needs no other. A call
/// that is still inside is waited for: it comes back when the server does, or dies. One that does not
/// even then is left, with its library.
void PaAudioOutput::startReturn()
{
    if (mReturnGate.isStuck() || mParked)
        return;
    if (mLibrary->isStuck()) {
        // ALSA's plugin for JACK never comes back from a server that died.
        if (mLibrary->isStuckInJack() || mClock.elapsed() < mStuckUntilMs)
            return;
        mStuckUntilMs = mClock.elapsed() + (mStuckLimitMs *= 2);
        if (!leaveLibrary())
            return;
    }
    if (mLibrary->isStarted && mLibrary->jackEpoch != JackEpoch::current() && !leaveLibrary())
        return;
    const bool anew = mReadAnew || !mLibrary->isStarted || mListed != mLibrary;
    mReturn = std::make_shared<ReturnJob>(
        ReturnJob{mLibrary, mDeviceName, framesPerBuffer(), this, anew, paNoError, nullptr, false});
    callReturn(&ReturnJob::find);
}

void PaAudioOutput::callReturn(void (ReturnJob::*step)())
{
    mReturnTicket = mReturnGate.start([job = mReturn, step](BoundedCall::Ticket& ticket) {
        (job.get()->*step)();
        if (!ticket.finish() && job->opening)
            job->opening->close();
    });
    mWatchTimer.start(RETURN_INTERVAL_MS);
}

/// When a call of the return has come back.
void PaAudioOutput::followReturn()
{
    if (mReturnGate.isStuck())
        return;
    const std::shared_ptr<OpenJob> opening = mReturn->opening;
    const bool failed = !opening || opening->error != paNoError;
    if (!mReturn->starting)
        takeList();
    if (!failed && !mReturn->starting) {
        tellRate(*opening);
        prepareEngine(*opening);
        mReturn->starting = true;
        callReturn(&ReturnJob::start);
        return;
    }
    mReturn.reset();
    mWatchTimer.start(LOOK_INTERVAL_MS);
    if (!failed) {
        streamRuns(*opening, indexOf(opening->parameters.device));
        return;
    }
    mReadAnew = true;
    mNextTryMs = mClock.elapsed() + mTryAgainMs;
    // Its client may have outlived the server. Less often each time, since each copy stays in memory.
    if (opening && mLibrary->isJack(opening->hostApi)) {
        mTryAgainMs = qMin(2 * mTryAgainMs, MAX_TRY_AGAIN_MS);
        leaveLibrary();
    }
}

/// Takes over the device list that the return has read.
void PaAudioOutput::takeList()
{
    const QStringList former = mDeviceNames;
    if (mReturn->anew && mLibrary->isStarted) {
        readDevices();
        if (mDeviceNames != former)
            emit devicesChanged();
    }
}

/// False when the return is inside a call that does not end.
bool PaAudioOutput::stopReturn(const Deadline& deadline)
{
    mLost = false;
    if (!mReturn)
        return true;
    const Deadline end(deadline.left(RETURN_LIMIT));
    while (mReturnGate.isStuck() && end.left() > milliseconds(0))
        QThread::msleep(5);
    if (mReturnGate.isStuck())
        return false;
    takeList();
    const auto opening = mReturn->opening;
    mReturn.reset();
    if (!opening || !opening->stream)
        return true;
    opening->context->retired = true;
    return callHostApi(
        opening->hostApi, [opening](BoundedCall::Ticket&) { opening->close(); },
        [] { return "Pa_CloseStream"; }, deadline.left());
}
