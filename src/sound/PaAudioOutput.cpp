#include "sound/PaAudioOutput.h"

#include "app/DebugLog.h"
#include "sound/FloatMode.h"
#include "sound/PdPlayer.h"

#include <QElapsedTimer>
#include <QThread>

#include <z_libpd.h>

#include <algorithm>
#include <cstring>

namespace {

constexpr int CHANNELS = 2;
constexpr double PREFERRED_RATE = 44100.0;  // Hz
constexpr unsigned long PD_BLOCK_SHIFT = 6; // 64 frames a tick
// A fade is one block; a callback that does not come is not waited for.
constexpr qint64 LONGEST_FADE_MS = 250;
// Far longer than a healthy sound system takes.
constexpr std::chrono::seconds LONGEST_CALL{3};
constexpr std::chrono::seconds LONGEST_START{15};

/// Leads the gain in a straight line, to reach `to` with the last frame.
void applyRamp(float* output, unsigned long frames, float from, float to)
{
    for (unsigned long i = 0; i < frames; ++i) {
        const float gain = from + (to - from) * static_cast<float>(i + 1) / static_cast<float>(frames);
        output[i * CHANNELS] *= gain;
        output[i * CHANNELS + 1] *= gain;
    }
}

} // namespace

PaAudioOutput::PaAudioOutput(QObject* parent)
    : AudioOutput(parent)
{
}

PaAudioOutput::~PaAudioOutput()
{
    // A start-up that failed half way does not come through term().
    if (mInitialised)
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
    const auto error = std::make_shared<PaError>(paNoError);
    if (!BoundedCall::run([error](BoundedCall::Ticket&) { *error = Pa_Initialize(); }, LONGEST_START)) {
        qCritical() << "The sound system does not answer: Pa_Initialize was given up.";
        return false;
    }
    if (*error != paNoError) {
        report("Pa_Initialize", *error);
        return false;
    }
    mInitialised = true;
    qWarning() << "PortAudio initialised.";
    qDebug() << "PortAudio version number:" << Pa_GetVersion();
    qDebug() << "PortAudio version text:" << Pa_GetVersionText();
    devices();
    return selectDevice(device) || selectDevice(-1);
}

void PaAudioOutput::term()
{
    qWarning() << "PaAudioOutput::term...";
    closeDevice();
    if (!mInitialised)
        return;
    mInitialised = false;
    if (hasStuckCall()) // PortAudio cannot be ended then
        return;
    qWarning() << "Calling Pa_Terminate...";
    const auto error = std::make_shared<PaError>(paNoError);
    if (!BoundedCall::run([error](BoundedCall::Ticket&) { *error = Pa_Terminate(); }, LONGEST_CALL))
        qCritical() << "The sound system does not answer: Pa_Terminate was given up.";
    else if (*error != paNoError)
        report("Pa_Terminate", *error);
}

QStringList PaAudioOutput::devices() const
{
    QStringList list;
    mDeviceMap.clear();
    const int count = Pa_GetDeviceCount();
    if (count < 0) {
        report("Pa_GetDeviceCount", count);
        return list;
    }
    for (int paIndex = 0; paIndex < count; ++paIndex) {
        const PaDeviceInfo* device = Pa_GetDeviceInfo(paIndex);
        if (!device || device->maxOutputChannels <= 0)
            continue;
        const PaHostApiInfo* api = Pa_GetHostApiInfo(device->hostApi);
        QString apiName = api ? QString::fromLocal8Bit(api->name) : QString();
        if (apiName.toLower() == QStringLiteral("windows directsound"))
            apiName = QStringLiteral("DS");
        mDeviceMap.insert(static_cast<int>(list.size()), paIndex);
        list.append(apiName + QStringLiteral(": ") + QString::fromLocal8Bit(device->name));
    }
    return list;
}

