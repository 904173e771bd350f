// Hold: which notes it keeps, and the ways to end a note that heed it.

#include "sound/PdPlayer.h"

#include "sound/OrloNoteEvent.h"
#include "sound/TemperedRatio.h"
#include "sound/ThreadCheck.h"

void PdPlayer::nodesHoldActive(bool active)
{
    ThreadCheck::audio();
    for (const OrloRatio& ratio : heldNodes)
        tellHold(ratio, false);
    heldNodes.clear();
    if (active) {
        for (const OrloRatio& ratio : soundingNow()) {
            heldNodes.append(ratio);
            tellHold(ratio, true);
        }
    }
    mHoldActive = active;
}

void PdPlayer::tellHold(const OrloRatio& ratio, bool on)
{
    if (!temperedratio::is(ratio))
        emit nodeHold(ratio, on);
}

void PdPlayer::toggleByRatio(const OrloRatio& ratio, float value)
{
    // An event of the physical device carries the ratio 0/1, which is no pitch and would take a voice
    // without a sound.
    if (ratio.numerator() == 0)
        return;
    const Voice* voice = mVoices.find(ratio);
    if (!voice || voice->released)
        noteOnOfNoKey(ratio);
    else if (!mHoldActive || value == OrloNoteEvent::OVERRIDES_HOLD || !heldNodes.contains(ratio))
        noteOff(ratio);
}

void PdPlayer::allNotesOff(bool force)
{
    ThreadCheck::audio();
    // A copy: a patch without a release reports its voices' end at once, and that takes entries
    // out of the map.
    SoundingRatios ratios;
    for (const Voice* voice : mVoices.noteMap) // released ones too
        ratios.push_back(voice->ratio);
    for (const OrloRatio& ratio : ratios) {
        if (force || !heldNodes.contains(ratio))
            noteOff(ratio);
    }
}
