#include "external/MidiInputs.h"

#include "app/LogText.h"
#include "external/JackLook.h"
#include "external/MidiInRing.h"
#include "external/MidiInRtMidi.h"
#include "sound/JackEpoch.h"
#include "sound/ThreadCheck.h"

#include <QDebug>

#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr auto LOOK_INTERVAL = 500ms; // a port that went and came back meanwhile may be missed
constexpr auto LISTED_FOR = 5s;       // after available()
constexpr auto WITHOUT_JACK = 2s;
constexpr auto WITHOUT_API = 600s; // ALSA without its sequencer, of which it complains aloud each time
constexpr auto END_LIMIT = 2s;
constexpr auto WATCH_INTERVAL = 100ms;
constexpr int CONNECTION_TRIES = 20;
constexpr auto CONNECTION_PAUSE = 10ms;
constexpr const char* OWN_OUTPUT = "RtMidi Output Client";

/// A port of one MIDI system.
struct Port
{
    RtMidi::Api api;
    std::string name;
};

} // namespace

struct MidiInputs::Core
{
    struct Slot
    {
        MidiInRing ring;
        // The thread's.
        std::unique_ptr<MidiInRtMidi> input;
        Port port{RtMidi::UNSPECIFIED, {}}; // to which it is open
        std::uint32_t badBefore = 0;        // of the inputs that were open before
        // Guarded by the mutex.
        std::string wanted;
        bool isTaken = false; // by an open input, be it of the former name
        bool isOpen = false;
        std::uint32_t bad = 0;
        // [gui]
        bool seenOpen = false;
        bool wasOpen = false;
        bool toldTrouble = false;
        std::uint32_t badAtFirst = 0;
        std::uint32_t lostAtFirst = 0;
    };

    bool isIdle() const;
    bool isSeeking() const;
    void run();
    void work();
    void leave(bool ends);
    void checkServer();
    void close(Slot& slot);
    void abandon(Slot& slot);
    std::vector<std::string> namesOf(RtMidi::Api api);
    std::vector<Port> listPorts();
    bool isThere(const Slot& slot, const std::vector<Port>& ports) const;
    void open(std::size_t number, const std::string& wanted, const std::vector<Port>& ports);
    bool becomesConnected(const Slot& slot) const;
    void fail(const std::string& why);
    void publish(const std::vector<Port>& ports);

    // The thread's.
    JackLook jack;
    unsigned jackEpoch = 0; // in which JACK's clients here were made
    std::map<RtMidi::Api, std::unique_ptr<RtMidiIn>> listers;
    std::map<RtMidi::Api, Clock::time_point> askedAgain;

    std::array<Slot, SLOTS> places;
    mutable std::mutex mutex; // the thread and [gui], never [audio] or a callback
    std::condition_variable wake;
    std::vector<std::string> available;
    std::vector<std::string> failures; // for the log
    Clock::time_point listedUntil{};
    bool changed = false; // what is wanted
    bool ending = false;
    bool exited = true;
};

// ---------------------------------------------------------------- the thread

/// The mutex is held.
bool MidiInputs::Core::isIdle() const
{
    return !changed && Clock::now() > listedUntil
           && std::ranges::all_of(places, [](const Slot& slot) { return slot.wanted.empty(); });
}

/// Something is missing, or somebody wants to know what there is.
bool MidiInputs::Core::isSeeking() const
{
    const std::lock_guard guard(mutex);
    return Clock::now() <= listedUntil || std::ranges::any_of(places, [](const Slot& slot) {
               return !slot.wanted.empty() && !slot.isOpen;
           });
}

void MidiInputs::Core::run()
{
    std::unique_lock lock(mutex);
    for (bool isLast = false; !isLast;) {
        while (!ending && !isIdle()) {
            changed = false;
            lock.unlock();
            work();
            lock.lock();
            wake.wait_for(lock, LOOK_INTERVAL, [this] { return ending || changed; });
        }
        const bool ends = ending;
        lock.unlock(); // a frozen server must not keep the window waiting for the mutex
        leave(ends);
        lock.lock();
        isLast = ends || (!ending && isIdle()); // more can have been wanted meanwhile
    }
    exited = true;
    wake.notify_all();
}

