#include "sound/VoiceTable.h"

VoiceTable::VoiceTable()
{
    mVoices.setSize(SLOTS);
    noteMap.reserve(SLOTS);
}

Voice* VoiceTable::freeSlot(int maxVoices)
{
    for (int i = 0; i < maxVoices; ++i) {
        if (mVoices[i].seqId == 0) {
            mVoices[i].voice = i;
            return &mVoices[i];
        }
    }
    return nullptr;
}

Voice* VoiceTable::slot(int index)
{
    return index >= 0 && index < SLOTS ? &mVoices[index] : nullptr;
}

void VoiceTable::take(Voice& voice, const OrloRatio& ratio, std::uint32_t seqId)
{
    voice.ratio = ratio;
    voice.seqId = seqId;
    voice.released = false;
    voice.frequency = 0.0F;
    voice.bend = 1.0F;
    noteMap[ratio] = &voice;
}

bool VoiceTable::release(Voice& voice)
{
    const bool removed = find(voice.ratio) == &voice;
    if (removed)
        noteMap.remove(voice.ratio);
    voice.released = false;
    voice.seqId = 0;
    return removed;
}
