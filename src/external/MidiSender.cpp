#include "external/MidiSender.h"

#include "external/MtsTuning.h"
#include "sound/ByteRing.h"
#include "sound/ThreadCheck.h"

#include <RtMidi.h>

#include <QtGlobal>

#ifdef Q_OS_LINUX
#include <pthread.h>
#include <sched.h>
#endif

#include <algorithm>
#include <array>
#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <utility>

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr std::size_t RING_BYTES = 65536; // some 9,000 notes
constexpr milliseconds POLL{1};
constexpr milliseconds WATCH{1000};

std::atomic<int> theLostThreads{0};

std::int64_t nowMs()
{
    return std::chrono::duration_cast<milliseconds>(Clock::now().time_since_epoch()).count();
}

} // namespace

struct MidiSender::Core
{
    struct Request
    {
        Work work;
        std::shared_ptr<Answer> answer;
    };

    explicit Core(MidiPort::Factory factory)
        : port(std::move(factory))
    {
        ring.init(RING_BYTES);
    }

    void run();
    void sendWritten();
    void drain();
    void perform(const Request& request);
    void watchPort();
    template <class Call>
    void callPort(Call&& call);
    void fail(const std::string& why);

    ByteRing ring;
    MidiPort port; // the thread's
    Clock::time_point nextWatch;
    std::array<midi::Byte, mts::tuningChangeSize(256)> message;

    std::atomic<std::int64_t> sendingSince{0}; // ms; 0 while nothing is being sent
    std::atomic<unsigned> sends{0};            // that came back
    std::atomic<bool> overflowed{false};
    std::atomic<bool> failed{false};
    std::atomic<bool> abandoned{false};
    mutable std::mutex mutex; // the thread and [gui]; guards the following
    std::condition_variable wake;
    std::condition_variable answered;
    std::deque<Request> requests;
    std::string why;
    bool ending = false;
    bool exited = false;
};

// ---------------------------------------------------------------- the thread

void MidiSender::Core::run()
{
    const ThreadCheck::RoleOfThisThread role(ThreadCheck::Role::Sender);
    std::unique_lock lock(mutex);
    while (!abandoned) {
        if (!requests.empty()) {
            const Request request = std::move(requests.front());
            requests.pop_front();
            lock.unlock();
            sendWritten();
            if (!abandoned)
                perform(request);
            lock.lock();
            request.answer->done = true;
            answered.notify_all();
            continue;
        }
        if (ending)
            break;
        if (!port.isOpen()) {
            wake.wait(lock);
            continue;
        }
        lock.unlock();
        sendWritten();
        watchPort();
        lock.lock();
        if (requests.empty() && !abandoned && !ending)
            wake.wait_for(lock, POLL);
    }
    lock.unlock();
    port.abandon(); // here, since the port belongs to this thread
    lock.lock();
    if (abandoned)
        --theLostThreads;
    exited = true;
    answered.notify_all();
}

void MidiSender::Core::sendWritten()
{
    std::uint32_t size = 0;
    while (!abandoned && ring.read(&size, sizeof(size))) {
        if (size > message.size() || !ring.read(message.data(), size)) {
            fail("The messages are broken.");
            drain();
            return;
        }
        if (failed || !port.isOpen())
            continue;
        callPort([&] { port.send(std::span(message).first(size)); });
    }
}

/// The writer adds whole messages, so what comes after all that is there begins with a whole one.
void MidiSender::Core::drain()
{
    while (const std::size_t bytes = std::min(ring.readable(), message.size()))
        ring.read(message.data(), bytes);
}

void MidiSender::Core::watchPort()
{
    if (failed || Clock::now() < nextWatch)
        return;
    callPort([&] {
        if (!port.isStillThere())
            fail("The port is gone.");
    });
    nextWatch = Clock::now() + WATCH;
}

template <class Call>
void MidiSender::Core::callPort(Call&& call)
{
    sendingSince = nowMs();
    try {
        call();
    } catch (const RtMidiError& error) {
        fail(error.getMessage());
    }
    sendingSince = 0;
    ++sends;
}

