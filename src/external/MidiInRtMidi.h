#pragma once

#include "external/MidiInParser.h"

#include <QObject>

#include <RtMidi.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class MidiInRing;

/// One open MIDI input over RtMidi. RtMidi calls back on a thread of its own, with JACK on JACK's real-time
/// thread, which writes what comes into the input's ring: it takes no lock and allocates nothing.
///
/// Made, opened and closed on [receiver]. Each call may throw RtMidiError and may wait for the MIDI server.
class MidiInRtMidi : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;
    ~MidiInRtMidi() override;

    /// Opens the first port of exactly this name; what comes goes into the ring with this slot's number.
    /// False when there is no such port.
    bool open(RtMidi::Api api, const std::string& name, MidiInRing* ring, std::uint8_t slot);
    /// Nothing is written into the ring any more when it returns.
    void close();
    /// Leaves what is open to itself for ever: JACK's library has deleted it under its owner. It writes
    /// nothing any more.
    void abandon();
    /// What its MIDI system calls the port that receives; no other port of the machine is called so.
    const std::string& receiver() const { return mReceiver; }

    /// Whether a SysEx has been under way at several looks, to be taken twice a second: RtMidi holds back all
    /// that follows one that was cut, so the input must be opened anew.
    bool isStuck();

    /// [any] How many bytes belonged to no message so far.
    std::uint32_t badBytes() const { return mBadBytes.load(std::memory_order_relaxed); }

    RtMidiIn* rtMidiIn = nullptr; // null while no port is open

private:
    static void receive(double seconds, std::vector<unsigned char>* packet, void* self);

    MidiInParser mParser; // the callback's
    std::string mReceiver;
    std::atomic<MidiInRing*> mRing{nullptr};
    std::uint8_t mSlot = 0;
    int mLooksInSysEx = 0;
    std::atomic<std::uint32_t> mBadBytes{0};
};
