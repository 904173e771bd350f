#include "external/MidiOutRtMidi.h"

#include "app/LogFilter.h"
#include "external/MidiNote.h"
#include "external/MpeBend.h"
#include "sound/AudioLog.h"
#include "sound/ThreadCheck.h"

#include <cmath>
#include <cstdlib>
#include <optional>
#include <utility>

namespace {

constexpr const char* CLIENT_NAME = "RtMidi Output Client";
constexpr int LAST_CHANNEL = MidiOutput::CHANNELS - 1;
constexpr int DEFAULT_BEND_RANGE_CENTS = 200; // of a device
constexpr std::chrono::milliseconds WATCH_INTERVAL{100};
// A choice of the player's that has taken so long is not tried again: it is two calls at most.
constexpr qint64 LAST_TRY_MS = 3000;
// With so many given up, MIDI stays off until one of them comes back.
constexpr int MAX_LOST_THREADS = 3;

QList<int> asList(std::span<const midi::Byte> bytes)
{
    return QList<int>(bytes.begin(), bytes.end());
}

/// The texts that the options have for no port.
bool isNoPort(const QString& name)
{
    return name.isEmpty() || name == MidiOutput::deactivatedName()
           || name == QLatin1StringView("deactivated");
}

void logFailure(const char* what, const std::string& why)
{
    qCritical().noquote() << "MIDI output:" << what << "failed:" << QString::fromStdString(why);
}

} // namespace

MidiOutRtMidi::MidiOutRtMidi(QObject* parent)
    : MidiOutput(parent)
{
    mWatch.setInterval(WATCH_INTERVAL);
    connect(&mWatch, &QTimer::timeout, this, &MidiOutRtMidi::watch);
}

MidiOutRtMidi::~MidiOutRtMidi()
{
    // A start-up that failed half way does not come through term().
    MidiOutRtMidi::term();
}

MidiPort::Factory MidiOutRtMidi::outputFactory() const
{
    return [](RtMidi::Api api) { return std::make_unique<RtMidiOut>(api, CLIENT_NAME); };
}

bool MidiOutRtMidi::init()
{
    const auto failure = std::make_shared<std::optional<RtMidiError>>();
    mReturn.cancel();
    mWriter = nullptr;
    mSender.reset();
    const bool answered = sender() && sender()->run([failure](MidiPort& port) {
        try {
            port.check();
        } catch (const RtMidiError& error) {
            *failure = error;
        }
    });
    if (!answered) {
        dropSender();
        qCritical() << "The MIDI system does not answer, there will be no MIDI output.";
        return true;
    }
    if (!*failure)
        return true;
    (*failure)->printMessage();
    std::exit(EXIT_FAILURE);
}

void MidiOutRtMidi::term()
{
    ThreadCheck::stopped();
    mWatch.stop();
    mReturn.cancel();
    if (portOpen && mWriter)
        silence();
    if (mSender && !mSender->run([](MidiPort& port) { port.close(); }))
        qCritical() << "The MIDI system does not answer, it is left as it is.";
    mWriter = nullptr;
    mSender.reset();
    mFormerSender.reset();
}

// ---------------------------------------------------------------- the sender

/// [gui] Null while too many threads hang in RtMidi.
MidiSender* MidiOutRtMidi::sender() const
{
    if (mSender && mSender->isGivenUp())
        dropSender();
    if (!mSender && MidiSender::lostThreads() < MAX_LOST_THREADS)
        mSender = std::make_unique<MidiSender>(outputFactory());
    return mSender.get();
}

void MidiOutRtMidi::dropSender() const
{
    mReturn.dropSearch();
    if (mSender.get() == mWriter)
        mFormerSender = std::move(mSender);
    mSender.reset();
}

/// [gui] Null when RtMidi reported an error or does not answer.
std::shared_ptr<MidiSender::Answer> MidiOutRtMidi::callSender(const char* what, MidiSender::Work work) const
{
    auto answer = sender() ? sender()->run(std::move(work)) : nullptr;
    if (!answer)
        logFailure(what, "The MIDI system does not answer.");
    else if (answer->error)
        logFailure(what, *answer->error);
    return answer && !answer->error ? answer : nullptr;
}

/// [audio] The last place before the bytes leave: what is no message, such as a note of a key above 127,
/// is not sent. No port is open but one that has a writer.
void MidiOutRtMidi::send(std::span<const midi::Byte> message)
{
    ThreadCheck::audio();
    if (portOpen && mWriter && midi::isWellFormed(message))
        mWriter->write(message);
}

