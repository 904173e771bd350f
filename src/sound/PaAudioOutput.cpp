#include "sound/PaAudioOutput.h"

#include "app/LogFilter.h"
#include "app/LogText.h"
#include "sound/FloatMode.h"
#include "sound/JackEpoch.h"
#include "sound/PaDeviceJobs.h"
#include "sound/PdBlockSize.h"
#include "sound/PdPlayer.h"
#include "sound/ThreadCheck.h"

#include <QThread>

#include <z_libpd.h>

#include <algorithm>
#include <cmath>
#include <cstring>

using std::chrono::milliseconds;

namespace {

constexpr qint64 BLOCK_LIMIT_MS = 250;
// Far longer than a healthy sound system takes. The first holds for a change of device as a whole.
constexpr milliseconds CHANGE_LIMIT{4000};
constexpr milliseconds CLOSE_LIMIT{1500};
constexpr milliseconds END_LIMIT{2000};
constexpr milliseconds START_LIMIT{15000};

} // namespace

PaAudioOutput::PaAudioOutput(QObject* parent)
    : AudioOutput(parent)
{
    mClock.start();
    connect(&mWatchTimer, &QTimer::timeout, this, &PaAudioOutput::watch);
}

PaAudioOutput::~PaAudioOutput()
{
    // A start-up that failed half way does not come through term().
    if (!mEnded)
        term();
}

void PaAudioOutput::report(const char* call, int error)
{
    qCritical().noquote().nospace() << call << " returned err: " << error << ' ' << Pa_GetErrorText(error);
}

bool PaAudioOutput::init(int framesPerBuffer, int device, PdPlayer* player)
{
    qDebug() << "Thread @ PaAudioOutput::init: Thread, ID " << QThread::currentThread()
             << QThread::currentThreadId();
    setFramesPerBuffer(framesPerBuffer);
    setPlayer(player);
    if (!startLibrary(START_LIMIT))
        return false;
    mEnded = false;
    qWarning() << "PortAudio initialised.";
    qDebug() << "PortAudio version number:" << Pa_GetVersion();
    qDebug() << "PortAudio version text:" << Pa_GetVersionText();
    devices();
    const bool opened = selectDevice(device) || selectDevice(-1);
    if (!opened) // after a failed start no device is looked for
        mWatchTimer.stop();
    return opened;
}

/// False, with a report, when it fails or does not answer.
bool PaAudioOutput::startLibrary(milliseconds limit)
{
    const auto error = std::make_shared<PaError>(paNoError);
    if (!mReturnGate.run([error, library = mLibrary](BoundedCall::Ticket&) { *error = library->start(); },
                         limit)) {
        qCritical() << "The sound system does not answer: Pa_Initialize was given up.";
        return false;
    }
    if (*error != paNoError)
        report("Pa_Initialize", *error);
    return *error == paNoError;
}

void PaAudioOutput::term()
{
    ThreadCheck::gui();
    qWarning() << "PaAudioOutput::term...";
    const Deadline deadline(END_LIMIT);
    mEnded = true;
    const bool returnHangs = !stopReturn(deadline);
    if (returnHangs) {
        mReturnTicket->giveUp();
        if (mReturn->starting)
            mReturn->opening->context->retired = true;
    }
    closeStream(deadline);
    mWatchTimer.stop();
    if (mUnderruns > 0 || mOverruns > 0)
        qWarning() << "Late blocks: underruns:" << mUnderruns << "overruns:" << mOverruns;
    // PortAudio cannot be ended while a call is inside, or after its JACK client has gone.
    if (returnHangs || mParked || !mLibrary->isStarted)
        return;
    mLibrary->isStarted = false;
    if (mLibrary->isStuck() || mLibrary->jackEpoch != JackEpoch::current())
        return;
    qWarning() << "Calling Pa_Terminate...";
    const auto error = std::make_shared<PaError>(paNoError);
    if (!BoundedCall::run(
            [error, library = mLibrary](BoundedCall::Ticket&) { *error = library->terminate(); },
            deadline.left()))
        qCritical() << "The sound system does not answer: Pa_Terminate was given up.";
    else if (*error != paNoError)
        report("Pa_Terminate", *error);
}

// ---------------------------------------------------------------- the list of devices

QStringList PaAudioOutput::devices() const
{
    if (!mReturn) // else PortAudio is reading its devices on another thread
        readDevices();
    return mDeviceNames;
}

