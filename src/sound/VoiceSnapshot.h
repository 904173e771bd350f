#pragma once

#include "sound/VoiceTable.h"

#include <array>
#include <atomic>

/// What the note map held after a block, for any thread and without a lock.
///
/// publish() copies the map into the next buffer of a ring and then moves the count to it; read()
/// copies the buffer under the count and throws the copy away when the writer may have come round
/// to it meanwhile. So a reader sees the map of one moment, never half of two.
///
/// publish() is wait-free and allocates nothing. read() would have to be held up for RING_SIZE - 1
/// publications within one copy to need a second attempt; after ATTEMPTS of them it gives an empty
/// list.
class VoiceSnapshot
{
public:
    struct Entry
    {
        OrloRatio ratio; // absolute
        int voice = 0;
        std::uint32_t seqId = 0;
        bool released = false;
    };

    /// [audio] Effect: what the map holds now is what read() gives from now on. In its order.
    void publish(const RatioTable<Voice*>& noteMap);
    /// [any] Allocates the list.
    QList<Entry> read() const;

private:
    static constexpr unsigned RING_SIZE = 16;
    static constexpr int ATTEMPTS = 100;

    struct Slot
    {
        std::atomic<unsigned long long> numerator{0};
        std::atomic<unsigned long long> denominator{1};
        std::atomic<std::uint64_t> state{0}; // seqId, voice and whether it is released
    };
    struct Buffer
    {
        std::atomic<int> size{0};
        std::array<Slot, VoiceTable::SLOTS> voices;
    };

    std::array<Buffer, RING_SIZE> mBuffers;
    std::atomic<unsigned> mPublished{0}; // count of publications; its buffer is this modulo RING_SIZE
};
