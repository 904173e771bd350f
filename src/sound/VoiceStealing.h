#pragma once

class VoiceTable;
struct Voice;

/// Which voice gives way to a new note when all are taken.
namespace VoiceStealing {

/// [audio] The slot below `maxVoices` that was taken first, sounding or fading; null when none is taken.
Voice* oldest(VoiceTable& voices, int maxVoices);

} // namespace VoiceStealing