/// Without an end nothing is wanted, so that whatever was open is closed already.
void MidiInputs::Core::leave(bool ends)
{
    if (ends) {
        checkServer();
        for (Slot& slot : places)
            close(slot);
    }
    if (jack.isOpen() && jackEpoch == JackEpoch::current())
        jack.close();
    jack.abandon();
    listers.clear();
}

/// Opens what is wanted and there, and closes the rest.
void MidiInputs::Core::work()
{
    checkServer();
    const std::vector<Port> ports = listPorts();
    for (std::size_t i = 0; i < places.size(); ++i) {
        Slot& slot = places[i];
        std::string wanted;
        {
            const std::lock_guard guard(mutex);
            wanted = slot.wanted;
        }
        if (slot.input && (slot.port.name != wanted || !isThere(slot, ports) || slot.input->isStuck()))
            close(slot);
        if (!slot.input && !wanted.empty())
            open(i, wanted, ports);
    }
    publish(ports);
}

/// JACK's library deletes the clients of a dead server under their owners as soon as a new client is made,
/// whoever makes it (JackEpoch).
void MidiInputs::Core::checkServer()
{
    if (!jack.isOpen() || (jackEpoch == JackEpoch::current() && jack.isServerAlive()))
        return;
    JackEpoch::end(jackEpoch);
    jack.abandon();
    for (Slot& slot : places) {
        if (slot.input && slot.port.api == RtMidi::UNIX_JACK)
            abandon(slot);
    }
}

void MidiInputs::Core::close(Slot& slot)
{
    if (!slot.input)
        return;
    try {
        slot.input->close();
    } catch (const RtMidiError& error) {
        fail(error.getMessage());
    }
    slot.badBefore += slot.input->badBytes();
    slot.input.reset();
    slot.ring.markGone();
}

void MidiInputs::Core::abandon(Slot& slot)
{
    slot.badBefore += slot.input->badBytes();
    slot.input->abandon();
    // Its callback may still be under way, with no end that could be waited for.
    [[maybe_unused]] const MidiInRtMidi* left = slot.input.release();
    slot.ring.markGone();
}

std::vector<std::string> MidiInputs::Core::namesOf(RtMidi::Api api)
{
    if (api == RtMidi::UNIX_JACK) {
        const unsigned epoch = JackEpoch::current();
        if (!jack.isOpen() && isSeeking() && jack.open()) // its library complains aloud without a server
            jackEpoch = epoch;
        if (jack.isOpen())
            return jack.midiSources();
        askedAgain[api] = Clock::now() + WITHOUT_JACK;
        return {};
    }
    std::vector<std::string> names;
    std::unique_ptr<RtMidiIn>& lister = listers[api];
    try {
        if (!lister)
            lister = std::make_unique<RtMidiIn>(api, "RtMidi Input Client");
        const unsigned int count = lister->getPortCount();
        for (unsigned int i = 0; i < count; ++i)
            names.push_back(lister->getPortName(i));
    } catch (const RtMidiError&) {
        lister.reset();
        askedAgain[api] = Clock::now() + WITHOUT_API;
    }
    return names;
}

/// Of all MIDI systems that come up, each name once, without the program's own output.
std::vector<Port> MidiInputs::Core::listPorts()
{
    std::vector<RtMidi::Api> apis;
    RtMidi::getCompiledApi(apis);
    std::vector<Port> ports;
    for (const RtMidi::Api api : apis) {
        if (api == RtMidi::RTMIDI_DUMMY || Clock::now() < askedAgain[api])
            continue;
        for (const std::string& name : namesOf(api)) {
            const bool isOwn = name.find(OWN_OUTPUT) != std::string::npos;
            if (!isOwn && std::ranges::find(ports, name, &Port::name) == ports.end())
                ports.push_back({api, name});
        }
    }
    return ports;
}

