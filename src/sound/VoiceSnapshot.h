#pragma once

#include "model/Published.h"
#include "sound/VoiceTable.h"

#include <array>
#include <cstdint>

/// What the note map held after the last block: a list of one moment, never half of two
/// blocks. Capacity: a note for each slot. Nothing here blocks, and only reading allocates.
class VoiceSnapshot
{
public:
    struct Entry
    {
        OrloRatio ratio; // absolute
        int voice = 0;
        std::uint32_t seqId = 0;
        bool released = false;
        float frequency = 0.0F; // Hz; 0 when the note is silent
    };

    /// [audio] Effect: what the map holds now is what is read from now on. In its order.
    void publish(const RatioTable<Voice*>& noteMap);
    /// [any] Allocates the list, which is empty in the rare case that Published::read fails. Without the
    /// notes that have no exact pitch (TemperedRatio.h).
    QList<Entry> read() const;
    /// [any] The same with them.
    QList<Entry> readAll() const;

private:
    struct Note
    {
        unsigned long long numerator;
        unsigned long long denominator;
        std::uint64_t state; // seqId, voice and whether it is released
        float frequency;
        float unused;
    };
    struct Notes
    {
        std::uint64_t count = 0;
        std::array<Note, VoiceTable::SLOTS> notes; // beyond the count undefined
    };

    Published<Notes, 16> mPublished{Notes{}};
};
