// The notes of the player: on and off, monophonic play, and what sounds.

#include "sound/PdPlayer.h"

#include "app/LogFilter.h"
#include "model/PitchRange.h"
#include "sound/TemperedRatio.h"
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
    ORLO_AUDIO_DEBUG << "noteOn for ratio" << ratio.toString() << "freq" << ratioToFrequency(ratio) << "voice"
                     << slot << "seqId" << mSequence << "stolen" << (stolen ? "true" : "false");

    if (const KeyTouch* touch = touchOf(ratio))
        mVoices.slot(slot)->bend = touch->bend;
    strike(*mVoices.slot(slot));
    tellToggled(ratio, true);
}

/// Sends macros, frequency, volume and gate, in this order; outside the range of pitches only the macros.
void PdPlayer::strike(Voice& voice)
{
    const OrloRatio ratio = voice.ratio;
    const auto number = static_cast<float>(voice.voice);
    NodeParameters heard = mNodes.heard(ratio);
    if (const KeyTouch* touch = touchOf(ratio))
        touch->applyTo(heard.macros);
    applyMacros(heard, number);
    const float frequency = glidedFrequency(voice);
    voice.baseFrequency = mBaseFrequency;
    if (pitchrange::sounds(frequency)) {
        voice.frequency = frequency;
        mVoicesChanged = true;
        sendPdVoiceMessage(voiceFrequency, frequency, number);
        sendPdVoiceMessage(voiceVolume, mVoiceVolume, number);
        sendPdVoiceMessage(voiceGate, 1.0F, number);
        if (portOpen())
            sendInstruction(instructionNoteOn, voice.voice, frequency, velocityOf(ratio));
    }
    if (!mNodes.altered().contains(ratio))
        mNodes.setSounding(ratio, heard.macros);
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

/// In Hz, of the note that the voice has, with what its node and its key ask.
float PdPlayer::glidedFrequency(const Voice& voice) const
{
    const OrloRatio& ratio = voice.ratio;
    float frequency = ratioToFrequency(ratio);
    if (mNodes.altered().contains(ratio)) {
        const NodeParameters heard = mNodes.heard(ratio);
        frequency *= glissandoOneMapping(heard.glissOne);
        frequency *= glissandoTwoMapping(heard.glissTwo);
    }
    return frequency * voice.bend;
}

/// A key's own. That of a selected node is the slider's value, even if its own first macro differs.
float PdPlayer::velocityOf(const OrloRatio& ratio) const
{
    if (const KeyTouch* touch = touchOf(ratio))
        return touch->velocity;
    return mNodes.selected().contains(ratio) ? mNodes.current().macros[0] : mNodes.heard(ratio).macros[0];
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
    tellToggled(ratio, false);
    mNodes.endSounding(ratio);
}

/// The lattice knows exact pitches only.
void PdPlayer::tellToggled(const OrloRatio& ratio, bool on)
{
    if (!temperedratio::is(ratio))
        emit noteToggled(ratio, on);
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

/// What was added to the list.
void PdPlayer::sendBends()
{
    if (!mInstructionVoices.isEmpty())
        emit instructionsToInterface(instructionBend, mInstructionVoices, mInstructionValues1,
                                     mInstructionValues2);
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