void PaAudioOutput::readDevices() const
{
    mDeviceNames.clear();
    mDeviceMap.clear();
    mListed = mLibrary;
    if (const int count = mLibrary->getDeviceCount(); count < 0) {
        report("Pa_GetDeviceCount", count);
        return;
    }
    const QStringList outputs = mLibrary->outputNames();
    for (qsizetype paIndex = 0; paIndex < outputs.size(); ++paIndex) {
        if (outputs[paIndex].isEmpty())
            continue;
        mDeviceMap.insert(static_cast<int>(mDeviceNames.size()), static_cast<int>(paIndex));
        mDeviceNames.append(outputs[paIndex]);
    }
}

void PaAudioOutput::logDevices() const
{
    const qsizetype count = devices().size();
    qWarning() << "Number of audio devices found:" << count;
    for (int index = 0; index < count; ++index) {
        const PaDeviceInfo* device = mLibrary->getDeviceInfo(mDeviceMap.value(index));
        if (!device)
            continue;
        const PaHostApiInfo* api = mLibrary->getHostApiInfo(device->hostApi);
        qWarning() << "Index:" << index;
        qWarning() << "Name:" << QString::fromLocal8Bit(device->name);
        qWarning() << "Host API:" << (api ? QString::fromLocal8Bit(api->name) : QString());
        qWarning() << "Max inputs:" << device->maxInputChannels;
        qWarning() << "Max outputs:" << device->maxOutputChannels;
        qWarning() << "Default low input latency:" << device->defaultLowInputLatency;
        qWarning() << "Default high input latency:" << device->defaultHighInputLatency;
        qWarning() << "Default low output latency:" << device->defaultLowOutputLatency;
        qWarning() << "Default high output latency:" << device->defaultHighOutputLatency;
        qWarning() << "Default sample rate:" << device->defaultSampleRate;
    }
}

/// PortAudio's index for one of the list. An index that the list does not have becomes that of the
/// system's default device; paNoDevice when there is none.
int PaAudioOutput::paIndexOf(int& index) const
{
    if (index != -1 && mDeviceMap.contains(index))
        return mDeviceMap.value(index);
    const int paIndex = mLibrary->getDefaultOutputDevice();
    if (paIndex == paNoDevice)
        qCritical() << "No default output device returned from Pa_GetDefaultOutputDevice";
    else
        index = indexOf(paIndex);
    return paIndex;
}

// ---------------------------------------------------------------- opening and closing

bool PaAudioOutput::selectDevice(int index)
{
    ThreadCheck::gui();
    const Deadline deadline(CHANGE_LIMIT);
    const QString name = mDeviceNames.value(index, mDeviceName);
    const bool opened = changeDevice(index, deadline);
    if (!opened)
        lose(name);
    return opened;
}

bool PaAudioOutput::changeDevice(int index, const Deadline& deadline)
{
    const QString wanted = mDeviceNames.value(index);
    if (!stopReturn(deadline)) {
        qCritical() << "The sound system does not answer.";
        return false;
    }
    if (mStream && jackIsGone())
        leaveStream();
    // A library whose client of JACK is dead cannot open JACK's devices; a second one can.
    for (bool again = true;; again = false) {
        const int paIndex = findDevice(wanted, index, deadline);
        if (paIndex == paNoDevice)
            return false;
        const bool isJack = mLibrary->isJack(mLibrary->getDeviceInfo(paIndex)->hostApi);
        const bool isFormer = isJack && mLibrary->jackEpoch != JackEpoch::current();
        if (!closeStream(deadline))
            return false;
        if (isJack && mParked) {
            qCritical() << "The sound server still does not answer, so Pa_OpenStream was not called.";
            return false;
        }
        if (!isFormer && openStream(paIndex, index, deadline))
            return true;
        if (!isJack || !again || mLibrary->isStuck() || !leaveLibrary())
            return false;
    }
}

