#pragma once

#include "external/MidiOutRtMidi.h"

#include <QStringList>

#include <memory>

/// A MIDI system of the test's own behind RtMidi: its ports, and what was sent.
struct MidiSystem
{
    std::vector<std::string> ports{"Synth:in", "Other:in", "Other:in", "Third:in"};
    int open = -1;
    QStringList sent; // as hexadecimal bytes, and "open 1" or "close" among them
    int apisThatFail = 0;
    QList<int> apisTried;
    bool opensFail = false;
    bool sendsFail = false;
    bool discard = false; // what is sent, so that the double allocates nothing

    QStringList take() { return std::exchange(sent, {}); }
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

QString hex(const unsigned char* bytes, size_t size);
template <class Bytes>
QString hex(const Bytes& bytes)
{
    return hex(bytes.data(), bytes.size());
}
/// "Bn 7B 00" for each channel.
QStringList onAllChannels(int status, const char* data);
