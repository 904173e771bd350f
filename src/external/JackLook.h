#pragma once

#include <string>
#include <vector>

/// A client of JACK's server that only looks at the ports of others: it is never activated and has none
/// itself. The library is the one that RtMidi brings; where RtMidi was built without JACK, there is no
/// server.
///
/// It belongs to one thread, which may wait for a server that stands still.
class JackLook
{
public:
    JackLook() = default;
    JackLook(const JackLook&) = delete;
    JackLook& operator=(const JackLook&) = delete;
    ~JackLook() { close(); }

    /// False without a server.
    bool open();
    bool isOpen() const { return mClient != nullptr; }
    void close();
    /// Leaves the client alone for ever: its server is gone.
    void abandon() { mClient = nullptr; }

    /// Asks the server, and makes no client, which would delete those of a dead one (JackEpoch).
    bool isServerAlive() const;
    /// The full names of all ports that MIDI comes from.
    std::vector<std::string> midiSources() const;
    /// Whether the port of this full name is connected to one that its client calls `receiver`.
    bool isConnected(const std::string& source, const std::string& receiver) const;

private:
    bool serverKnowsClient() const;

    void* mClient = nullptr;
    bool mAnswers = false; // this server answers what isServerAlive() asks
};
