#pragma once

#include "external/MpeChannels.h"
#include "external/MtsKeys.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <atomic>
#include <functional>
#include <vector>

/// The MIDI output: sends the pitches of the sounding voices to one port, in one of three modes.
/// With a channel from 0 to 15 each voice has a key of its own, which is retuned before its note
/// (MIDI Tuning Standard). With channel -1 each voice takes a channel of its own and is tuned by
/// pitch bend (MPE), and the same in an MPE zone, which leaves channel 0 free for its manager and is
/// announced to the device.
///
/// Ports, channel and range are set on [gui], the voices sound on [audio]. What both touch belongs to
/// whoever runs the engine: [gui] has its changes done there in one piece. A change of port or mode
/// under sounding notes silences the device; these notes stay silent until they are struck again.
class MidiOutput : public QObject
{
    Q_OBJECT

public:
    static constexpr int CHANNELS = midi::CHANNELS;
    static constexpr int MPE = -1; // as channel

    /// Runs a short piece of work where the engine runs, and waits for it. False, without running it,
    /// when the engine does not come out of a block.
    using EngineRunner = std::function<bool(const std::function<void()>&)>;

    /// [gui]
    explicit MidiOutput(QObject* parent = nullptr);
    /// [stopped] Without a runner the engine is taken to run on the calling thread.
    void setEngineRunner(EngineRunner runner) { mEngineRunner = std::move(runner); }

    /// [any] What `portName` says while no port is open.
    static QString deactivatedName();

    /// [gui] Makes the output ready; true.
    virtual bool init() = 0;
    /// [stopped] Silences and closes the port. Nothing may be called afterwards.
    virtual void term() = 0;

    /// [gui] The names of all output ports.
    virtual QStringList availablePorts() const = 0;
    /// [any] Without effect as yet.
    virtual void logPorts() const = 0;
    /// [gui] Opens the first port of exactly this name. Any other name closes the output, and the port is
    /// opened when one of that name appears. True when a port is open now.
    virtual bool selectPort(QString name) = 0;
    /// [gui] Opens a port; an index that does not exist closes the output. True when one is open now.
    virtual bool selectPort(int index) = 0;

    /// [gui] The port that was chosen and is not there; empty for none.
    QString missingPort() const { return portOpen ? QString() : wantedPort; }

    /// [any] Without effect as yet.
    virtual void sendRawMidiMessage(const std::vector<unsigned char>* message) = 0;
    /// [any] Without effect as yet.
    virtual void sendRawMidiMessage(const unsigned char* message, unsigned long size) = 0;

    /// [audio] Tunes the voices, in one message in MTS mode. Hz, one for each voice.
    virtual void setKeyFrequency(QList<int> voices, QList<float> frequencies) = 0;
    /// [audio] Starts the voice's note, which has been tuned before.
    virtual void voiceOn(int voice, int velocity) = 0;
    /// [audio] Ends the voice's note; its tuning stays.
    virtual void voiceOff(int voice) = 0;
    /// [audio] Ends all notes on `channel`, in either mode.
    virtual void allVoicesOff() = 0;
    /// [audio] Puts the tuned keys back on equal temperament.
    virtual void resetTuningAlteredVoices() = 0;
    /// [audio] Without effect as yet.
    virtual void resetTuningAllVoices() = 0;

    /// [audio] setKeyFrequency() in MPE mode: each voice finds or takes a channel, which is bent.
    virtual void mpeSetVoiceFrequency(QList<int> voices, QList<float> frequencies) = 0;
    /// [audio] Puts the bend of this channel to its centre.
    virtual void mpeResetPitchBend(int channel) = 0;
    /// [audio] The same for all channels.
    virtual void mpeResetPitchBendAll() = 0;
    /// [audio] voiceOn() in MPE mode, on each channel that the voice holds.
    virtual void mpeVoiceOn(int voice, int velocity) = 0;
    /// [audio] voiceOff() in MPE mode; the voice's channels are free afterwards.
    virtual void mpeVoiceOff(int voice) = 0;
    /// [audio] Ends all notes on all channels. The channels stay with their voices until mpeVoiceOff.
    virtual void mpeAllVoicesOff() = 0;

    /// [gui] The range up and down, in cents; sent when the port is open in MPE mode.
    virtual void mpeSetPitchBendRange(int cents) = 0;
    /// [audio] Sends the range that is set.
    virtual void mpeApplyPitchBendRange() = 0;
    /// [audio] Sends this range; the one that is set stays.
    virtual void mpeApplyPitchBendRange(int cents) = 0;
    /// [audio] Sends the default range of a device, two semitones; the one that is set stays.
    virtual void mpeResetPitchBendRange() = 0;
    /// [audio] Without effect as yet.
    virtual void mpeSetChannelTuning(int channel, float tuning) = 0;
    /// [audio] Calls mpeSetChannelTuning() with 0.0 for each channel.
    virtual void mpeResetChannelTuning() = 0;
    /// [audio] Without effect as yet.
    virtual void mpeSetParameter(int channel, int parameter, float value) = 0;

    /// [gui] MPE, or 0 to 15 for MTS; any other number leaves MPE and keeps the channel.
    virtual void setChannel(int channel) = 0;

    /// [audio] Tunes voices that sound already. In MPE mode one that holds no channel, because its note
    /// has ended or was silenced, is left alone.
    virtual void bendVoices(QList<int> voices, QList<float> frequencies) = 0;

    /// [audio] Tunes voices that sound already to a new start of their glissandi, by a change of 1/1. In MPE
    /// mode a voice that the bend does not reach is struck anew with the nearest key. Velocities are values
    /// of a macro.
    virtual void retuneVoices(QList<int> voices, QList<float> frequencies, QList<float> velocities) = 0;

    /// [gui] Begins the lower MPE zone with all fifteen members; the channel becomes MPE. Any setChannel()
    /// ends it.
    virtual void setMpeZone() = 0;
    /// [any]
    bool isMpeZone() const { return mpeZone; }

    /// [any] How far a pitch may be from what was asked for, as the device gets it, in cents: the step of its
    /// tuning, or in MPE what a note that is held at the bend's limit misses by, if that is more.
    double pitchErrorCents() const;

    /// [gui] Silences the device. The notes stay silent until they are struck again.
    virtual void endNotes() = 0;

    QString portName; // [gui]
    /// [gui] What was chosen, kept while that port is missing; empty for none.
    QString wantedPort;
    /// [any] A port was opened and has not failed since. While it is off nothing is built.
    std::atomic<bool> portOpen{false};
    /// [any] 0 to 15, or MPE.
    std::atomic<int> channel{0};

signals:
    /// [gui] The port failed and was closed. It is opened again as soon as it is back.
    void portLost(QString name);
    /// [gui] The port that was missing is open.
    void portBack(QString name);
    /// [gui] Closed by choice: none is waited for any more.
    void portReleased();

protected:
    /// [gui] Runs the work where the engine runs. False, without running it, when the engine hangs.
    bool onEngine(const std::function<void()>& work) const;
    /// [any] What the device is told, which a zone rounds up.
    int bendRangeCents() const;

    // All of it [audio], and changed together.
    MtsKeys mtsKeys;
    std::atomic<bool> mpeMode{false};
    std::atomic<bool> mpeZone{false}; // only in MPE mode
    MpeChannels mpeChannels;
    std::atomic<int> pitchBendRangeCents{50};

private:
    EngineRunner mEngineRunner;
};