// ---------------------------------------------------------------- ports

QStringList MidiOutRtMidi::availablePorts() const
{
    ThreadCheck::gui();
    const auto names = std::make_shared<std::vector<std::string>>();
    const auto answer = callSender("listing the ports", [names](MidiPort& port) { *names = port.names(); });
    qDebug() << "Midi Output ports available:";
    if (!answer)
        return {};
    QStringList list;
    for (const std::string& name : *names) {
        list.append(QString::fromStdString(name));
        qDebug().noquote().nospace() << "  Output Port #" << list.size() << ": " << list.last();
    }
    return list;
}

bool MidiOutRtMidi::selectPort(QString name)
{
    ThreadCheck::gui();
    QElapsedTimer timer;
    timer.start();
    QStringList ports = availablePorts();
    if (mayAskAgain(timer))
        ports = availablePorts();
    const auto index = static_cast<int>(ports.indexOf(name));
    const bool opened = openPort(index, timer);
    if (index < 0 && !isNoPort(name)) {
        wantedPort = name;
        startWatch();
    }
    return opened;
}

bool MidiOutRtMidi::selectPort(int index)
{
    ThreadCheck::gui();
    QElapsedTimer timer;
    timer.start();
    return openPort(index, timer);
}

bool MidiOutRtMidi::openPort(int index, const QElapsedTimer& sinceChoice)
{
    closePort();
    if (index < 0)
        return false;
    const auto tryOnce = [&] {
        const auto opened = std::make_shared<std::optional<MidiPort::Opened>>();
        const auto answer = callSender("opening", [opened, index](MidiPort& port) {
            *opened = port.open(static_cast<std::size_t>(index));
        });
        return answer && *opened && usePort(**opened);
    };
    return tryOnce() || (mayAskAgain(sinceChoice) && tryOnce());
}

/// When the sender has just been given up, as a new one may answer at once.
bool MidiOutRtMidi::mayAskAgain(const QElapsedTimer& sinceChoice) const
{
    return mSender && mSender->isGivenUp() && !sinceChoice.hasExpired(LAST_TRY_MS);
}

/// By choice: nothing is waited for any more.
void MidiOutRtMidi::closePort()
{
    const bool maybeOpen = (portOpen || mReturn.isSearching()) && mSender && !mSender->isGivenUp();
    mWatch.stop();
    mReturn.cancel();
    wantedPort.clear();
    const auto silenceIt = [this] {
        silence();
        mpeChannels.freeAll();
        portOpen = false;
    };
    if (portOpen && !onEngine(silenceIt))
        portOpen = false;
    if (maybeOpen)
        callSender("closing", [](MidiPort& port) { port.close(); });
    portName = deactivatedName();
    qDebug() << "Midi-Out port closed";
    emit portReleased();
}

/// The sender has opened it.
bool MidiOutRtMidi::usePort(const MidiPort::Opened& opened)
{
    const auto begin = [this] {
        mWriter = mSender.get();
        mpeChannels.freeAll();
        portOpen = true;
        if (mpeMode)
            mpeApplyPitchBendRange();
    };
    if (!onEngine(begin)) {
        callSender("closing", [](MidiPort& port) { port.close(); });
        return false;
    }
    mFormerSender.reset();
    portName = wantedPort = QString::fromStdString(opened.name);
    mReturn.setApi(opened.api);
    qDebug().noquote() << "Midi-Out port opened: " << portName;
    startWatch();
    return true;
}

