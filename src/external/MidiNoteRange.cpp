#include "external/MidiNoteRange.h"

#include "external/MidiNote.h"
#include "sound/AudioLog.h"

#include <cstddef>
#include <utility>

double MidiNoteRange::noteOf(int voice, float frequency)
{
    const double note = midi::noteOfFrequency(frequency);
    const bool isInRange = note >= 0.0 && note < midi::MAX_NOTE;
    const auto at = static_cast<std::size_t>(voice);
    const bool warnedBefore = at < mWarned.size() && std::exchange(mWarned[at], !isInRange);
    if (isInRange)
        return note;
    const bool isBelow = note < 0.0;
    if (!warnedBefore)
        AudioLog::rationed(isBelow ? "MTS: Freq sent to MIDI below MIDI range: %1"
                                   : "MTS: Freq sent to MIDI above MIDI range: %1",
                           {static_cast<double>(frequency)});
    return isBelow ? 0.0 : midi::TOP_NOTE;
}

void MidiNoteRange::noteEnds(int voice)
{
    if (static_cast<std::size_t>(voice) < mWarned.size())
        mWarned[static_cast<std::size_t>(voice)] = false;
}
