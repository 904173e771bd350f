#pragma once

#include "sound/RatioTable.h"
#include "sound/StaticArray.h"

/// One voice slot. Free while seqId is 0; sounding from note-on; released from note-off until the
/// patch reports that it has faded.
struct Voice
{
    OrloRatio ratio;         // absolute
    int voice = -1;          // its own index, set when the slot is taken
    std::uint32_t seqId = 0; // count of note-ons at its start; the oldest voice has the smallest
    bool released = false;
};

/// The voice slots and the map from a sounding or fading ratio to its latest slot. Slots never move, so the
/// map holds pointers to them.
class VoiceTable
{
public:
    static constexpr int SLOTS = 128;

    /// [any]
    VoiceTable();

    /// [audio] The lowest free slot below `maxVoices`; null when all are taken.
    Voice* freeSlot(int maxVoices);
    /// [audio] The slot below `maxVoices` that was taken first; null when none is taken.
    Voice* oldestSlot(int maxVoices);
    /// [audio] Null for an index outside the table.
    Voice* slot(int index);
    /// [audio] The latest slot of the ratio; null for none.
    Voice* find(const OrloRatio& ratio) const { return noteMap.value(ratio, nullptr); }

    /// [audio] Marks the slot taken and points the map to it; an older slot of the same ratio goes on
    /// fading without an entry.
    void take(Voice& voice, const OrloRatio& ratio, std::uint32_t seqId);
    /// [audio] Frees the slot. True when the map pointed to it and the entry was removed.
    bool release(Voice& voice);

    /// [audio] With room for every slot.
    RatioTable<Voice*> noteMap;

private:
    StaticArray<Voice, SLOTS> mVoices;
};