void MidiOutRtMidi::endNotes()
{
    ThreadCheck::gui();
    const auto end = [this] {
        if (mpeMode)
            mpeAllVoicesOff();
        else
            allVoicesOff();
        mpeChannels.freeAll();
    };
    if (portOpen && !onEngine(end))
        closePort(); // nothing can tell the device
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

// ---------------------------------------------------------------- a port that goes and comes back

void MidiOutRtMidi::startWatch()
{
    mReturn.pause();
    mWatch.start();
}

void MidiOutRtMidi::watch()
{
    if (!portOpen)
        lookForPort();
    else if (!mSender || mSender.get() != mWriter)
        losePort("The MIDI system does not answer."); // its sender was dropped
    else if (const auto why = mSender->failure())
        losePort(*why);
}

void MidiOutRtMidi::losePort(const std::string& why)
{
    portOpen = false;
    const QString lost = std::exchange(portName, deactivatedName());
    logFailure("sending", why);
    if (mSender)
        mSender->post([](MidiPort& port) { port.abandon(); });
    mReturn.pause();
    emit portLost(lost);
}

void MidiOutRtMidi::lookForPort()
{
    const std::optional<MidiPort::Opened> opened = mReturn.look(wantedPort, [this] { return sender(); });
    if (opened && usePort(*opened))
        emit portBack(portName);
}

// ---------------------------------------------------------------- the channel

void MidiOutRtMidi::setChannel(int newChannel)
{
    ThreadCheck::gui();
    if (onEngine([this, newChannel] { applyChannel(newChannel); }))
        return;
    closePort(); // nothing can tell the device
    applyChannel(newChannel);
}

/// [audio]
void MidiOutRtMidi::applyChannel(int newChannel)
{
    const bool toMpe = newChannel == MPE;
    if (toMpe != mpeMode.exchange(toMpe))
        mpeChannels.freeAll();
    if (toMpe) {
        if (portOpen && channel != MPE) {
            allVoicesOff(); // still on the old channel
            mpeApplyPitchBendRange();
        }
        channel = MPE;
        return;
    }
    if (portOpen && channel == MPE) {
        mpeAllVoicesOff();
        mpeResetPitchBendRange();
    }
    if (newChannel >= 0 && newChannel <= LAST_CHANNEL)
        channel = newChannel;
}

// ---------------------------------------------------------------- MIDI Tuning Standard

void MidiOutRtMidi::setKeyFrequency(QList<int> voices, QList<float> frequencies)
{
    ThreadCheck::audio();
    if (mpeMode) {
        mpeSetVoiceFrequency(voices, frequencies);
        return;
    }
    const auto noteOf = [this](int voice, float frequency) { return mNoteRange.noteOf(voice, frequency); };
    sendTuning("MTS Midi message sent: ", mtsKeys.tune(voices, frequencies, noteOf));
}

/// Nothing for an empty message.
void MidiOutRtMidi::sendTuning(const char* what, std::span<const midi::Byte> message)
{
    if (message.empty())
        return;
    send(message);
    ORLO_AUDIO_DEBUG << what << asList(message);
}

void MidiOutRtMidi::bendVoices(QList<int> voices, QList<float> frequencies)
{
    ThreadCheck::audio();
    if (!mpeMode) {
        setKeyFrequency(voices, frequencies);
        return;
    }
    const qsizetype count = qMin(voices.size(), frequencies.size());
    for (qsizetype i = 0; i < count; ++i) {
        for (int held = 0; held < CHANNELS; ++held) {
            if (mpeChannels.holds(held, voices.at(i)))
                sendBend(held, frequencies.at(i));
        }
    }
}

void MidiOutRtMidi::voiceOn(int voice, int velocity)
{
    ThreadCheck::audio();
    if (mpeMode)
        mpeVoiceOn(voice, velocity);
    else if (channel >= 0)
        send(midi::noteOn(channel, mtsKeys.keyOf(voice), midi::velocityByte(velocity)));
}

void MidiOutRtMidi::voiceOff(int voice)
{
    ThreadCheck::audio();
    mNoteRange.noteEnds(voice);
    if (mpeMode)
        mpeVoiceOff(voice);
    else if (channel >= 0)
        send(midi::noteOff(channel, mtsKeys.keyOf(voice)));
}

void MidiOutRtMidi::allVoicesOff()
{
    if (channel >= 0)
        send(midi::allNotesOff(channel));
}

void MidiOutRtMidi::resetTuningAlteredVoices()
{
    sendTuning("Midi message sent to reset MTS to standard for previously altered voices: ", mtsKeys.reset());
}

// ---------------------------------------------------------------- MIDI Polyphonic Expression

void MidiOutRtMidi::mpeSetVoiceFrequency(QList<int> voices, QList<float> frequencies)
{
    const qsizetype count = qMin(voices.size(), frequencies.size());
    int start = 0; // where the search for a channel begins
    for (qsizetype i = 0; i < count; ++i) {
        const int found = takeChannel(voices.at(i), frequencies.at(i), start, voices);
        if (found != MpeChannels::NONE)
            sendBend(found, frequencies.at(i));
    }
}

/// The one that it holds, or a free one. MpeChannels::NONE when all are taken.
int MidiOutRtMidi::takeChannel(int voice, float frequency, int& start, const QList<int>& voices)
{
    const int found = mpeChannels.find(voice, start);
    if (found == MpeChannels::NONE)
        ORLO_AUDIO_DEBUG << "Cannot add PdPlayer voice" << voices << ". All MPE channels in use!";
    else if (mpeChannels.isFree(found))
        mpeChannels.take(found, voice, mNoteRange.noteOf(voice, frequency));
    return found;
}

void MidiOutRtMidi::sendBend(int bentChannel, float frequency)
{
    const auto at = static_cast<size_t>(bentChannel);
    const int key = mpeChannels.channelKey[at];
    const double start = mpeChannels.channelExactNote[at];
    const int range = pitchBendRangeCents;
    const double cents = mpe::bendCents(midi::noteOfFrequency(frequency), start, key, range);
    const mpe::Bend bend = mpe::bendOfCents(cents, range);
    if (std::abs(bend.factor) > 1.0 && !std::exchange(mBendWarned, true))
        AudioLog::warning("MPE Pitch-bend factor exceeds +-1.");
    send(midi::pitchBend(bentChannel, bend.msb, bend.lsb));
    ORLO_AUDIO_DEBUG << "MPE pitch-bend message sent:";
    ORLO_AUDIO_DEBUG << "channel, voice, exact note, range cents, bend cents, factor, message MSB, LSB"
                     << bentChannel << key << start << range << cents << bend.factor << bend.coarse
                     << bend.fine;
}

void MidiOutRtMidi::mpeVoiceOn(int voice, int velocity)
{
    for (int i = 0; i < CHANNELS; ++i) {
        if (!mpeChannels.holds(i, voice))
            continue;
        const int key = mpeChannels.channelKey[static_cast<size_t>(i)];
        send(midi::noteOn(i, key, midi::velocityByte(velocity)));
        ORLO_AUDIO_DEBUG << "MPE Voice On: Channel, voice: " << i << key;
    }
}

void MidiOutRtMidi::mpeVoiceOff(int voice)
{
    for (int i = 0; i < CHANNELS; ++i) {
        if (!mpeChannels.holds(i, voice))
            continue;
        const int key = mpeChannels.channelKey[static_cast<size_t>(i)];
        send(midi::noteOff(i, key));
        ORLO_AUDIO_DEBUG << "MPE Voice Off: Channel, voice: " << i << key;
        mpeChannels.free(i);
    }
}

void MidiOutRtMidi::mpeAllVoicesOff()
{
    for (int i = 0; i < CHANNELS; ++i)
        send(midi::allNotesOff(i));
    mpeResetPitchBendAll();
}

void MidiOutRtMidi::mpeResetPitchBend(int centredChannel)
{
    send(midi::pitchBendCentre(centredChannel));
    ORLO_AUDIO_DEBUG << "MPE Pitch-bend reset for channel " << centredChannel;
}

void MidiOutRtMidi::mpeResetPitchBendAll()
{
    for (int i = 0; i < CHANNELS; ++i)
        mpeResetPitchBend(i);
}

void MidiOutRtMidi::mpeSetPitchBendRange(int cents)
{
    ThreadCheck::gui();
    const auto apply = [this, cents] {
        pitchBendRangeCents = cents;
        mBendWarned = false;
        if (portOpen && mpeMode)
            mpeApplyPitchBendRange();
    };
    if (onEngine(apply))
        return;
    closePort(); // nothing can tell the device
    pitchBendRangeCents = cents;
}

void MidiOutRtMidi::mpeApplyPitchBendRange()
{
    mpeApplyPitchBendRange(pitchBendRangeCents);
}

void MidiOutRtMidi::mpeApplyPitchBendRange(int cents)
{
    const midi::BendRange range = midi::bendRangeMessages(cents);
    for (size_t i = 0; i < range.messages.size(); ++i) {
        const midi::ShortMessage& message = range.messages[i];
        send(message);
        ORLO_AUDIO_DEBUG.noquote() << QStringLiteral("Midi RPN message %1: ").arg(i + 1)
                                   << QList<int>(message.begin(), message.end());
    }
    ORLO_AUDIO_DEBUG << "Midi RPN messages sent: Pitch bend range set to: semitones, cents "
                     << range.semitones << range.cents;
}

void MidiOutRtMidi::mpeResetPitchBendRange()
{
    mpeApplyPitchBendRange(DEFAULT_BEND_RANGE_CENTS);
}

void MidiOutRtMidi::mpeResetChannelTuning()
{
    for (int i = 0; i < CHANNELS; ++i)
        mpeSetChannelTuning(i, 0.0F);
}