void MidiSender::Core::perform(const Request& request)
{
    const bool wasOpen = port.isOpen();
    try {
        request.work(port);
    } catch (const RtMidiError& error) {
        request.answer->error = error.getMessage();
        if (wasOpen && !port.isOpen())
            fail(error.getMessage());
    }
    if (!wasOpen && port.isOpen()) {
        failed = false;
        overflowed = false;
    }
    nextWatch = Clock::now() + WATCH;
}

void MidiSender::Core::fail(const std::string& reason)
{
    const std::lock_guard lock(mutex);
    why = reason;
    failed = true;
}

// ---------------------------------------------------------------- the others

MidiSender::MidiSender(MidiPort::Factory factory)
    : mCore(std::make_shared<Core>(std::move(factory)))
    , mThread([core = mCore] { core->run(); })
{
}

MidiSender::~MidiSender()
{
    {
        const std::lock_guard lock(mCore->mutex);
        mCore->ending = true;
        mCore->wake.notify_all();
    }
    if (waitFor([this] { return mCore->exited; })) {
        mThread.join();
        return;
    }
    giveUp();
    mThread.detach();
}

void MidiSender::write(std::span<const midi::Byte> message)
{
    ThreadCheck::audio();
    const auto size = static_cast<std::uint32_t>(message.size());
    if (message.size() > mCore->message.size()
        || !mCore->ring.write({std::as_bytes(std::span(&size, 1)), std::as_bytes(message)}))
        mCore->overflowed.store(true, std::memory_order_relaxed);
}

std::shared_ptr<MidiSender::Answer> MidiSender::post(Work work)
{
    ThreadCheck::gui();
    auto answer = std::make_shared<Answer>();
    const std::lock_guard lock(mCore->mutex);
    mCore->requests.push_back({std::move(work), answer});
    mCore->wake.notify_all();
    return answer;
}

std::shared_ptr<MidiSender::Answer> MidiSender::run(Work work)
{
    auto answer = post(std::move(work));
    if (!isGivenUp() && waitFor([&] { return answer->done.load() || mCore->exited; }) && answer->done)
        return answer;
    giveUp();
    return nullptr;
}

/// At once for a thread that was given up.
bool MidiSender::waitFor(const std::function<bool()>& done)
{
    std::unique_lock lock(mCore->mutex);
    return mCore->answered.wait_for(lock, mCore->abandoned ? milliseconds(0) : CALL_LIMIT, done);
}

std::optional<std::string> MidiSender::failure()
{
    ThreadCheck::gui();
    const std::int64_t since = mCore->sendingSince;
    const std::int64_t inside = since == 0 ? 0 : nowMs() - since;
    if (inside > SEND_LIMIT.count()) {
        giveUp();
#ifdef Q_OS_LINUX
        const sched_param none{};
        pthread_setschedparam(mThread.native_handle(), SCHED_IDLE, &none); // it may be spinning
#endif
    }
    if (mCore->abandoned)
        return "The MIDI system does not answer.";
    if (mCore->failed) {
        const std::lock_guard lock(mCore->mutex);
        return mCore->why;
    }
    const unsigned sends = mCore->sends;
    const bool moves = std::exchange(mSendsSeen, sends) != sends;
    const bool overflowed = mCore->overflowed;
    if (std::exchange(mOverflowSeen, overflowed) && overflowed && moves) // else it may be stuck
        return "The device does not keep up.";
    return std::nullopt;
}

void MidiSender::giveUp()
{
    const std::lock_guard lock(mCore->mutex);
    if (mCore->exited || mCore->abandoned)
        return;
    ++theLostThreads;
    mCore->abandoned = true;
    mCore->wake.notify_all();
}

bool MidiSender::isGivenUp() const
{
    return mCore->abandoned;
}

int MidiSender::lostThreads()
{
    return theLostThreads;
}
