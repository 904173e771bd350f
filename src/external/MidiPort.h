#pragma once

#include "external/MidiBytes.h"

#include <RtMidi.h>

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// The RtMidiOut and the port it has open. All of it runs on one thread, the sender's, since two
/// threads inside one RtMidiOut corrupt it. Each call may throw RtMidiError, and may wait for the
/// MIDI server as long as that is frozen, but never spins.
///
/// A client of JACK whose server has died is left alone for ever (JackEpoch), and none is kept while no
/// port is open.
class MidiPort
{
public:
    /// Makes an output of one API, and throws RtMidiError when that does not come up. May give none where the
    /// API is JACK's and there is no server.
    using Factory = std::function<std::unique_ptr<RtMidiOut>(RtMidi::Api)>;

    struct Opened
    {
        std::string name;
        RtMidi::Api api; // where it is to be looked for when it is lost
    };

    /// [any] Makes nothing yet.
    explicit MidiPort(Factory factory);
    /// [sender], or any thread once that has ended.
    ~MidiPort();
    MidiPort(const MidiPort&) = delete;
    MidiPort& operator=(const MidiPort&) = delete;

    /// [sender] Makes the RtMidiOut once, to see that there is one: of the default API, or of the first
    /// compiled one that comes up.
    void check();
    /// [sender] The names of all ports, in RtMidi's order.
    std::vector<std::string> names();

    /// [sender] Closes what is open, then opens this port. Nothing when there is no such port.
    std::optional<Opened> open(std::size_t index);
    /// [sender] The same for the first port of this name. Only this API is asked, unless it is UNSPECIFIED.
    std::optional<Opened> open(const std::string& name, RtMidi::Api api);
    /// [sender]
    bool isOpen() const { return mOpen; }
    /// [sender]
    void close();
    /// [sender] Ends the notes on all channels, closes, and lets go of the RtMidiOut. An error on the way
    /// changes nothing of that.
    void abandon() noexcept;

    /// [sender] A port must be open.
    void send(std::span<const midi::Byte> message);
    /// [sender] To be called about once a second. False when the port, its device or the server has gone,
    /// which RtMidi does not tell.
    bool isStillThere();

private:
    RtMidiOut* output(RtMidi::Api api = RtMidi::UNSPECIFIED);
    std::unique_ptr<RtMidiOut> makeAnyOutput() const;
    std::vector<std::string> list();
    unsigned int countPorts();
    std::optional<std::size_t> find(const std::string& name);
    void releaseIdle();
    bool isJack() const;
    bool serverAnswers();
    void checkServer();

    const Factory mFactory;
    std::unique_ptr<RtMidiOut> mOutput;
    bool mOpen = false;
    unsigned mJackEpoch = 0; // in which the output was made
    bool mHadServer = false; // JACK's, when a client was made last
    bool mAsksServer = false;
    std::size_t mIndex = 0;
    std::string mName;
    std::size_t mSinceAnswer = 0; // bytes
};
