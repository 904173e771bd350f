#pragma once

#include "sound/AudioOutput.h"

#include <QHash>

#include <portaudio.h>

#include <atomic>

/// The sound device on PortAudio: two output channels, no input. Its callback is the clock of the
/// whole sound engine.
class PaAudioOutput : public AudioOutput
{
    Q_OBJECT

public:
    explicit PaAudioOutput(QObject* parent = nullptr);
    ~PaAudioOutput() override;

    bool init(int framesPerBuffer, int device, PdPlayer* player) override;
    void term() override;
    QStringList devices() const override;
    void logDevices() const override;
    bool selectDevice(int index) override;
    void muteOutput() override;
    void unmuteOutput() override;

    /// With no stream it does nothing and returns true.
    bool closeDevice();

    /// [audio] One block: drains the commands, then renders interleaved stereo. Frames beyond a
    /// multiple of 64 stay silent. Never blocks but for a patch change, and allocates nothing of
    /// its own.
    void renderBlock(float* output, unsigned long frames);

    static int portAudioCallback(const void* input, void* output, unsigned long frames,
                                 const PaStreamCallbackTimeInfo* timeInfo, PaStreamCallbackFlags flags,
                                 void* userData);

private:
    /// The mute runs through a block of fading either way, so that it does not click.
    enum class Mute { Off, FadingOut, On, FadingIn };

    static void report(const char* call, int error);
    int paIndexOf(int& index) const;
    bool findSampleRate(const PaStreamParameters& parameters, double& sampleRate);
    bool openStream(int paIndex, int index);
    void applyMute(float* output, unsigned long frames);

    PaStream* mStream = nullptr;
    bool mInitialised = false;
    mutable QHash<int, int> mDeviceMap; // device list index to PortAudio's
    std::atomic<Mute> mMute{Mute::Off};
};