void PaAudioOutput::logDevices() const
{
    const qsizetype count = devices().size();
    qWarning() << "Number of audio devices found:" << count;
    for (int index = 0; index < count; ++index) {
        const PaDeviceInfo* device = Pa_GetDeviceInfo(mDeviceMap.value(index));
        if (!device)
            continue;
        const PaHostApiInfo* api = Pa_GetHostApiInfo(device->hostApi);
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
    const int paIndex = Pa_GetDefaultOutputDevice();
    if (paIndex == paNoDevice)
        qCritical() << "No default output device returned from Pa_GetDefaultOutputDevice";
    else
        index = mDeviceMap.key(paIndex, 0);
    return paIndex;
}

bool PaAudioOutput::selectDevice(int index)
{
    const int paIndex = paIndexOf(index);
    if (paIndex == paNoDevice)
        return false;
    const int count = Pa_GetDeviceCount();
    if (paIndex < 0 || paIndex >= count) {
        qCritical().noquote() << QStringLiteral(
                                     "Device index %1 passed to PaAudioOutput::selectDevice did not "
                                     "translate to valid paIndex %2. Device count: %3.")
                                     .arg(index)
                                     .arg(paIndex)
                                     .arg(count);
        return false;
    }
    if (!closeDevice())
        return false;
    if (!openStream(paIndex, index)) {
        setSelectedDevice(-1);
        return false;
    }
    setSelectedDevice(index);
    return true;
}

bool PaAudioOutput::findSampleRate(const PaStreamParameters& parameters, double& sampleRate)
{
    sampleRate = PREFERRED_RATE;
    const PaError error = Pa_IsFormatSupported(nullptr, &parameters, sampleRate);
    if (error == paInvalidSampleRate) {
        qWarning() << "Got invalid sample rate for 44100";
        sampleRate = Pa_GetDeviceInfo(parameters.device)->defaultSampleRate;
    } else if (error != paFormatIsSupported) {
        qCritical() << "Output format not supported";
        report("Pa_IsFormatSupported", error);
        return false;
    }
    return true;
}

/// Opens and starts a stream; the callback may run before this returns.
struct PaAudioOutput::OpenJob
{
    PaStreamParameters parameters{};
    double sampleRate = 0.0;
    unsigned long frames = 0;
    std::shared_ptr<StreamContext> context;

    PaStream* stream = nullptr;
    PaStreamInfo info{};
    bool opened = false;
    PaError error = paNoError;
    std::atomic<const char*> call = "Pa_OpenStream"; // the one under way, or the one that failed

    void run(BoundedCall::Ticket& ticket)
    {
        error = Pa_OpenStream(&stream, nullptr, &parameters, sampleRate, frames, paNoFlag,
                              &PaAudioOutput::portAudioCallback, context.get());
        if (error == paNoError) {
            opened = true;
            if (const PaStreamInfo* streamInfo = Pa_GetStreamInfo(stream))
                info = *streamInfo;
            call = "Pa_StartStream";
            error = Pa_StartStream(stream);
        } else {
            stream = nullptr;
        }
        const bool inTime = ticket.finish();
        if (stream && (error != paNoError || !inTime)) {
            Pa_CloseStream(stream);
            stream = nullptr;
        }
    }
};

bool PaAudioOutput::openStream(int paIndex, int index)
{
    const PaDeviceInfo* device = Pa_GetDeviceInfo(paIndex);
    PaStreamParameters parameters{};
    parameters.device = paIndex;
    parameters.channelCount = CHANNELS;
    parameters.sampleFormat = paFloat32;
    parameters.suggestedLatency = (device->defaultLowOutputLatency + device->defaultHighOutputLatency) * 0.5;

    double sampleRate = 0.0;
    if (!findSampleRate(parameters, sampleRate))
        return false;
    qWarning() << "Selecting device" << index << "with latency:" << parameters.suggestedLatency
               << "frames per buffer:" << framesPerBuffer() << "sample rate:" << sampleRate
               << "channel count:" << CHANNELS;
    player()->initAudio(CHANNELS, static_cast<int>(sampleRate));

    const auto job = std::make_shared<OpenJob>();
    job->parameters = parameters;
    job->sampleRate = sampleRate;
    job->frames = static_cast<unsigned long>(framesPerBuffer());
    job->context = std::make_shared<StreamContext>();
    job->context->output = this;
    if (!callHostApi(
            device->hostApi, [job](BoundedCall::Ticket& ticket) { job->run(ticket); },
            [job] { return job->call.load(); })) {
        job->context->retired = true;
        return false;
    }
    if (job->opened)
        qWarning() << "PaStream opened with output latency" << job->info.outputLatency << "and sample rate"
                   << job->info.sampleRate;
    if (job->error != paNoError) {
        report(job->call, job->error);
        return false;
    }
    mStream = job->stream;
    mContext = job->context;
    mStreamApi = device->hostApi;
    qWarning() << "PaStream started";
    return true;
}

/// False when the call was given up, or not made because an earlier one is still inside. `name` is
/// that of PortAudio's function under way.
bool PaAudioOutput::callHostApi(int hostApi, const std::function<void(BoundedCall::Ticket&)>& call,
                                const std::function<const char*()>& name)
{
    CallGate& gate = mGates[hostApi];
    const bool wasStuck = gate.isStuck();
    if (gate.run(call, LONGEST_CALL))
        return true;
    const QString text =
        wasStuck
            ? QStringLiteral("The sound server still does not answer, so %1 was not called.")
            : QStringLiteral("The sound device does not answer: %1 was given up. Choose another device.");
    qCritical().noquote() << text.arg(QLatin1StringView(name()));
    return false;
}

bool PaAudioOutput::hasStuckCall() const
{
    return std::any_of(mGates.begin(), mGates.end(), [](const auto& gate) { return gate.second.isStuck(); });
}

bool PaAudioOutput::closeDevice()
{
    if (!mStream)
        return true;
    struct CloseJob
    {
        PaStream* stream;
        std::shared_ptr<StreamContext> context; // kept as long as its callback may run
        PaError stopError = paNoError;
        PaError closeError = paNoError;
    };
    const auto job = std::make_shared<CloseJob>(CloseJob{mStream, mContext});
    qWarning() << "Stopping stream...";
    const bool answered = callHostApi(
        mStreamApi,
        [job](BoundedCall::Ticket&) {
            job->stopError = Pa_StopStream(job->stream);
            job->closeError = Pa_CloseStream(job->stream);
        },
        [] { return "Pa_StopStream"; });
    mContext->retired = true;
    mStream = nullptr;
    mContext.reset();
    if (!answered) {
        setSelectedDevice(-1);
        return true;
    }
    if (job->stopError != paNoError)
        report("Pa_StopStream", job->stopError);
    qWarning() << "Closing stream...";
    setSelectedDevice(-1);
    if (job->closeError != paNoError)
        report("Pa_CloseStream", job->closeError);
    return job->closeError != paUnanticipatedHostError;
}

// ---------------------------------------------------------------- mute

void PaAudioOutput::muteOutput()
{
    mMuted = true;
    QElapsedTimer timer;
    timer.start();
    while (!mSilent && timer.elapsed() < LONGEST_FADE_MS)
        QThread::msleep(1);
}

void PaAudioOutput::unmuteOutput()
{
    mMuted = false;
}

void PaAudioOutput::applyMute(float* output, unsigned long frames, bool muted)
{
    const float gain = muted ? 0.0F : 1.0F;
    if (gain != mGain)
        applyRamp(output, frames, mGain, gain);
    else if (gain == 0.0F)
        std::memset(output, 0, frames * CHANNELS * sizeof(float));
    mGain = gain;
    mSilent = gain == 0.0F;
}

// ---------------------------------------------------------------- the callback

void PaAudioOutput::renderBlock(float* output, unsigned long frames)
{
    setFlushToZero();
    unsigned long rendered = 0; // frames
    const bool muted = mMuted;
    // A callback that comes late finds a mute and, in the ring, the closing of the patch at once:
    // the block that fades must still have the patch.
    const bool fadesOut = muted && mGain > 0.0F;
    PdPlayer* engine = player();
    if (engine->handOver().enterBlock()) {
        if (!fadesOut)
            engine->processEvents();
        if (engine->isPatchOpen()) {
            const unsigned long ticks = frames >> PD_BLOCK_SHIFT;
            libpd_process_float(static_cast<int>(ticks), nullptr, output);
            rendered = ticks << PD_BLOCK_SHIFT;
        }
        if (fadesOut)
            engine->processEvents();
        engine->handOver().leaveBlock();
    }
    std::memset(output + rendered * CHANNELS, 0, (frames - rendered) * CHANNELS * sizeof(float));
    applyMute(output, frames, muted);
}

int PaAudioOutput::portAudioCallback(const void*, void* output, unsigned long frames,
                                     const PaStreamCallbackTimeInfo*, PaStreamCallbackFlags, void* userData)
{
    const auto* context = static_cast<StreamContext*>(userData);
    if (context->retired.load(std::memory_order_acquire))
        std::memset(output, 0, frames * CHANNELS * sizeof(float));
    else
        context->output->renderBlock(static_cast<float*>(output), frames);
    return paContinue;
}
