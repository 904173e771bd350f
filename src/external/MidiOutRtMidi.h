#pragma once

#include "external/MidiNoteRange.h"
#include "external/MidiOutput.h"
#include "external/MidiPortReturn.h"
#include "external/MidiSender.h"

#include <QElapsedTimer>
#include <QTimer>

#include <memory>
#include <span>

/// The MIDI output over RtMidi.
///
/// On [audio] a message is built in storage that is there already and handed to the sender's thread, the
/// only one that calls RtMidi: nothing is allocated, and nothing waits. A port that fails, that is
/// gone or does not take its messages is closed, which is logged and told by `portLost`, and opened
/// again when one of its name is back. MidiOutRtMidiPort.cpp has the port, MidiOutRtMidiMpe.cpp the MPE,
/// MidiOutRtMidiZone.cpp its zone.
class MidiOutRtMidi : public MidiOutput
{
    Q_OBJECT

public:
    /// [gui]
    explicit MidiOutRtMidi(QObject* parent = nullptr);
    /// [stopped] As term().
    ~MidiOutRtMidi() override;

    /// [gui] Tries RtMidi's default API, then each that it was built with. When none can be made the
    /// process ends with exit status 1.
    bool init() override;
    /// [stopped] Waits four seconds at most for a MIDI system that does not answer.
    void term() override;

    /// [gui] Waits two seconds at most, as every call of the following two.
    QStringList availablePorts() const override;
    /// [any] Empty.
    void logPorts() const override {}
    /// [gui]
    bool selectPort(QString name) override;
    /// [gui]
    bool selectPort(int index) override;

    /// [any] Empty.
    void sendRawMidiMessage(const std::vector<unsigned char>*) override {}
    /// [any] Empty.
    void sendRawMidiMessage(const unsigned char*, unsigned long) override {}

    /// [audio]
    void setKeyFrequency(QList<int> voices, QList<float> frequencies) override;
    /// [audio]
    void voiceOn(int voice, int velocity) override;
    /// [audio]
    void voiceOff(int voice) override;
    /// [audio]
    void allVoicesOff() override;
    /// [audio]
    void resetTuningAlteredVoices() override;
    /// [audio] Empty.
    void resetTuningAllVoices() override {}

    /// [audio]
    void mpeSetVoiceFrequency(QList<int> voices, QList<float> frequencies) override;
    /// [audio]
    void mpeResetPitchBend(int channel) override;
    /// [audio]
    void mpeResetPitchBendAll() override;
    /// [audio]
    void mpeVoiceOn(int voice, int velocity) override;
    /// [audio]
    void mpeVoiceOff(int voice) override;
    /// [audio]
    void mpeAllVoicesOff() override;
    /// [gui]
    void mpeSetPitchBendRange(int cents) override;
    /// [audio]
    void mpeApplyPitchBendRange() override;
    /// [audio]
    void mpeApplyPitchBendRange(int cents) override;
    /// [audio]
    void mpeResetPitchBendRange() override;
    /// [audio] Empty.
    void mpeSetChannelTuning(int, float) override {}
    /// [audio]
    void mpeResetChannelTuning() override;
    /// [audio] Empty.
    void mpeSetParameter(int, int, float) override {}

    /// [gui]
    void setChannel(int channel) override;
    /// [gui]
    void setMpeZone() override;
    /// [audio]
    void bendVoices(QList<int> voices, QList<float> frequencies) override;
    /// [audio]
    void retuneVoices(QList<int> voices, QList<float> frequencies, QList<float> velocities) override;
    /// [gui]
    void endNotes() override;

protected:
    /// [gui] What it gives is called by [sender], which may outlive this object.
    virtual MidiPort::Factory outputFactory() const;
    /// [gui] Waits until all that was sent has reached RtMidi.
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
    void sendTuning(const char* what, std::span<const midi::Byte> message);
    int takeChannel(int voice, float frequency, int& start, const QList<int>& voices);
    void sendBend(int channel, double note);
    bool bendReaches(int voice, double note) const;

    void enterZone();
    bool leaveZone();
    void announceZone();
    void endZone();
    void changeZoneRange();
    void sendMemberRange(int cents);
    void sendParameter(int channel, int parameter, int value);

    // [gui] The former one was given up; the engine may still be writing to it.
    mutable std::unique_ptr<MidiSender> mSender;
    mutable std::unique_ptr<MidiSender> mFormerSender;
    QTimer mWatch;                  // [gui] runs while a port is open or wanted
    mutable MidiPortReturn mReturn; // [gui]

    // [audio]
    MidiSender* mWriter = nullptr;
    MidiNoteRange mNoteRange;
    bool mBendWarned = false; // until the range changes
};
