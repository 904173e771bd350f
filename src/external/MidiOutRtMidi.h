#pragma once

#include "external/MidiBytes.h"
#include "external/MidiOutput.h"
#include "sound/CallGate.h"

#include <RtMidi.h>

#include <functional>
#include <memory>

/// The MIDI output over RtMidi.
///
/// [audio] A sent message is built in storage that is there already: nothing is allocated, but for
/// a log line when a frequency or a port fails. An error of RtMidi never leaves this class. It is
/// logged once for each port that was opened, and closes the port.
class MidiOutRtMidi : public MidiOutput
{
    Q_OBJECT

public:
    explicit MidiOutRtMidi(QObject* parent = nullptr);
    ~MidiOutRtMidi() override;

    /// Tries RtMidi's default API, then each that it was built with. When none can be made the
    /// process ends with exit status 1.
    bool init() override;
    void term() override;

    QStringList availablePorts() const override;
    void logPorts() const override {}
    bool selectPort(QString name) override;
    bool selectPort(int index) override;

    void sendRawMidiMessage(const std::vector<unsigned char>*) override {}
    void sendRawMidiMessage(const unsigned char*, unsigned long) override {}

    void setKeyFrequency(QList<int> voices, QList<float> frequencies) override;
    void voiceOn(int voice, int velocity) override;
    void voiceOff(int voice) override;
    void allVoicesOff() override;
    void resetTuningAlteredVoices() override;
    void resetTuningAllVoices() override {}

    void mpeSetVoiceFrequency(QList<int> voices, QList<float> frequencies) override;
    void mpeResetPitchBend(int channel) override;
    void mpeResetPitchBendAll() override;
    void mpeVoiceOn(int voice, int velocity) override;
    void mpeVoiceOff(int voice) override;
    void mpeAllVoicesOff() override;
    void mpeSetPitchBendRange(int cents) override;
    void mpeApplyPitchBendRange() override;
    void mpeApplyPitchBendRange(int cents) override;
    void mpeResetPitchBendRange() override;
    void mpeSetChannelTuning(int, float) override {}
    void mpeResetChannelTuning() override;
    void mpeSetParameter(int, int, float) override {}

    void setChannel(int channel) override;

protected:
    /// Throws RtMidiError when the API does not come up.
    virtual std::unique_ptr<RtMidiOut> createOutput(RtMidi::Api api) const;

private:
    using Work = std::function<void(RtMidiOut&)>;
    bool runBounded(const std::function<void()>& call) const;
    bool callRtMidi(const char* what, const Work& work) const;
    void reportError(const char* what, const std::string& message) const;
    bool isRtMidiOpen() const;

    void silence();
    void closeLostPort();
    void send(const midi::ShortMessage& message);
    void send(const midi::Bytes& message);
    void sendBytes(const midi::Byte* message, size_t size);
    static double noteInRange(float frequency, const QList<float>* logged);
    int takeChannel(int voice, float frequency, int& start, const QList<int>& voices);
    void sendBend(int channel, float frequency);

    std::shared_ptr<RtMidiOut> rtMidiOut; // shared with a call that had to be given up
    midi::Bytes mTuningChange;            // [audio]
    mutable CallGate mGate;               // [gui]
    mutable std::atomic<bool> mErrorReported{false};
};
