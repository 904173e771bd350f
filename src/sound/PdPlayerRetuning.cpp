// What a change of 1/1 does to notes that sound, once it is asked for: each of them goes where a note struck
// now would be. A voice glides there as by a slider. A glissando stays, relative to the new pitch.

#include "sound/PdPlayer.h"

#include "model/PitchRange.h"
#include "sound/ThreadCheck.h"

void PdPlayer::retuneToBase()
{
    ThreadCheck::audio();
    clearInstruction();
    // A note that leaves the range of pitches or enters it sends an instruction of its own, so those come
    // after the list has gone out.
    for (Voice* voice : mVoices.noteMap) {
        const float frequency = glidedFrequency(*voice);
        const bool stays = voice->frequency > 0.0F && (voice->released || pitchrange::sounds(frequency));
        if (voice->baseFrequency == mBaseFrequency || !stays)
            continue;
        alterFrequency(frequency, static_cast<float>(voice->voice));
        voice->baseFrequency = mBaseFrequency;
        if (!voice->released && portOpen())
            addToInstruction(voice->voice, frequency, velocityOf(voice->ratio));
    }
    if (!mInstructionVoices.isEmpty())
        emit notesRetuned(mInstructionVoices, mInstructionValues1, mInstructionValues2);
    for (Voice* voice : mVoices.noteMap) {
        if (voice->baseFrequency == mBaseFrequency || voice->released)
            continue;
        if (voice->frequency > 0.0F)
            silence(*voice);
        else
            strike(*voice);
    }
}

/// The note goes on without a sound, as one that started outside the range of pitches.
void PdPlayer::silence(Voice& voice)
{
    voice.frequency = 0.0F;
    voice.baseFrequency = mBaseFrequency;
    mVoicesChanged = true;
    sendPdVoiceMessage(voiceGate, 0.0F, static_cast<float>(voice.voice));
    if (portOpen())
        sendInstruction(instructionNoteOff, voice.voice, -1.0F, -1.0F);
}
