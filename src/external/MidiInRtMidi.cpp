#include "external/MidiInRtMidi.h"

#include "external/MidiInRing.h"

namespace {

constexpr const char* CLIENT_NAME = "RtMidi Input Client";
constexpr const char* PORT_NAME = "RtMidi Input";

} // namespace

MidiInRtMidi::~MidiInRtMidi()
{
    close();
}

bool MidiInRtMidi::open(RtMidi::Api api, const std::string& name, MidiInRing* ring, std::uint8_t slot)
{
    close();
    auto input = std::make_unique<RtMidiIn>(api, CLIENT_NAME);
    input->ignoreTypes(true, true, true); // no SysEx, no clock, no active sensing
    const unsigned int count = input->getPortCount();
    for (unsigned int i = 0; i < count; ++i) {
        if (input->getPortName(i) != name)
            continue;
        mRing = ring;
        mSlot = slot;
        input->setCallback(&MidiInRtMidi::receive, this);
        input->openPort(i, PORT_NAME);
        if (!input->isPortOpen())
            return false;
        rtMidiIn = input.release();
        return true;
    }
    return false;
}

void MidiInRtMidi::close()
{
    if (!rtMidiIn)
        return;
    const std::unique_ptr<RtMidiIn> input(rtMidiIn);
    rtMidiIn = nullptr;
    input->closePort();
}

void MidiInRtMidi::abandon()
{
    rtMidiIn = nullptr;
}

void MidiInRtMidi::receive(double /*seconds*/, std::vector<unsigned char>* packet, void* self)
{
    auto* const input = static_cast<MidiInRtMidi*>(self);
    const std::size_t bad = input->mParser.parse(*packet, [input](MidiInMessage message) {
        message.input = input->mSlot;
        input->mRing->write(message);
    });
    if (bad != 0)
        input->mBadBytes.fetch_add(static_cast<std::uint32_t>(bad), std::memory_order_relaxed);
}
