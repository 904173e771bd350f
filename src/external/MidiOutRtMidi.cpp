#include "external/MidiOutRtMidi.h"

#include "app/LogFilter.h"
#include "sound/AudioLog.h"

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <utility>

namespace {

constexpr const char* CLIENT_NAME = "RtMidi Output Client";
constexpr int LAST_CHANNEL = MidiOutput::CHANNELS - 1;
constexpr int LAST_KEY = 127;
constexpr size_t MOST_KEYS = 256; // of one tuning change
constexpr std::chrono::milliseconds WATCH_INTERVAL{100};
// Of a choice of the player's, who waits for two calls at the most.
constexpr qint64 LAST_TRY_MS = 3000;
constexpr qint64 SEARCH_INTERVAL_MS = 2000;
// A server that has died may yet set a thread free; one that spins never comes back.
constexpr qint64 SEARCH_BESIDE_LOST_MS = 10000;
// Given up by then, MIDI stays off until one of them comes back.
constexpr int MOST_LOST_THREADS = 3;

QList<int> asList(const midi::Bytes& bytes)
{
    return QList<int>(bytes.begin(), bytes.end());
}

/// What stands for no port among the options.
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
    mTuningChange.reserve(midi::tuningChangeSize(MOST_KEYS));
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
    mWatch.stop();
    mSearch.reset();
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
    if (!mSender && MidiSender::lostThreads() < MOST_LOST_THREADS)
        mSender = std::make_unique<MidiSender>(outputFactory());
    return mSender.get();
}

void MidiOutRtMidi::dropSender() const
{
    mSearch.reset();
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
    if (portOpen && mWriter && midi::isWellFormed(message))
        mWriter->write(message);
}

// ---------------------------------------------------------------- ports

