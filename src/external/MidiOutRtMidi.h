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
    void endNotes() override;

protected:
    /// Called on the sender's thread, which may outlive this object.
    virtual MidiPort::Factory outputFactory() const;
    /// Waits until all that was sent has reached RtMidi.
    bool waitUntilSent() const
    {
        return mSender && mSender->run([](MidiPort&) {});
    }

private:
    using Answer = MidiSender::Answer;
    MidiSender* sender() const;
    void dropSender() const;
    std::shared_ptr<Answer> callSender(const char* what, MidiSender::Work work) const;

    void closePort();
    bool openPort(int index, const QElapsedTimer& sinceChoice);
    bool mayAskAgain(const QElapsedTimer& sinceChoice) const;
    bool usePort(const MidiPort::Opened& opened);
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
    /// [gui] A search for the port that is missing. `opened` belongs to the sender until it has answered.
    struct Search
    {
        std::shared_ptr<Answer> answer;
        std::shared_ptr<std::optional<MidiPort::Opened>> opened;
    };
    mutable std::optional<Search> mSearch;
    RtMidi::Api mWantedApi = RtMidi::UNSPECIFIED; // [gui] of `wantedPort`, once it has been open
    QElapsedTimer mSinceSearch;

    // [audio]
    MidiSender* mWriter = nullptr;
    midi::Bytes mTuningChange;
    std::array<bool, 256> mWarned{}; // by voice, until its note ends
    bool mBendWarned = false;        // until the range changes
};