/// PortAudio's index, and in `index` the list's, of the device of this name; the default one's for an
/// empty name. paNoDevice, with a log line, when there is none.
int PaAudioOutput::findDevice(const QString& wanted, int& index, const Deadline& deadline)
{
    if (!mLibrary->isStarted && !startLibrary(deadline.left()))
        return paNoDevice;
    if (mListed != mLibrary) {
        readDevices();
        emit devicesChanged();
    }
    if (!wanted.isEmpty() && mDeviceNames.value(index) != wanted) { // the list was read anew
        index = static_cast<int>(mDeviceNames.indexOf(wanted));
        if (index < 0) {
            qCritical().noquote() << "The sound device is not there:" << logText(wanted);
            return paNoDevice;
        }
    }
    const int paIndex = paIndexOf(index);
    const int count = mLibrary->getDeviceCount();
    if (paIndex == paNoDevice || (paIndex >= 0 && paIndex < count))
        return paIndex;
    qCritical().noquote() << QStringLiteral("Device index %1 passed to PaAudioOutput::selectDevice did not "
                                            "translate to valid paIndex %2. Device count: %3.")
                                 .arg(index)
                                 .arg(paIndex)
                                 .arg(count);
    return paNoDevice;
}

bool PaAudioOutput::openStream(int paIndex, int index, const Deadline& deadline)
{
    const auto job = std::make_shared<OpenJob>(mLibrary, paIndex, framesPerBuffer(), this);
    const auto call = [&](void (OpenJob::*step)()) {
        const auto work = [job, step](BoundedCall::Ticket& ticket) {
            (job.get()->*step)();
            if (!ticket.finish())
                job->close();
        };
        if (!callHostApi(
                job->hostApi, work, [job] { return job->call.load(); }, deadline.left())) {
            job->context->retired = true;
            return false;
        }
        return !reportFailure(*job);
    };
    bool opened = call(&OpenJob::check);
    if (opened) {
        tellRate(*job);
        opened = call(&OpenJob::open);
    }
    if (opened)
        prepareEngine(*job);
    if (!opened || !call(&OpenJob::start)) {
        setSelectedDevice(-1);
        return false;
    }
    streamRuns(*job, index);
    return true;
}

bool PaAudioOutput::reportFailure(const OpenJob& job)
{
    if (job.error == paNoError)
        return false;
    if (QLatin1StringView(job.call) == QLatin1StringView("Pa_IsFormatSupported"))
        qCritical() << "Output format not supported";
    report(job.call, job.error);
    return true;
}

/// Before a stream is opened.
void PaAudioOutput::tellRate(const OpenJob& job)
{
    if (job.rate != PREFERRED_RATE)
        qWarning() << "Got invalid sample rate for 44100";
    qWarning() << "Selecting device" << indexOf(job.parameters.device)
               << "with latency:" << job.parameters.suggestedLatency << "frames per buffer:" << job.frames
               << "sample rate:" << job.rate << "channel count:" << CHANNELS;
    setEngineRate(job.rate);
}

/// Between the opening of a stream and its start, when no block runs.
void PaAudioOutput::prepareEngine(const OpenJob& job)
{
    qWarning() << "PaStream opened with output latency" << job.info.outputLatency << "and sample rate"
               << job.info.sampleRate;
    if (job.info.sampleRate > 0.0 && std::lround(job.info.sampleRate) != std::lround(job.rate)) {
        qWarning() << "The stream has another sample rate than the one asked for.";
        setEngineRate(job.info.sampleRate);
    }
    mMute.startSilent();
}

void PaAudioOutput::setEngineRate(double rate)
{
    if (!mContext || !mContext->inBlock) // else a patch never comes out of its block
        player()->initAudio(CHANNELS, static_cast<int>(std::lround(rate)));
}

void PaAudioOutput::streamRuns(const OpenJob& job, int index)
{
    qWarning() << "PaStream started";
    ThreadCheck::setStreamRuns(true);
    mStream = job.stream;
    mContext = job.context;
    mStreamApi = job.hostApi;
    mDeviceName = mDeviceNames.value(index);
    mLost = false;
    mStuckLimitMs = STUCK_LIMIT_MS;
    mTryAgainMs = TRY_AGAIN_MS;
    if (!mLibrary->isJack(mStreamApi))
        mCanReturn = true;
    const double rate = job.info.sampleRate > 0.0 ? job.info.sampleRate : job.rate;
    mLossWatch.start(mClock.elapsed(), player()->handOver().blocks(),
                     std::lround(1000.0 * framesPerBuffer() / rate));
    mWatchTimer.start(LOOK_INTERVAL_MS);
    setSelectedDevice(index);
    emit deviceOpened(mDeviceName);
}

