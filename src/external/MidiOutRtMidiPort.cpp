// The port of the MIDI output: listing and choosing, losing and finding it again, and the sender that is
// asked for it.

#include "external/MidiOutRtMidi.h"

#include "app/LogText.h"
#include "sound/ThreadCheck.h"

#include <QDebug>

#include <optional>
#include <utility>

namespace {

// A second try must start within this time of the choice, so that the player waits for two calls at
// most.
constexpr qint64 LAST_TRY_MS = 3000;
// With so many given up, MIDI stays off until one of them comes back.
constexpr int MAX_LOST_THREADS = 3;

/// The texts that the options have for no port.
bool isNoPort(const QString& name)
{
    return name.isEmpty() || name == MidiOutput::deactivatedName()
           || name == QLatin1StringView("deactivated");
}

void logFailure(const char* what, const std::string& why)
{
    qCritical().noquote() << "MIDI output:" << what << "failed:" << logText(QString::fromStdString(why));
}

} // namespace

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

// ---------------------------------------------------------------- choosing

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

/// Closes the port for good: it is not looked for afterwards.
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
        if (mpeZone)
            announceZone();
        else if (mpeMode)
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
