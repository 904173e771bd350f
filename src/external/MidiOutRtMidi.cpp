#include "external/MidiOutRtMidi.h"

#include "app/DebugLog.h"

#include <cstdlib>
#include <optional>

namespace {

constexpr const char* CLIENT_NAME = "RtMidi Output Client";
constexpr const char* PORT_NAME = "RtMidi Output";
constexpr int LAST_CHANNEL = MidiOutput::CHANNELS - 1;
constexpr size_t MOST_VOICES = 128; // of the player
// Far longer than a healthy MIDI system takes.
constexpr std::chrono::milliseconds LONGEST_CALL{2000};
// JACK's server may have been killed or frozen. CoreMIDI wants the thread that made the object.
#ifdef Q_OS_MACOS
constexpr bool CALLS_CAN_HANG = false;
#else
constexpr bool CALLS_CAN_HANG = true;
#endif

QList<int> asList(const midi::Bytes& bytes)
{
    return QList<int>(bytes.begin(), bytes.end());
}

} // namespace

MidiOutRtMidi::MidiOutRtMidi(QObject* parent)
    : MidiOutput(parent)
{
    mTuningChange.reserve(midi::tuningChangeSize(MOST_VOICES));
}

MidiOutRtMidi::~MidiOutRtMidi()
{
    // A start-up that failed half way does not come through term().
    if (rtMidiOut)
        MidiOutRtMidi::term();
}

std::unique_ptr<RtMidiOut> MidiOutRtMidi::createOutput(RtMidi::Api api) const
{
    return std::make_unique<RtMidiOut>(api, CLIENT_NAME);
}

bool MidiOutRtMidi::init()
{
    // The default one may throw where a later one works: ALSA without its sequencer, before JACK.
    std::vector<RtMidi::Api> compiled;
    RtMidi::getCompiledApi(compiled);
    std::vector<RtMidi::Api> apis{RtMidi::UNSPECIFIED};
    apis.insert(apis.end(), compiled.begin(), compiled.end());
    std::optional<RtMidiError> firstError;
    for (const RtMidi::Api api : apis) {
        struct Job
        {
            std::shared_ptr<RtMidiOut> made;
            std::optional<RtMidiError> error;
        };
        const auto job = std::make_shared<Job>();
        const bool answered = runBounded([this, job, api] {
            try {
                job->made = createOutput(api);
            } catch (const RtMidiError& error) {
                job->error = error;
            }
        });
        if (!answered) {
            qCritical() << "The MIDI system does not answer, there will be no MIDI output.";
            return true;
        }
        if (job->made) {
            rtMidiOut = job->made;
            return true;
        }
        if (!firstError)
            firstError = job->error;
    }
    if (firstError)
        firstError->printMessage();
    std::exit(EXIT_FAILURE);
}

void MidiOutRtMidi::term()
{
    if (isRtMidiOpen()) {
        silence();
        callRtMidi("closing", [](RtMidiOut& output) { output.closePort(); });
    }
    // Its end disconnects from the server too; one that hangs in a call is not waited for again.
    const auto last = std::make_shared<std::shared_ptr<RtMidiOut>>(std::move(rtMidiOut));
    rtMidiOut.reset();
    const auto limit = mGate.isStuck() ? std::chrono::milliseconds(0) : LONGEST_CALL;
    if (!CALLS_CAN_HANG)
        last->reset();
    else if (!BoundedCall::run([last](BoundedCall::Ticket&) { last->reset(); }, limit))
        qCritical() << "The MIDI system does not answer, it is left as it is.";
}

// ---------------------------------------------------------------- calls into RtMidi

/// Bounded where it could hang. False when it was given up, or an earlier one has not come back.
bool MidiOutRtMidi::runBounded(const std::function<void()>& call) const
{
    if (CALLS_CAN_HANG)
        return mGate.run([call](BoundedCall::Ticket&) { call(); }, LONGEST_CALL);
    call();
    return true;
}