QStringList MidiOutRtMidi::availablePorts() const
{
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
    const bool maybeOpen = (portOpen || mSearch) && mSender && !mSender->isGivenUp();
    mWatch.stop();
    mSearch.reset();
    wantedPort.clear();
    mWantedApi = RtMidi::UNSPECIFIED;
    const auto silenceIt = [this] {
        silence();
        forgetChannels();
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
        forgetChannels();
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
    mWantedApi = opened.api;
    qDebug().noquote() << "Midi-Out port opened: " << portName;
    startWatch();
    return true;
}

void MidiOutRtMidi::endNotes()
{
    const auto end = [this] {
        if (mpeMode)
            mpeAllVoicesOff();
        else
            allVoicesOff();
        forgetChannels();
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
    mSinceSearch.start();
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
    mSinceSearch.start();
    emit portLost(lost);
}

/// Never waits: a frozen server must not freeze the window.
void MidiOutRtMidi::lookForPort()
{
    if (mSearch && mSearch->answer->done) {
        const auto [answer, opened] = *std::exchange(mSearch, std::nullopt);
        if (!answer->error && *opened && usePort(**opened))
            emit portBack(portName);
    } else if (mSearch) {
        if (mSinceSearch.hasExpired(MidiSender::LONGEST_CALL.count()))
            mSender->giveUp();
        if (mSender->isGivenUp())
            mSearch.reset();
    } else if (mSinceSearch.hasExpired(MidiSender::lostThreads() > 0 ? SEARCH_BESIDE_LOST_MS
                                                                     : SEARCH_INTERVAL_MS)
               && sender()) {
        const auto opened = std::make_shared<std::optional<MidiPort::Opened>>();
        const auto open = [opened, wanted = wantedPort.toStdString(), api = mWantedApi](MidiPort& port) {
            *opened = port.open(wanted, api);
        };
        mSearch = Search{sender()->post(open), opened};
        mSinceSearch.start();
    }
}

// ---------------------------------------------------------------- the channel

void MidiOutRtMidi::setChannel(int newChannel)
{
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
        forgetChannels();
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

/// The note of a frequency, moved into the range with a warning.
double MidiOutRtMidi::noteInRange(int voice, float frequency)
{
    const double note = midi::noteOfFrequency(frequency);
    const bool isInRange = note >= 0.0 && note < midi::MAX_NOTE;
    const auto at = static_cast<size_t>(voice);
    const bool warnedBefore = at < mWarned.size() && std::exchange(mWarned[at], !isInRange);
    if (isInRange)
        return note;
    const bool isBelow = note < 0.0;
    if (!warnedBefore)
        AudioLog::warning(isBelow ? "MTS: Freq sent to MIDI below MIDI range: %1"
                                  : "MTS: Freq sent to MIDI above MIDI range: %1",
                          {static_cast<double>(frequency)});
    return isBelow ? 0.0 : midi::TOP_NOTE;
}

void MidiOutRtMidi::setKeyFrequency(QList<int> voices, QList<float> frequencies)
{
    if (mpeMode) {
        mpeSetVoiceFrequency(voices, frequencies);
        return;
    }
    const qsizetype given = qMin(voices.size(), frequencies.size());
    // A key that is none would break the whole message.
    const auto hasKey = [this](int voice) { return firstKey + voice <= LAST_KEY; };
    const auto count = std::count_if(voices.cbegin(), voices.cbegin() + given, hasKey);
    if (count == 0)
        return;
    midi::beginTuningChange(mTuningChange, count);
    for (qsizetype i = 0; i < given; ++i) {
        if (!hasKey(voices.at(i)))
            continue;
        const int key = firstKey + voices.at(i);
        const double note = noteInRange(voices.at(i), frequencies.at(i));
        midi::addKeyTuning(mTuningChange, key, midi::tuningOfNote(note));
        if (!tunedKeys.contains(key))
            tunedKeys.append(key);
    }
    midi::endTuningChange(mTuningChange);
    send(mTuningChange);
    ORLO_AUDIO_DEBUG << "MTS Midi message sent: " << asList(mTuningChange);
}

void MidiOutRtMidi::bendVoices(QList<int> voices, QList<float> frequencies)
{
    if (!mpeMode) {
        setKeyFrequency(voices, frequencies);
        return;
    }
    const qsizetype count = qMin(voices.size(), frequencies.size());
    for (qsizetype i = 0; i < count; ++i) {
        for (int held = 0; held < CHANNELS; ++held) {
            if (channelActive[static_cast<size_t>(held)]
                && channelVoice[static_cast<size_t>(held)] == voices.at(i))
                sendBend(held, frequencies.at(i));
        }
    }
}

void MidiOutRtMidi::voiceOn(int voice, int velocity)
{
    if (mpeMode)
        mpeVoiceOn(voice, velocity);
    else if (channel >= 0)
        send(midi::noteOn(channel, firstKey + voice, midi::velocityByte(velocity)));
}

void MidiOutRtMidi::voiceOff(int voice)
{
    if (static_cast<size_t>(voice) < mWarned.size())
        mWarned[static_cast<size_t>(voice)] = false;
    if (mpeMode)
        mpeVoiceOff(voice);
    else if (channel >= 0)
        send(midi::noteOff(channel, firstKey + voice));
}

void MidiOutRtMidi::allVoicesOff()
{
    if (channel >= 0)
        send(midi::allNotesOff(channel));
}

void MidiOutRtMidi::resetTuningAlteredVoices()
{
    if (tunedKeys.isEmpty())
        return;
    midi::beginTuningChange(mTuningChange, tunedKeys.size());
    for (qsizetype i = 0; i < tunedKeys.size(); ++i) {
        const int key = tunedKeys.at(i);
        midi::addKeyTuning(mTuningChange, key, {static_cast<midi::Byte>(key), 0, 0});
    }
    midi::endTuningChange(mTuningChange);
    send(mTuningChange);
    ORLO_AUDIO_DEBUG << "Midi message sent to reset MTS to standard for previously altered voices: "
                     << asList(mTuningChange);
    tunedKeys.clear();
}