/// False when the call was given up, or not made because an earlier one is still inside. `name` is
/// that of PortAudio's function under way.
bool PaAudioOutput::callHostApi(int hostApi, const std::function<void(BoundedCall::Ticket&)>& call,
                                const std::function<const char*()>& name, milliseconds limit)
{
    SoundSystemGate& gate = mLibrary->gates[hostApi];
    const bool wasStuck = gate.isStuck();
    if (gate.run(call, limit))
        return true;
    const QString text =
        wasStuck
            ? QStringLiteral("The sound server still does not answer, so %1 was not called.")
            : QStringLiteral("The sound device does not answer: %1 was given up. Choose another device.");
    qCritical().noquote() << text.arg(QLatin1StringView(name()));
    return false;
}

bool PaAudioOutput::closeDevice()
{
    return closeStream(Deadline(CLOSE_LIMIT));
}

bool PaAudioOutput::closeStream(const Deadline& deadline)
{
    if (!mStream)
        return true;
    if (jackIsGone()) {
        leaveStream();
        return true;
    }
    const std::uint64_t calls = mContext->calls;
    mMute.hold(true);
    if (mLibrary->isJack(mStreamApi) && !mMute.isSilent() && mContext->calls == calls) {
        parkStream();
        mMute.hold(false);
        return true;
    }
    const auto job = std::make_shared<CloseJob>(CloseJob{mLibrary, mStream, mContext});
    qWarning() << "Stopping stream...";
    const bool answered = callHostApi(
        mStreamApi, [job](BoundedCall::Ticket&) { job->run(); }, [] { return "Pa_StopStream"; },
        deadline.left(CLOSE_LIMIT));
    mMute.hold(false);
    if (!answered) {
        forgetStream();
        return true;
    }
    if (job->stopError != paNoError)
        report("Pa_StopStream", job->stopError);
    qWarning() << "Closing stream...";
    forgetStream();
    if (job->closeError != paNoError)
        report("Pa_CloseStream", job->closeError);
    return job->closeError != paUnanticipatedHostError;
}

/// What a stream's end leaves: its callback touches nothing any more.
void PaAudioOutput::forgetStream()
{
    mContext->retired = true;
    QElapsedTimer timer;
    timer.start();
    while (mContext->inBlock && timer.elapsed() < BLOCK_LIMIT_MS)
        QThread::msleep(1);
    mStream = nullptr;
    ThreadCheck::setStreamRuns(false);
    setSelectedDevice(-1);
}

// ---------------------------------------------------------------- mute

void PaAudioOutput::muteOutput()
{
    ThreadCheck::gui();
    mMute.mute();
}

void PaAudioOutput::unmuteOutput()
{
    mMute.unmute();
}

// ---------------------------------------------------------------- the callback

void PaAudioOutput::renderBlock(float* output, unsigned long frames)
{
    setFlushToZero();
    unsigned long rendered = 0; // frames
    const bool muted = mMute.isMuted();
    // A callback that comes late finds a mute and, in the ring, the closing of the patch at once:
    // the block that fades must still have the patch.
    const bool fadesOut = mMute.fadesOut(muted);
    PdPlayer* engine = player();
    if (engine->handOver().enterBlock()) {
        if (!fadesOut)
            engine->processEvents();
        if (engine->isPatchOpen()) {
            const unsigned long ticks = frames / PD_BLOCK_FRAMES;
            libpd_process_float(static_cast<int>(ticks), nullptr, output);
            rendered = ticks * PD_BLOCK_FRAMES;
        }
        if (fadesOut)
            engine->processEvents();
        engine->handOver().leaveBlock();
    }
    std::memset(output + rendered * CHANNELS, 0, (frames - rendered) * CHANNELS * sizeof(float));
    mMute.apply(output, frames, muted);
}

int PaAudioOutput::portAudioCallback(const void*, void* output, unsigned long frames,
                                     const PaStreamCallbackTimeInfo*, PaStreamCallbackFlags flags,
                                     void* userData)
{
    auto* context = static_cast<StreamContext*>(userData);
    context->calls.fetch_add(1, std::memory_order_relaxed);
    context->inBlock = true;
    if (context->retired) {
        std::memset(output, 0, frames * CHANNELS * sizeof(float));
    } else {
        if ((flags & paOutputUnderflow) != 0)
            context->output->mUnderruns.fetch_add(1, std::memory_order_relaxed);
        if ((flags & paOutputOverflow) != 0)
            context->output->mOverruns.fetch_add(1, std::memory_order_relaxed);
        context->output->renderBlock(static_cast<float*>(output), frames);
    }
    context->inBlock = false;
    return paContinue;
}