/// [gui] False when RtMidi reported an error or does not answer.
bool MidiOutRtMidi::callRtMidi(const char* what, const Work& work) const
{
    if (!rtMidiOut)
        return false;
    struct Job
    {
        std::shared_ptr<RtMidiOut> output;
        Work work;
        std::optional<std::string> error;
    };
    const auto job = std::make_shared<Job>(Job{rtMidiOut, work, std::nullopt});
    const bool answered = runBounded([job] {
        try {
            job->work(*job->output);
        } catch (const RtMidiError& error) {
            job->error = error.getMessage();
        }
    });
    if (!answered) {
        reportError(what, "The MIDI system does not answer.");
        return false;
    }
    if (job->error)
        reportError(what, *job->error);
    return !job->error;
}

/// Any thread. Once for each port, since a port that is gone fails at every message.
void MidiOutRtMidi::reportError(const char* what, const std::string& message) const
{
    if (!mErrorReported.exchange(true))
        qCritical().noquote() << "MIDI output:" << what << "failed:" << QString::fromStdString(message);
}

bool MidiOutRtMidi::isRtMidiOpen() const
{
    return rtMidiOut && !mGate.isStuck() && rtMidiOut->isPortOpen();
}

void MidiOutRtMidi::send(const midi::ShortMessage& message)
{
    sendBytes(message.data(), message.size());
}

void MidiOutRtMidi::send(const midi::Bytes& message)
{
    sendBytes(message.data(), message.size());
}

void MidiOutRtMidi::sendBytes(const midi::Byte* message, size_t size)
{
    if (!rtMidiOut)
        return;
    try {
        rtMidiOut->sendMessage(message, size);
    } catch (const RtMidiError& error) {
        reportError("sending", error.getMessage());
        if (portOpen.exchange(false))
            QMetaObject::invokeMethod(this, &MidiOutRtMidi::closeLostPort, Qt::QueuedConnection);
    }
}

/// [gui] The rest of what an error while sending means, which is not for the audio thread.
void MidiOutRtMidi::closeLostPort()
{
    if (portOpen || portName == deactivatedName()) // another one was chosen meanwhile
        return;
    const QString lost = portName;
    callRtMidi("closing", [](RtMidiOut& output) { output.closePort(); });
    portName = deactivatedName();
    emit portLost(lost);
}

// ---------------------------------------------------------------- ports and channel

QStringList MidiOutRtMidi::availablePorts() const
{
    const auto names = std::make_shared<QStringList>();
    const bool listed = callRtMidi("listing the ports", [names](RtMidiOut& output) {
        const unsigned int count = output.getPortCount();
        for (unsigned int i = 0; i < count; ++i)
            names->append(QString::fromStdString(output.getPortName(i)));
    });
    qDebug() << "Midi Output ports available:";
    if (!listed)
        return {};
    for (qsizetype i = 0; i < names->size(); ++i)
        qDebug().noquote().nospace() << "  Output Port #" << i + 1 << ": " << names->at(i);
    return *names;
}

bool MidiOutRtMidi::selectPort(QString name)
{
    return selectPort(static_cast<int>(availablePorts().indexOf(name)));
}

bool MidiOutRtMidi::selectPort(int index)
{
    // First of all, so that the audio thread sends nothing behind what silences the device.
    portOpen = false;
    if (isRtMidiOpen()) {
        silence();
        callRtMidi("closing", [](RtMidiOut& output) { output.closePort(); });
    }
    portName = deactivatedName();
    qDebug() << "Midi-Out port closed";
    if (index < 0)
        return false;

    mErrorReported = false;
    const auto opened = std::make_shared<std::optional<std::string>>();
    const bool answered = callRtMidi("opening", [opened, index](RtMidiOut& output) {
        const auto port = static_cast<unsigned int>(index);
        if (port >= output.getPortCount())
            return;
        output.openPort(port, PORT_NAME);
        *opened = output.getPortName(port);
    });
    if (!answered || !*opened)
        return false;
    portName = QString::fromStdString(**opened);
    qDebug().noquote() << "Midi-Out port opened: " << portName;
    portOpen = true;
    if (mpeMode)
        mpeApplyPitchBendRange();
    return portOpen;
}

