#pragma once

#include "external/MidiInMessage.h"
#include "sound/ByteRing.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>

/// Carries the messages of one MIDI input to the engine, lock-free: written on RtMidi's callback thread of
/// that input, read on [audio].
///
/// Capacity: 4096 messages. What finds no room is dropped and counted; since a note-off can be among it,
/// whoever reads ends all keys of that input then.
class MidiInRing
{
public:
    static constexpr std::size_t CAPACITY = 4096;

    MidiInRing() { mRing.init(CAPACITY * sizeof(MidiInMessage) + 1); }

    /// [receiver] False when there was no room.
    bool write(const MidiInMessage& message);

    /// [audio] Takes out as many messages as there are and find room; how many these are.
    std::size_t read(std::span<MidiInMessage> messages);
    /// [audio] How many messages were dropped since the last time.
    std::uint32_t takeLost() { return mLost.load(std::memory_order_relaxed) ? mLost.exchange(0) : 0; }
    /// [audio] Whether the input has gone since the last time, so that none of its keys is down any more. It
    /// may be back already.
    bool takeGone() { return mGone.load(std::memory_order_relaxed) && mGone.exchange(false); }

    /// [any] The input has gone, or was closed.
    void markGone() { mGone = true; }
    /// [any] How many messages were dropped in all.
    std::uint32_t lostInAll() const { return mLostInAll.load(std::memory_order_relaxed); }

private:
    ByteRing mRing;
    std::atomic<std::uint32_t> mLost{0};
    std::atomic<std::uint32_t> mLostInAll{0};
    std::atomic<bool> mGone{false};
};
