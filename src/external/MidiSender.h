#pragma once

#include "external/MidiBytes.h"
#include "external/MidiPort.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>

/// The one thread that calls RtMidi: it sends what is written, and opens, closes and lists ports when
/// asked, each in its turn. It looks for messages every millisecond while a port is open and sleeps
/// otherwise.
///
/// A thread that does not come back from RtMidi, because a server is frozen, is given up: it keeps all
/// that it touches and lets go of it when it comes back after all.
class MidiSender
{
public:
    using Work = std::function<void(MidiPort&)>;

    /// What becomes of a piece of work. `error` may be read once it is done.
    struct Answer
    {
        std::atomic<bool> done{false};
        std::optional<std::string> error; // of RtMidi
    };

    // How long a call is waited for: far longer than a healthy MIDI system takes.
    static constexpr std::chrono::milliseconds CALL_LIMIT{2000};
    // How long one message may take, which is sent within microseconds.
    static constexpr std::chrono::milliseconds SEND_LIMIT{1500};

    /// [gui] Starts the thread.
    explicit MidiSender(MidiPort::Factory factory);
    /// [gui] Ends the thread, or gives it up after CALL_LIMIT.
    ~MidiSender();
    MidiSender(const MidiSender&) = delete;
    MidiSender& operator=(const MidiSender&) = delete;

    /// [audio] Effect: the thread sends the message about a millisecond later. Capacity: 64 KiB. One
    /// that finds no room is dropped, and failure() says so. Never blocks, allocates nothing and
    /// makes no system call.
    void write(std::span<const midi::Byte> message);

    /// [gui] Effect: the thread calls `work`, behind everything written or asked for so far. Capacity: as
    /// much as memory. Never waits for the thread.
    std::shared_ptr<Answer> post(Work work);
    /// [gui] As post(), and waits for the end of the work. Null when there is no answer within CALL_LIMIT:
    /// the thread has been given up then.
    std::shared_ptr<Answer> run(Work work);

    /// [gui] Why nothing can be sent to the open port any more. A thread that has not come back from
    /// sending for SEND_LIMIT is given up here.
    std::optional<std::string> failure();
    /// [gui] Gives the thread up: from now on write() and post() have no effect.
    void giveUp();
    /// [any]
    bool isGivenUp() const;

    /// [any] How many threads were given up and have not come back.
    static int lostThreads();

private:
    struct Core;
    bool waitFor(const std::function<bool()>& done);

    const std::shared_ptr<Core> mCore; // shared with the thread
    std::thread mThread;
    unsigned mSendsSeen = 0;    // [gui] at the last look for a failure
    bool mOverflowSeen = false; // [gui] one look later it shows whether the thread goes on
};
