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
    float frequency = 0.0F;     // Hz, with its glissando, as the patch has it; 0 while the note is silent
    float bend = 1.0F;          // factor of a key, within the frequency
    float baseFrequency = 0.0F; // Hz of 1/1 by which that was formed; 0: of several
};

/// The voice slots and the map from a sounding or fading ratio to its latest slot. Slots never move, so
/// the map holds pointers to them. Nothing here allocates once it is made.
class VoiceTable
{
public:
    static constexpr int SLOTS = 128;

    /// [stopped]
    VoiceTable();

    /// [audio] The lowest free slot below `maxVoices`; null when all are taken, and then one is stolen
    /// (VoiceStealing).
    Voice* freeSlot(int maxVoices);
    /// [audio] Null for an index outside the table.
    Voice* slot(int index);
    /// [audio] The latest slot of a ratio that sounds or fades, else null.
    Voice* find(const OrloRatio& ratio) const { return noteMap.value(ratio, nullptr); }

    /// [audio] Marks the slot taken and points the map to it; an older slot of the same ratio goes on
    /// fading without an entry. The patch has been told no frequency yet.
    void take(Voice& voice, const OrloRatio& ratio, std::uint32_t seqId);
    /// [audio] Frees the slot. True when the map pointed to it and the entry was removed.
    bool release(Voice& voice);

    /// [audio] With room for every slot, in the order in which the notes came.
    RatioTable<Voice*> noteMap;

private:
    StaticArray<Voice, SLOTS> mVoices;
};