/// A port of JACK's that went and came back under its name is not connected any more.
bool MidiInputs::Core::isThere(const Slot& slot, const std::vector<Port>& ports) const
{
    const bool isListed = std::ranges::any_of(ports, [&slot](const Port& port) {
        return port.api == slot.port.api && port.name == slot.port.name;
    });
    return isListed
           && (slot.port.api != RtMidi::UNIX_JACK
               || jack.isConnected(slot.port.name, slot.input->receiver()));
}

void MidiInputs::Core::open(std::size_t number, const std::string& wanted, const std::vector<Port>& ports)
{
    const auto port = std::ranges::find(ports, wanted, &Port::name);
    if (port == ports.end())
        return;
    Slot& slot = places[number];
    slot.input = std::make_unique<MidiInRtMidi>();
    slot.port = *port;
    try {
        if (slot.input->open(port->api, port->name, &slot.ring, static_cast<std::uint8_t>(number))
            && becomesConnected(slot))
            return;
    } catch (const RtMidiError& error) {
        fail(error.getMessage());
    }
    close(slot);
}

/// RtMidi does not tell when JACK refuses, and JACK connects with its next block.
bool MidiInputs::Core::becomesConnected(const Slot& slot) const
{
    if (slot.port.api != RtMidi::UNIX_JACK)
        return true;
    for (int i = 0; i < CONNECTION_TRIES; ++i) {
        if (jack.isConnected(slot.port.name, slot.input->receiver()))
            return true;
        std::this_thread::sleep_for(CONNECTION_PAUSE);
    }
    return false;
}

void MidiInputs::Core::fail(const std::string& why)
{
    const std::lock_guard guard(mutex);
    failures.push_back(why);
}

void MidiInputs::Core::publish(const std::vector<Port>& ports)
{
    const std::lock_guard guard(mutex);
    available.clear();
    for (const Port& port : ports)
        available.push_back(port.name);
    for (Slot& slot : places) {
        slot.isTaken = slot.input != nullptr;
        slot.isOpen = slot.isTaken && slot.port.name == slot.wanted;
        slot.bad = slot.badBefore + (slot.input ? slot.input->badBytes() : 0);
    }
}

// ---------------------------------------------------------------- the window's side

MidiInputs::MidiInputs(QObject* parent)
    : QObject(parent)
    , mCore(std::make_shared<Core>())
    , mFailures(QStringLiteral("failures of MIDI inputs were not logged."))
{
    mWatch.setInterval(WATCH_INTERVAL);
    connect(&mWatch, &QTimer::timeout, this, &MidiInputs::look);
}

MidiInputs::~MidiInputs()
{
    if (!mThread.joinable())
        return;
    std::unique_lock lock(mCore->mutex);
    mCore->ending = true;
    mCore->wake.notify_all();
    const bool ended = mCore->wake.wait_for(lock, END_LIMIT, [this] { return mCore->exited; });
    lock.unlock();
    if (ended)
        mThread.join();
    else
        mThread.detach(); // it keeps all that it uses
}

/// The mutex is not held.
void MidiInputs::ensureThread()
{
    {
        const std::lock_guard lock(mCore->mutex);
        mCore->wake.notify_all();
        if (!mCore->exited)
            return;
        mCore->exited = false;
    }
    if (mThread.joinable())
        mThread.join();
    mThread = std::thread([core = mCore] { core->run(); });
    mWatch.start();
}

QStringList MidiInputs::available()
{
    ThreadCheck::gui();
    {
        const std::lock_guard lock(mCore->mutex);
        mCore->listedUntil = Clock::now() + LISTED_FOR;
    }
    ensureThread();
    return mAvailable;
}

void MidiInputs::setWanted(const QStringList& names)
{
    ThreadCheck::gui();
    {
        const std::lock_guard lock(mCore->mutex);
        for (Core::Slot& slot : mCore->places) {
            if (!names.contains(QString::fromStdString(slot.wanted)))
                slot.wanted.clear();
        }
        for (const QString& name : names) {
            const bool hasSlot = std::ranges::find(mCore->places, name.toStdString(), &Core::Slot::wanted)
                                 != mCore->places.end();
            if (!name.isEmpty() && !hasSlot && !assignSlot(name.toStdString()))
                qWarning().noquote() << "MIDI input: more than" << SLOTS << "inputs;" << logText(name)
                                     << "is left out.";
        }
        mCore->changed = !mCore->exited || !mCore->isIdle();
        if (!mCore->changed)
            return;
    }
    ensureThread();
}

