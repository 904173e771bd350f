#include "sound/VoiceStealing.h"

#include "sound/VoiceTable.h"

Voice* VoiceStealing::oldest(VoiceTable& voices, int maxVoices)
{
    Voice* oldest = nullptr;
    std::uint32_t limit = 2147483647; // a voice that was started later than this is never stolen
    for (int i = 0; i < maxVoices; ++i) {
        Voice* voice = voices.slot(i);
        if (voice->seqId != 0 && voice->seqId < limit) {
            limit = voice->seqId;
            oldest = voice;
        }
    }
    return oldest;
}