void MidiOutRtMidi::silence()
{
    if (mpeMode) {
        mpeAllVoicesOff();
        mpeResetPitchBendRange();
    } else {
        allVoicesOff();
        resetTuningAlteredVoices();
    }
}

void MidiOutRtMidi::setChannel(int newChannel)
{
    if (newChannel == MPE) {
        mpeMode = true;
        if (isRtMidiOpen() && channel != MPE) {
            allVoicesOff(); // still on the old channel
            mpeApplyPitchBendRange();
        }
        channel = MPE;
        return;
    }
    mpeMode = false;
    if (isRtMidiOpen() && channel == MPE) {
        mpeAllVoicesOff();
        mpeResetPitchBendRange();
    }
    if (newChannel >= 0 && newChannel <= LAST_CHANNEL)
        channel = newChannel;
}

// ---------------------------------------------------------------- MIDI Tuning Standard

/// The note of a frequency, moved into the range with a warning, which names all of `logged` or, for
/// null, the frequency.
double MidiOutRtMidi::noteInRange(float frequency, const QList<float>* logged)
{
    const double note = midi::noteOfFrequency(frequency);
    const auto warn = [&](const char* text) {
        QDebug line = qWarning();
        line << text;
        logged ? line << *logged : line << frequency;
    };
    if (note < 0.0) {
        warn("MTS: Freq sent to MIDI below MIDI range: ");
        return 0.0;
    }
    if (note >= midi::MAX_NOTE) {
        warn("MTS: Freq sent to MIDI above MIDI range: ");
        return midi::TOP_NOTE;
    }
    return note;
}

void MidiOutRtMidi::setKeyFrequency(QList<int> voices, QList<float> frequencies)
{
    if (mpeMode) {
        mpeSetVoiceFrequency(voices, frequencies);
        return;
    }
    const qsizetype count = qMin(voices.size(), frequencies.size());
    if (count == 0)
        return;
    midi::beginTuningChange(mTuningChange, count);
    for (qsizetype i = 0; i < count; ++i) {
        const int key = firstKey + voices.at(i);
        const double note = noteInRange(frequencies.at(i), &frequencies);
        midi::addKeyTuning(mTuningChange, key, midi::tuningOfNote(note));
        if (!tunedKeys.contains(key))
            tunedKeys.append(key);
    }
    midi::endTuningChange(mTuningChange);
    send(mTuningChange);
    ORLO_AUDIO_DEBUG << "MTS Midi message sent: " << asList(mTuningChange);
}

void MidiOutRtMidi::voiceOn(int voice, int velocity)
{
    if (mpeMode)
        mpeVoiceOn(voice, velocity);
    else
        send(midi::noteOn(channel, firstKey + voice, velocity));
}

void MidiOutRtMidi::voiceOff(int voice)
{
    if (mpeMode)
        mpeVoiceOff(voice);
    else
        send(midi::noteOff(channel, firstKey + voice));
}

void MidiOutRtMidi::allVoicesOff()
{
    send(midi::allNotesOff(channel));
}

void MidiOutRtMidi::resetTuningAlteredVoices()
{
    if (tunedKeys.isEmpty())
        return;
    midi::Bytes message; // not the audio thread's, which may be at work on it
    midi::beginTuningChange(message, tunedKeys.size());
    for (qsizetype i = 0; i < tunedKeys.size(); ++i) {
        const int key = tunedKeys.at(i);
        midi::addKeyTuning(message, key, {static_cast<midi::Byte>(key), 0, 0});
    }
    midi::endTuningChange(message);
    send(message);
    qDebug() << "Midi message sent to reset MTS to standard for previously altered voices: "
             << asList(message);
    tunedKeys.clear();
}