/// The mutex is held. False when each slot has a name.
bool MidiInputs::assignSlot(const std::string& name)
{
    auto& places = mCore->places;
    const auto isFree = [](const Core::Slot& slot) { return slot.wanted.empty(); };
    auto free =
        std::ranges::find_if(places, [&](const Core::Slot& slot) { return isFree(slot) && !slot.isTaken; });
    if (free == places.end())
        free = std::ranges::find_if(places, isFree);
    if (free == places.end())
        return false;
    free->wanted = name;
    free->isOpen = free->seenOpen = free->wasOpen = free->toldTrouble = false;
    free->badAtFirst = free->bad;
    free->lostAtFirst = free->ring.lostInAll();
    return true;
}

QStringList MidiInputs::wanted() const
{
    const std::lock_guard lock(mCore->mutex);
    QStringList names;
    for (const Core::Slot& slot : mCore->places) {
        if (!slot.wanted.empty())
            names.append(QString::fromStdString(slot.wanted));
    }
    return names;
}

QStringList MidiInputs::open() const
{
    return mOpen;
}

int MidiInputs::slotOf(const QString& name) const
{
    const std::lock_guard lock(mCore->mutex);
    const auto found = std::ranges::find(mCore->places, name.toStdString(), &Core::Slot::wanted);
    return found == mCore->places.end() || name.isEmpty() ? -1
                                                          : static_cast<int>(found - mCore->places.begin());
}

MidiInRing& MidiInputs::ring(int slot)
{
    return mCore->places.at(static_cast<std::size_t>(slot)).ring;
}

/// What the thread has found out since the last time.
void MidiInputs::look()
{
    QStringList available;
    QStringList open;
    QStringList lostNames;
    QStringList backNames;
    std::vector<std::string> failures;
    bool exited = false;
    {
        const std::lock_guard lock(mCore->mutex);
        for (const std::string& name : mCore->available)
            available.append(QString::fromStdString(name));
        for (Core::Slot& slot : mCore->places) {
            const QString name = QString::fromStdString(slot.wanted);
            const bool isOpen = slot.isOpen && !name.isEmpty();
            if (isOpen)
                open.append(name);
            if (isOpen != std::exchange(slot.seenOpen, isOpen) && !name.isEmpty()) {
                if (!isOpen)
                    lostNames.append(name);
                else if (slot.wasOpen)
                    backNames.append(name);
                slot.wasOpen = true;
            }
        }
        failures = std::exchange(mCore->failures, {});
        exited = mCore->exited;
    }
    for (const std::string& why : failures)
        mFailures.write(QStringLiteral("MIDI input: ") + logText(QString::fromStdString(why)));
    for (int slot = 0; slot < SLOTS; ++slot)
        lookAtSlot(slot);
    if (exited)
        mWatch.stop();
    const bool differs = available != mAvailable || open != mOpen;
    mAvailable = available;
    mOpen = open;
    for (const QString& name : lostNames)
        emit lost(name);
    for (const QString& name : backNames)
        emit back(name);
    if (differs)
        emit changed();
}

/// Says once what is wrong with an input.
void MidiInputs::lookAtSlot(int slot)
{
    Core::Slot& at = mCore->places[static_cast<std::size_t>(slot)];
    QString text;
    {
        const std::lock_guard lock(mCore->mutex);
        const bool isBad = at.bad != at.badAtFirst;
        if (at.wanted.empty() || at.toldTrouble || (!isBad && at.ring.lostInAll() == at.lostAtFirst))
            return;
        at.toldTrouble = true;
        const QString name = QString::fromStdString(at.wanted);
        text = isBad ? QStringLiteral("%1 sends bytes that are no MIDI message; they are left out.").arg(name)
                     : QStringLiteral("%1 sends more than can be played; its keys are let go.").arg(name);
    }
    qWarning().noquote() << "MIDI input:" << logText(text);
    emit troubled(text);
}
