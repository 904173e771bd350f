// The notes of the player: on and off, monophonic play, and what sounds.

#include "sound/PdPlayer.h"

#include "app/LogFilter.h"
#include "model/PitchRange.h"
#include "sound/ThreadCheck.h"
#include "sound/VoiceStealing.h"

#include <QThread>

// ---------------------------------------------------------------- toggles

void PdPlayer::removeNode(const OrloRatio& ratio)
{
    if (mVoices.find(ratio))
        noteOff(ratio);
    emit removeNodeInStack(ratio);
}

// ---------------------------------------------------------------- on and off

void PdPlayer::noteOn(const OrloRatio& ratio)
{
    ThreadCheck::audio();
    ORLO_AUDIO_DEBUG << "Thread @ PdPlayer::noteOn: Thread, ID, priority " << QThread::currentThread()
                     << QThread::currentThreadId() << QThread::currentThread()->priority();
    ++mSequence;
    float frequency = ratioToFrequency(ratio);
    bool stolen = false;
    // The slot is chosen before the previous mono voice stops, so that the new voice starts beside its
    // release.
    const int slot = findSlot(stolen);
    if (slot < 0)
        return;
    if (mMonophonic)
        stopPreviousMonoVoice(slot);

    mVoices.take(*mVoices.slot(slot), ratio, mSequence);
    mVoicesChanged = true;
    ORLO_AUDIO_DEBUG << "noteOn for ratio" << ratio.toString() << "freq" << frequency << "voice" << slot
                     << "seqId" << mSequence << "stolen" << (stolen ? "true" : "false");

    const float velocity = sendNodeParameters(ratio, slot, frequency);
    // A note exactly on a bound is silent; Orlo::canTransposeTo allows 1/1 there.
    if (frequency > pitchrange::LOWEST && frequency < pitchrange::HIGHEST) {
        const auto voice = static_cast<float>(slot);
        mVoices.slot(slot)->frequency = frequency;
        sendPdVoiceMessage(voiceFrequency, frequency, voice);
        sendPdVoiceMessage(voiceVolume, mVoiceVolume, voice);
        sendPdVoiceMessage(voiceGate, 1.0F, voice);
        if (portOpen())
            sendInstruction(instructionNoteOn, slot, frequency, velocity);
    }
    emit noteToggled(ratio, true);

    if (!mNodes.altered().contains(ratio))
        mNodes.setSounding(ratio);
}

int PdPlayer::findSlot(bool& stolen)
{
    if (const Voice* free = mVoices.freeSlot(mMaxVoices))
        return free->voice;
    const Voice* oldest = VoiceStealing::oldest(mVoices, mMaxVoices);
    if (!oldest)
        return -1;
    stolen = true;
    if (!oldest->released)
        noteOff(OrloRatio(oldest->ratio));
    onVoiceStopped(oldest->voice);
    return oldest->voice;
}

void PdPlayer::stopPreviousMonoVoice(int slot)
{
    if (const Voice* previous = mVoices.slot(mMonoVoice);
        previous && previous->seqId != 0 && !previous->released) {
        ORLO_AUDIO_DEBUG << "turning off previous mono voice" << mMonoVoice << "ratio"
                         << previous->ratio.toString();
        noteOff(OrloRatio(previous->ratio));
    }
    mMonoVoice = slot;
}

/// Sends the eight macros of a starting note and bends its frequency as its node asks. Returns the
/// value that goes out as velocity.
float PdPlayer::sendNodeParameters(const OrloRatio& ratio, int voice, float& frequency)
{
    const NodeParameters heard = mNodes.heard(ratio);
    if (mNodes.altered().contains(ratio)) {
        frequency *= glissandoOneMapping(heard.glissOne);
        frequency *= glissandoTwoMapping(heard.glissTwo);
    }
    applyMacros(heard, static_cast<float>(voice));
    // The velocity of a selected node is the slider's value, even if its own first macro differs.
    return mNodes.selected().contains(ratio) ? mNodes.current().macros[0] : heard.macros[0];
}

void PdPlayer::noteOff(const OrloRatio& ratio)
{
    ThreadCheck::audio();
    ORLO_AUDIO_DEBUG << "Thread @ PdPlayer::noteOff: Thread, ID " << QThread::currentThread()
                     << QThread::currentThreadId();
    Voice* voice = mVoices.find(ratio);
    if (!voice)
        return;
    ORLO_AUDIO_DEBUG << "noteOff for ratio" << ratio.toString() << "voice" << voice->voice;
    voice->released = true;
    mVoicesChanged = true;
    sendPdVoiceMessage(voiceGate, 0.0F, static_cast<float>(voice->voice));
    if (portOpen())
        sendInstruction(instructionNoteOff, voice->voice, -1.0F, -1.0F);
    emit noteToggled(ratio, false);
    mNodes.endSounding(ratio);
}

void PdPlayer::clearInstruction()
{
    mInstructionVoices.clear(); // keeps its room
    mInstructionValues1.clear();
    mInstructionValues2.clear();
}

void PdPlayer::addToInstruction(int voice, float value1, float value2)
{
    mInstructionVoices.append(voice);
    mInstructionValues1.append(value1);
    mInstructionValues2.append(value2);
}

void PdPlayer::sendInstruction(Instruction instruction, int voice, float value1, float value2)
{
    clearInstruction();
    addToInstruction(voice, value1, value2);
    emit instructionsToInterface(instruction, mInstructionVoices, mInstructionValues1, mInstructionValues2);
}

void PdPlayer::onVoiceStopped(int index)
{
    ThreadCheck::audio();
    Voice* voice = mVoices.slot(index);
    if (!voice || !voice->released)
        return;
    ORLO_AUDIO_DEBUG << "voice stopped for" << voice->ratio.toString() << "voice" << index;
    mVoicesChanged = true;
    if (mVoices.release(*voice))
        ORLO_AUDIO_DEBUG << "removing voice" << index << "from note map";
}

// ---------------------------------------------------------------- what sounds

QList<OrloRatio> PdPlayer::getAllSoundingRatios() const
{
    QList<OrloRatio> sounding;
    for (const VoiceSnapshot::Entry& entry : mSnapshot.read()) {
        ORLO_AUDIO_DEBUG << "PdPlayer:getAllSoundingRatios: ratio, voice, seqId, inRelease "
                         << entry.ratio.toString() << entry.voice << entry.seqId << entry.released;
        if (!entry.released)
            sounding.append(entry.ratio);
    }
    ORLO_AUDIO_DEBUG << "PdPlayer:getAllSoundingRatios, number of which are " << sounding.size();
    return sounding;
}

std::optional<float> PdPlayer::heardFrequency(const OrloRatio& ratio) const
{
    for (const VoiceSnapshot::Entry& entry : mSnapshot.read()) {
        if (entry.ratio == ratio && !entry.released && entry.frequency > 0.0F)
            return entry.frequency;
    }
    return std::nullopt;
}

PdPlayer::SoundingRatios PdPlayer::soundingNow() const
{
    SoundingRatios sounding;
    for (const Voice* voice : mVoices.noteMap) {
        if (!voice->released)
            sounding.push_back(voice->ratio);
    }
    return sounding;
}

float PdPlayer::ratioToFrequency(const OrloRatio& ratio) const
{
    ThreadCheck::audio();
    return static_cast<float>(ratio.numerator()) / static_cast<float>(ratio.denominator()) * mBaseFrequency;
}
