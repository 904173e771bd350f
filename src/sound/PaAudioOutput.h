#pragma once

#include "sound/AudioOutput.h"
#include "sound/CallGate.h"

#include <QHash>

#include <portaudio.h>

#include <atomic>
#include <map>
#include <memory>

/// The sound device on PortAudio: two output channels, no input. Its callback is the clock of the
/// whole sound engine.
///
/// A sound server that was killed or frozen keeps PortAudio waiting for minutes. Calls that reach
/// it are bounded: after a few seconds the stream is given up, its callback retired, and the
/// program goes on without sound until a device is chosen: one of another host API, or one of the
/// same when the server has answered after all.
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

    /// [audio] One block: drains the commands, then renders interleaved stereo; in the block that
    /// fades to a mute it renders first. Frames beyond a multiple of 64 stay silent. Never blocks but
    /// for a patch change, and allocates nothing of its own.
    void renderBlock(float* output, unsigned long frames);

    static int portAudioCallback(const void* input, void* output, unsigned long frames,
                                 const PaStreamCallbackTimeInfo* timeInfo, PaStreamCallbackFlags flags,
                                 void* userData);

private:
    /// What a stream's callback is given. It outlives this object if the stream was given up.
    struct StreamContext
    {
        PaAudioOutput* output;
        std::atomic<bool> retired{false}; // its callback writes silence and touches nothing else
    };
    struct OpenJob;

    static void report(const char* call, int error);
    bool callHostApi(int hostApi, const std::function<void(BoundedCall::Ticket&)>& call,
                     const std::function<const char*()>& name);
    bool hasStuckCall() const;
    int paIndexOf(int& index) const;
    bool findSampleRate(const PaStreamParameters& parameters, double& sampleRate);
    bool openStream(int paIndex, int index);
    void applyMute(float* output, unsigned long frames, bool muted);

    PaStream* mStream = nullptr;
    std::shared_ptr<StreamContext> mContext;
    bool mInitialised = false;
    std::map<int, CallGate> mGates; // by PortAudio's host API
    int mStreamApi = -1;
    mutable QHash<int, int> mDeviceMap; // device list index to PortAudio's
    std::atomic<bool> mMuted{false};
    // Either way the mute fades over one block, so that it does not click.
    float mGain = 1.0F;               // [audio] at the end of the last block
    std::atomic<bool> mSilent{false}; // that it has reached 0
};
