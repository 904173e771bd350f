#pragma once

#include "external/MidiOutput.h"
#include "external/MidiSender.h"

#include <RtMidi.h>

#include <QElapsedTimer>
#include <QTimer>

#include <array>
#include <memory>
#include <optional>

/// The MIDI output over RtMidi.
///
/// [audio] A message is built in storage that is there already and handed to the sender's thread, the
/// only one that calls RtMidi: nothing is allocated, and nothing waits. A port that fails, that is
/// gone or does not take its messages is closed, which is logged and told by `portLost`, and opened
/// again when one of its name is back.
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
    void bendVoices(QList<int> voices, QList<float> frequencies) override;

protected:
    /// Throws RtMidiError when the API does not come up. Called on the sender's thread.
    virtual std::unique_ptr<RtMidiOut> createOutput(RtMidi::Api api) const;
    /// Waits until all that was sent has reached RtMidi.
    bool waitUntilSent() const
    {
        return mSender && mSender->run([](MidiPort&) {});
    }

private:
    using Answer = MidiSender::Answer;
    std::unique_ptr<RtMidiOut> createAnyOutput() const;
    MidiSender* sender() const;
    void dropSender() const;
    std::shared_ptr<Answer> callSender(const char* what, MidiSender::Work work) const;

    void closePort();
    bool usePort(const QString& name);
    void startWatch();
    void watch();
    void losePort(const std::string& why);
    void lookForPort();
    void silence();
    void applyChannel(int newChannel);

    void send(std::span<const midi::Byte> message);
    double noteInRange(int voice, float frequency);
    int takeChannel(int voice, float frequency, int& start, const QList<int>& voices);
    void sendBend(int channel, float frequency);

    // [gui] The former one was given up; the engine may still be writing to it.
    mutable std::unique_ptr<MidiSender> mSender;
    mutable std::unique_ptr<MidiSender> mFormerSender;
    QTimer mWatch; // [gui] runs while a port is open or wanted
    /// [gui] A search for the port that is missing. `name` belongs to the sender until it has answered.
    struct Search
    {
        std::shared_ptr<Answer> answer;
        std::shared_ptr<std::optional<std::string>> name;
    };
    mutable std::optional<Search> mSearch;
    QElapsedTimer mSinceSearch;

    // [audio]
    MidiSender* mWriter = nullptr;
    midi::Bytes mTuningChange;
    std::array<bool, 256> mWarned{}; // by voice, until its note ends
    bool mBendWarned = false;        // until the range changes
};
