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

/// The voice slots and the map from a sounding or fading ratio to its latest slot. [audio] only,
/// once the engine runs. Slots never move, so the map holds pointers to them.
class VoiceTable
{
public:
    static constexpr int SLOTS = 128;

    VoiceTable();

    /// The lowest free slot below `maxVoices`; null when all are taken.
    Voice* freeSlot(int maxVoices);
    /// The slot below `maxVoices` that was taken first; null when none is taken.
    Voice* oldestSlot(int maxVoices);
    /// Null for an index outside the table.
    Voice* slot(int index);
    Voice* find(const OrloRatio& ratio) const { return noteMap.value(ratio, nullptr); }

    /// Marks the slot taken and points the map to it; an older slot of the same ratio goes on
    /// fading without an entry.
    void take(Voice& voice, const OrloRatio& ratio, std::uint32_t seqId);
    /// Frees the slot. True when the map pointed to it and the entry was removed.
    bool release(Voice& voice);

    RatioTable<Voice*> noteMap; // with room for every slot

private:
    StaticArray<Voice, SLOTS> mVoices;
};
