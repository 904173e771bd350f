#include "external/MidiInputs.h"

#include "app/LogText.h"
#include "external/JackServer.h"
#include "external/MidiInRing.h"
#include "external/MidiInRtMidi.h"
#include "sound/JackEpoch.h"
#include "sound/ThreadCheck.h"

#include <QDebug>

#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr auto LOOK_INTERVAL = 2s;
constexpr auto SERVER_WATCH = 500ms;
constexpr auto LISTED_FOR = 5s; // after available()
constexpr auto END_LIMIT = 2s;
constexpr auto WATCH_INTERVAL = 100ms;

/// The ports of one MIDI system.
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
        std::string openName;
        RtMidi::Api api = RtMidi::UNSPECIFIED;
        std::uint32_t badBefore = 0; // of the inputs that were open before
        // Guarded by the mutex.
        std::string wanted;
        bool isOpen = false;
        bool wasOpen = false;
        std::uint32_t bad = 0;
        // [gui]
        bool seenOpen = false;
        bool toldTrouble = false;
    };

    void run();
    void look();
    void closeUnwanted();
    void checkServer();
    void leaveJack();
    std::vector<Port> listPorts();
    void close(Slot& slot, bool abandon);
    void open(Slot& slot, std::uint8_t number, const std::vector<Port>& ports);
    void publish();

    std::array<Slot, SLOTS> places;
    unsigned jackEpoch = 0; // in which JACK's clients here were made
    bool hasJack = false;

    mutable std::mutex mutex; // the thread and [gui], never [audio] or a callback
    std::condition_variable wake;
    std::vector<std::string> available;
    std::vector<std::string> failures; // for the log
    Clock::time_point listedUntil{};
    bool changed = true; // what is wanted
    bool ending = false;
    bool exited = true;
};

// ---------------------------------------------------------------- the thread

void MidiInputs::Core::run()
{
    auto nextLook = Clock::now();
    std::unique_lock lock(mutex);
    while (!ending) {
        const bool wantsAny =
            std::ranges::any_of(places, [](const Slot& slot) { return !slot.wanted.empty(); });
        if (!wantsAny && !changed && Clock::now() > listedUntil)
            break;
        const bool looks = std::exchange(changed, false) || Clock::now() >= nextLook;
        lock.unlock();
        try {
            checkServer();
            closeUnwanted();
            if (looks) {
                look();
                nextLook = Clock::now() + LOOK_INTERVAL;
            }
        } catch (const RtMidiError& error) {
            const std::lock_guard guard(mutex);
            failures.push_back(error.getMessage());
        }
        publish();
        lock.lock();
        if (!ending && !changed)
            wake.wait_for(lock, SERVER_WATCH);
    }
    lock.unlock();
    checkServer();
    for (Slot& slot : places)
        close(slot, false);
    publish();
    lock.lock();
    exited = true;
    wake.notify_all();
}

/// JACK's library deletes the clients of a dead server under their owners as soon as a new client is made,
/// whoever makes it (JackEpoch).
void MidiInputs::Core::checkServer()
{
    if (!hasJack)
        return;
    if (jackEpoch == JackEpoch::current() && JackServer::isThere())
        return;
    JackEpoch::end(jackEpoch);
    leaveJack();
}

void MidiInputs::Core::leaveJack()
{
    for (Slot& slot : places) {
        if (slot.input && slot.api == RtMidi::UNIX_JACK)
            close(slot, true);
    }
    hasJack = false;
}

void MidiInputs::Core::close(Slot& slot, bool abandon)
{
    if (!slot.input)
        return;
    if (abandon) {
        slot.input->abandon();
        // Its callback may still be under way, with no end that could be waited for.
        [[maybe_unused]] const MidiInRtMidi* left = slot.input.release();
    } else {
        try {
            slot.input->close();
        } catch (const RtMidiError& error) {
            const std::lock_guard guard(mutex);
            failures.push_back(error.getMessage());
        }
        slot.badBefore += slot.input->badBytes();
        slot.input.reset();
    }
    slot.openName.clear();
    slot.ring.markGone();
}

void MidiInputs::Core::closeUnwanted()
{
    for (Slot& slot : places) {
        std::string wanted;
        {
            const std::lock_guard guard(mutex);
            wanted = slot.wanted;
        }
        if (slot.input && slot.openName != wanted)
            close(slot, false);
    }
}

