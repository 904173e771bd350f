#include "external/MidiInRtMidi.h"

#include "external/MidiInRing.h"

#include <QCoreApplication>

namespace {

constexpr const char* CLIENT_NAME = "RtMidi Input Client";
constexpr int STUCK_LOOKS = 4;

/// A look at what RtMidi keeps to itself: a flag that its thread writes, of which a stale value does no harm.
struct InputState : MidiInApi
{
    static bool isInSysEx(const MidiInApi& api) { return (api.*(&InputState::inputData_)).continueSysex; }
};

class Input : public RtMidiIn
{
public:
    using RtMidiIn::RtMidiIn;
    bool isInSysEx() const { return InputState::isInSysEx(static_cast<const MidiInApi&>(*rtapi_)); }
};

} // namespace

MidiInRtMidi::~MidiInRtMidi()
{
    close();
}

bool MidiInRtMidi::open(RtMidi::Api api, const std::string& name, MidiInRing* ring, std::uint8_t slot)
{
    close();
    auto input = std::make_unique<Input>(api, CLIENT_NAME);
    input->ignoreTypes(true, true, true); // no SysEx, no clock, no active sensing
    const unsigned int count = input->getPortCount();
    for (unsigned int i = 0; i < count; ++i) {
        if (input->getPortName(i) != name)
            continue;
        mRing = ring;
        mSlot = slot;
        mReceiver = "RtMidi Input " + std::to_string(slot + 1) + " of "
                    + std::to_string(QCoreApplication::applicationPid());
        input->setCallback(&MidiInRtMidi::receive, this);
        input->openPort(i, mReceiver);
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

bool MidiInRtMidi::isStuck()
{
    const bool inSysEx = rtMidiIn && static_cast<const Input*>(rtMidiIn)->isInSysEx();
    mLooksInSysEx = inSysEx ? mLooksInSysEx + 1 : 0;
    return mLooksInSysEx >= STUCK_LOOKS;
}

void MidiInRtMidi::abandon()
{
    mRing = nullptr;
    rtMidiIn = nullptr;
}

void MidiInRtMidi::receive(double /*seconds*/, std::vector<unsigned char>* packet, void* self)
{
    auto* const input = static_cast<MidiInRtMidi*>(self);
    MidiInRing* const ring = input->mRing;
    if (!ring)
        return;
    const std::size_t bad = input->mParser.parse(*packet, [input, ring](MidiInMessage message) {
        message.input = input->mSlot;
        ring->write(message);
    });
    if (bad != 0)
        input->mBadBytes.fetch_add(static_cast<std::uint32_t>(bad), std::memory_order_relaxed);
}
