#pragma once

#include "external/MidiOutRtMidi.h"

#include <QList>

#include <memory>
#include <string>

/// A MIDI system of the test's own behind RtMidi: its ports, and what was sent.
struct MidiSystem
{
    std::vector<std::string> ports{"Synth:in", "Other:in", "Other:in", "Third:in"};
    std::string sent; // messages as hexadecimal bytes, and "open 1" or "close", with ", " between them
    int apisThatFail = 0;
    QList<int> apisTried;
    bool opensFail = false;
    bool sendsFail = false;
    bool discard = false; // what is sent, so that the double allocates nothing

    void add(const std::string& message) { sent += (sent.empty() ? "" : ", ") + message; }
    std::string take() { return std::exchange(sent, {}); }
};

/// The MIDI output over such a system.
class MidiOutOverDouble : public MidiOutRtMidi
{
public:
    MidiOutOverDouble() { init(); }
    explicit MidiOutOverDouble(int apisThatFail) { system->apisThatFail = apisThatFail; }
    using MidiOutput::channelActive;
    using MidiOutput::channelKey;
    using MidiOutput::channelVoice;
    using MidiOutput::pitchBendRangeCents;
    using MidiOutput::tunedKeys;

    const std::shared_ptr<MidiSystem> system = std::make_shared<MidiSystem>();

protected:
    std::unique_ptr<RtMidiOut> createOutput(RtMidi::Api api) const override;
};

std::string hex(const unsigned char* bytes, size_t size);
/// One message for each channel, such as "Bn 7B 00".
std::string onAllChannels(int status, const char* data);
/// What sets the range of the bend.
std::string bendRange(const char* semitones, const char* cents);
