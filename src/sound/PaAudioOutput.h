#pragma once

#include "sound/AudioOutput.h"
#include "sound/DeviceLossWatch.h"
#include "sound/MuteFade.h"
#include "sound/PortAudioLibrary.h"

#include <QElapsedTimer>
#include <QHash>
#include <QTimer>

#include <atomic>
#include <memory>

struct StreamContext;

/// The sound device on PortAudio: two output channels, no input. Its callback is the clock of the
/// whole sound engine.
///
/// A sound server that was killed or frozen keeps PortAudio waiting for minutes. Calls that reach it
/// are bounded: after a few seconds the stream is given up, its callback retired, and the program goes
/// on without sound. A device that went away is looked for every few seconds, on another thread, until
/// it is back or another one is chosen; the engine and its notes live on meanwhile.
class PaAudioOutput : public AudioOutput
{
    Q_OBJECT

public:
    static constexpr double PREFERRED_RATE = 44100.0; // Hz

    /// [gui]
    explicit PaAudioOutput(QObject* parent = nullptr);
    /// [gui] As term(), unless that was called.
    ~PaAudioOutput() override;

    /// [gui]
    bool init(int framesPerBuffer, int device, PdPlayer* player) override;
    /// [gui] Waits two seconds at most for a sound system that does not answer.
    void term() override;
    /// [gui]
    QStringList devices() const override;
    /// [gui]
    void logDevices() const override;
    /// [gui] Waits four seconds at most for a sound system that does not answer.
    bool selectDevice(int index) override;
    /// [gui]
    void muteOutput() override;
    /// [gui]
    void unmuteOutput() override;
    /// [gui]
    void tryAgain() override;

    /// [gui] With no stream it does nothing and returns true.
    bool closeDevice();

    /// [audio] One block: drains the commands, then renders interleaved stereo; in the block that
    /// fades to a mute it renders first. Frames beyond a multiple of 64 stay silent. Never blocks but
    /// for a patch change, and allocates nothing of its own.
    void renderBlock(float* output, unsigned long frames);

    /// [audio] What PortAudio calls for each block; `userData` is its StreamContext.
    static int portAudioCallback(const void* input, void* output, unsigned long frames,
                                 const PaStreamCallbackTimeInfo* timeInfo, PaStreamCallbackFlags flags,
                                 void* userData);

private:
    static constexpr int LOOK_INTERVAL_MS = static_cast<int>(DeviceLossWatch::INTERVAL_MS);
    static constexpr qint64 TRY_AGAIN_MS = 2500;
    // Doubled each time, since each copy stays in memory.
    static constexpr qint64 STUCK_LIMIT_MS = 8000;

    class Deadline;
    struct OpenJob;
    struct CloseJob;
    struct ParkedStream;
    struct ReturnJob;

    static void report(const char* call, int error);
    static bool reportFailure(const OpenJob& job);
    bool startLibrary(std::chrono::milliseconds limit);
    void readDevices() const;
    int paIndexOf(int& index) const;
    int indexOf(int paIndex) const { return mDeviceMap.key(paIndex, 0); }

    bool changeDevice(int index, const Deadline& deadline);
    int findDevice(const QString& wanted, int& index, const Deadline& deadline);
    bool openStream(int paIndex, int index, const Deadline& deadline);
    void tellRate(const OpenJob& job);
    void prepareEngine(const OpenJob& job);
    void setEngineRate(double rate);
    void streamRuns(const OpenJob& job, int index);
    bool closeStream(const Deadline& deadline);
    void forgetStream();
    bool callHostApi(int hostApi, const std::function<void(BoundedCall::Ticket&)>& call,
                     const std::function<const char*()>& name, std::chrono::milliseconds limit);

    void watch();
    bool streamDied() const;
    bool jackIsGone() const;
    void giveUpStream();
    void parkStream();
    void followParked();
    void leaveStream();
    bool leaveLibrary();
    void lose(const QString& name);
    void startReturn();
    void callReturn(void (ReturnJob::*step)());
    void followReturn();
    void takeList();
    bool stopReturn(const Deadline& deadline);

    PortAudioLibrary* mLibrary = PortAudioLibrary::linked(); // not owned, lives for ever
    PaStream* mStream = nullptr;
    std::shared_ptr<StreamContext> mContext; // of the last stream
    int mStreamApi = -1;
    mutable QHash<int, int> mDeviceMap;                // device list index to PortAudio's
    mutable QStringList mDeviceNames;                  // the list
    mutable const PortAudioLibrary* mListed = nullptr; // whose list that is
    QString mDeviceName;                               // of the stream, or of the one that is lost

    QTimer mWatchTimer;
    QElapsedTimer mClock;
    DeviceLossWatch mLossWatch;
    bool mLost = false;     // and looked for
    bool mReadAnew = false; // by the next try
    bool mCanReturn = true; // false when JACK's server died and there is no copy of PortAudio
    bool mEnded = true;     // not started, or brought to its end
    qint64 mNextTryMs = 0;
    qint64 mStuckUntilMs = 0; // then a library whose call does not come back is left
    qint64 mStuckLimitMs = STUCK_LIMIT_MS;
    qint64 mTryAgainMs = TRY_AGAIN_MS;
    std::shared_ptr<ParkedStream> mParked; // of a JACK server that stands still
    std::shared_ptr<ReturnJob> mReturn;    // under way while there is one; then it alone has the library
    std::shared_ptr<BoundedCall::Ticket> mReturnTicket;
    SoundSystemGate mReturnGate;
    unsigned mLateBlocksTold = 0;

    std::atomic<unsigned> mUnderruns{0};
    std::atomic<unsigned> mOverruns{0};
    MuteFade mMute;
};
