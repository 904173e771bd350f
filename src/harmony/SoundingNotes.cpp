#include "harmony/SoundingNotes.h"

#include "sound/PdPlayer.h"
#include "sound/TemperedRatio.h"

#include <cmath>

namespace {

constexpr double CENTS_OF_OCTAVE = 1200.0;

SoundingNote noteOf(const VoiceSnapshot::Entry& entry, float baseFrequency)
{
    SoundingNote note;
    note.ratio = entry.ratio;
    note.isTempered = temperedratio::is(entry.ratio);
    const auto numerator = entry.ratio.numerator();
    const auto denominator = entry.ratio.denominator();
    const double exact =
        static_cast<double>(numerator) / static_cast<double>(denominator) * double{baseFrequency};
    // As the engine forms it, in single precision.
    const float sent = static_cast<float>(numerator) / static_cast<float>(denominator) * baseFrequency;
    if (entry.frequency == sent) {
        note.frequency = exact;
        return note;
    }
    note.frequency = double{entry.frequency};
    note.offset = CENTS_OF_OCTAVE * std::log2(note.frequency / exact);
    return note;
}

} // namespace

QList<SoundingNote> soundingNotes(const PdPlayer& player, float baseFrequency)
{
    QList<SoundingNote> notes;
    for (const VoiceSnapshot::Entry& entry : player.soundingVoices()) {
        if (!entry.released && entry.frequency > 0.0F)
            notes.append(noteOf(entry, baseFrequency));
    }
    return notes;
}
