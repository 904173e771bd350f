#include "sound/PaAudioOutput.h"

#include "app/DebugLog.h"
#include "sound/FloatMode.h"
#include "sound/PdPlayer.h"

#include <QElapsedTimer>
#include <QThread>

#include <z_libpd.h>

#include <cstring>

namespace {

constexpr int CHANNELS = 2;
constexpr double PREFERRED_RATE = 44100.0; // Hz
constexpr unsigned long PD_BLOCK_SHIFT = 6; // 64 frames a tick
// A fade is one block; a callback that does not come is not waited for.
constexpr qint64 LONGEST_FADE_MS = 250;

/// Between the two, how far the gain is at frame i of `frames`.
float rampAt(float from, float to, unsigned long i, unsigned long frames)
{
    return from + (to - from) * static_cast<float>(i + 1) / static_cast<float>(frames);
}

void applyRamp(float* output, unsigned long frames, float from, float to)
{
    for (unsigned long i = 0; i < frames; ++i) {
        const float gain = rampAt(from, to, i, frames);
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
    if (const PaError error = Pa_Initialize(); error != paNoError) {
        report("Pa_Initialize", error);
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
    if (!mInitialised)
        return;
    qWarning() << "PaAudioOutput::term...";
    closeDevice();
    qWarning() << "Calling Pa_Terminate...";
    if (const PaError error = Pa_Terminate(); error != paNoError)
        report("Pa_Terminate", error);
    mInitialised = false;
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
        qCritical().noquote() << QStringLiteral("Device index %1 passed to PaAudioOutput::selectDevice did not "
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

    PaError error = Pa_OpenStream(&mStream, nullptr, &parameters, sampleRate,
                                  static_cast<unsigned long>(framesPerBuffer()), paNoFlag,
                                  &PaAudioOutput::portAudioCallback, this);
    if (error != paNoError) {
        mStream = nullptr;
        report("Pa_OpenStream", error);
        return false;
    }
    if (const PaStreamInfo* info = Pa_GetStreamInfo(mStream))
        qWarning() << "PaStream opened with output latency" << info->outputLatency << "and sample rate"
                   << info->sampleRate;
    error = Pa_StartStream(mStream);
    if (error != paNoError) {
        report("Pa_StartStream", error);
        Pa_CloseStream(mStream);
        mStream = nullptr;
        return false;
    }
    qWarning() << "PaStream started";
    return true;
}

bool PaAudioOutput::closeDevice()
{
    if (!mStream)
        return true;
    qWarning() << "Stopping stream...";
    if (const PaError error = Pa_StopStream(mStream); error != paNoError)
        report("Pa_StopStream", error);
    qWarning() << "Closing stream...";
    const PaError error = Pa_CloseStream(mStream);
    mStream = nullptr;
    setSelectedDevice(-1);
    if (error != paNoError)
        report("Pa_CloseStream", error);
    return error != paUnanticipatedHostError;
}

// ---------------------------------------------------------------- mute

void PaAudioOutput::muteOutput()
{
    mMute.store(Mute::FadingOut);
    QElapsedTimer timer;
    timer.start();
    while (mStream && mMute.load() == Mute::FadingOut && timer.elapsed() < LONGEST_FADE_MS)
        QThread::msleep(1);
    mMute.store(Mute::On);
}

void PaAudioOutput::unmuteOutput()
{
    mMute.store(Mute::FadingIn);
}

void PaAudioOutput::applyMute(float* output, unsigned long frames)
{
    Mute mute = mMute.load(std::memory_order_relaxed);
    switch (mute) {
    case Mute::Off:
        break;
    case Mute::FadingOut:
        applyRamp(output, frames, 1.0F, 0.0F);
        mMute.compare_exchange_strong(mute, Mute::On);
        break;
    case Mute::On:
        std::memset(output, 0, frames * CHANNELS * sizeof(float));
        break;
    case Mute::FadingIn:
        applyRamp(output, frames, 0.0F, 1.0F);
        mMute.compare_exchange_strong(mute, Mute::Off);
        break;
    }
}

// ---------------------------------------------------------------- the callback

void PaAudioOutput::renderBlock(float* output, unsigned long frames)
{
    setFlushToZero();
    unsigned long rendered = 0; // frames
    PdPlayer* engine = player();
    if (engine->handOver().enterBlock()) {
        engine->processEvents();
        if (engine->isPatchOpen()) {
            const unsigned long ticks = frames >> PD_BLOCK_SHIFT;
            libpd_process_float(static_cast<int>(ticks), nullptr, output);
            rendered = ticks << PD_BLOCK_SHIFT;
        }
        engine->handOver().leaveBlock();
    }
    std::memset(output + rendered * CHANNELS, 0, (frames - rendered) * CHANNELS * sizeof(float));
    applyMute(output, frames);
}

int PaAudioOutput::portAudioCallback(const void*, void* output, unsigned long frames,
                                     const PaStreamCallbackTimeInfo*, PaStreamCallbackFlags, void* userData)
{
    static_cast<PaAudioOutput*>(userData)->renderBlock(static_cast<float*>(output), frames);
    return paContinue;
}