/// Of all MIDI systems that come up, each name once.
std::vector<Port> MidiInputs::Core::listPorts()
{
    std::vector<Port> ports;
    std::vector<RtMidi::Api> apis;
    RtMidi::getCompiledApi(apis);
    for (const RtMidi::Api api : apis) {
        // A client without a server leaks 16 KiB each time.
        if (api == RtMidi::RTMIDI_DUMMY || (api == RtMidi::UNIX_JACK && !JackServer::isThere()))
            continue;
        try {
            RtMidiIn lister(api, "RtMidi Input Client");
            const unsigned int count = lister.getPortCount();
            for (unsigned int i = 0; i < count; ++i) {
                std::string name = lister.getPortName(i);
                if (name.find("RtMidi Output Client") == std::string::npos
                    && std::ranges::none_of(ports, [&](const Port& port) { return port.name == name; }))
                    ports.push_back({api, std::move(name)});
            }
        } catch (const RtMidiError&) {
            continue; // ALSA without its sequencer: the others remain
        }
    }
    return ports;
}

void MidiInputs::Core::look()
{
    const std::vector<Port> ports = listPorts();
    for (std::size_t i = 0; i < places.size(); ++i) {
        Slot& slot = places[i];
        const auto isThere = [&slot](const Port& port) {
            return port.api == slot.api && port.name == slot.openName;
        };
        if (slot.input && std::ranges::none_of(ports, isThere))
            close(slot, false);
        if (!slot.input)
            open(slot, static_cast<std::uint8_t>(i), ports);
    }
    const std::lock_guard guard(mutex);
    available.clear();
    for (const Port& port : ports)
        available.push_back(port.name);
}

void MidiInputs::Core::open(Slot& slot, std::uint8_t number, const std::vector<Port>& ports)
{
    std::string wanted;
    {
        const std::lock_guard guard(mutex);
        wanted = slot.wanted;
    }
    const auto port =
        std::ranges::find_if(ports, [&](const Port& candidate) { return candidate.name == wanted; });
    if (wanted.empty() || port == ports.end())
        return;
    if (port->api == RtMidi::UNIX_JACK && !std::exchange(hasJack, true))
        jackEpoch = JackEpoch::current();
    auto input = std::make_unique<MidiInRtMidi>();
    if (!input->open(port->api, port->name, &slot.ring, number))
        return;
    slot.input = std::move(input);
    slot.openName = port->name;
    slot.api = port->api;
}

void MidiInputs::Core::publish()
{
    const std::lock_guard guard(mutex);
    for (Slot& slot : places) {
        slot.isOpen = slot.input != nullptr;
        slot.bad = slot.badBefore + (slot.input ? slot.input->badBytes() : 0);
    }
}

// ---------------------------------------------------------------- the window's side

MidiInputs::MidiInputs(QObject* parent)
    : QObject(parent)
    , mCore(std::make_shared<Core>())
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
            slot.toldTrouble = false;
            if (!names.contains(QString::fromStdString(slot.wanted)))
                slot.wanted.clear();
        }
        for (const QString& name : names) {
            const std::string wanted = name.toStdString();
            const auto has = [&wanted](const Core::Slot& slot) { return slot.wanted == wanted; };
            if (wanted.empty() || std::ranges::any_of(mCore->places, has))
                continue;
            const auto free = std::ranges::find_if(
                mCore->places, [](const Core::Slot& slot) { return slot.wanted.empty() && !slot.isOpen; });
            if (free == mCore->places.end()) {
                qWarning().noquote() << "MIDI input: more than" << SLOTS << "inputs;" << logText(name)
                                     << "is left out.";
                continue;
            }
            free->wanted = wanted;
            free->seenOpen = free->wasOpen = false;
        }
        mCore->changed = true;
    }
    ensureThread();
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
        qWarning().noquote() << "MIDI input:" << logText(QString::fromStdString(why));
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
        if (at.toldTrouble || (at.bad == 0 && at.ring.lostInAll() == 0))
            return;
        at.toldTrouble = true;
        const QString name = QString::fromStdString(at.wanted);
        text = at.bad != 0
                   ? QStringLiteral("%1 sends bytes that are no MIDI message; they are left out.").arg(name)
                   : QStringLiteral("%1 sends more than can be played; its keys are let go.").arg(name);
    }
    qWarning().noquote() << "MIDI input:" << logText(text);
    emit troubled(text);
}
