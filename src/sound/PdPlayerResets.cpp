// The resets of the player's nodes. This part tells the voices and emits the signals; NodeBook has the
// arithmetic.

#include "sound/PdPlayer.h"

#include "app/Accessors.h"
#include "app/LogFilter.h"
#include "app/Settings.h"
#include "sound/ThreadCheck.h"

namespace {

bool softNodeReset()
{
    const Settings* settings = app::settings();
    return settings && settings->softNodeReset;
}

} // namespace

void PdPlayer::nodeResetParameters(const OrloRatio& ratio)
{
    mNodes.resetNode(ratio);
    ORLO_AUDIO_DEBUG << "Node reset parameters: ratio, np0, np1: " << ratio.toStringAbs()
                     << mNodes.record(ratio).glissOne << mNodes.record(ratio).glissTwo;
    emit nodeAltered(ratio, false);
}

void PdPlayer::nodeResetGlissando(const OrloRatio& ratio, short which)
{
    const NodeParameters& source = which < 1 ? mNodes.defaults() : mNodes.record(ratio);
    ORLO_AUDIO_DEBUG << "glissOne, glissTwo: " << source.glissOne << source.glissTwo;
    const Voice* voice = mVoices.find(ratio);
    if (!voice)
        return;
    const float one = glissandoOneMapping(source.glissOne);
    const float two = glissandoTwoMapping(source.glissTwo);
    const float frequency =
        two * one * mBaseFrequency
        * (static_cast<float>(ratio.numerator()) / static_cast<float>(ratio.denominator())) * voice->bend;
    ORLO_AUDIO_DEBUG << "Gliss reset applied: Mapping 1, 2, 1*2: " << one << two << one * two;
    alterFrequency(frequency, static_cast<float>(voice->voice));
    if (portOpen())
        sendInstruction(instructionBend, voice->voice, frequency, -1.0F);
}

/// Gives a running voice what a note that starts now would get.
void PdPlayer::restoreVoiceInPlace(const OrloRatio& ratio, const Voice& voice)
{
    applyAllCurrentMacroValues(static_cast<float>(voice.voice));
    if (!voice.released) // a released note has no sounding parameters any more
        mNodes.setSounding(ratio);
}

void PdPlayer::nodeResetOne(OrloRatio ratio, bool deselect)
{
    ThreadCheck::audio();
    Voice* voice = mVoices.find(ratio);
    if (mNodes.altered().contains(ratio)) {
        nodeResetAltered(ratio, deselect, voice);
    } else if (voice && softNodeReset()) {
        noteOff(ratio);
        noteOn(ratio);
    } else if (voice) {
        restoreVoiceInPlace(ratio, *voice);
    }
}

void PdPlayer::nodeResetAltered(const OrloRatio& ratio, bool deselect, Voice* voice)
{
    const bool soft = softNodeReset();
    const bool wasSelected = mNodes.selected().contains(ratio);
    if (soft && voice)
        noteOff(ratio);
    if (wasSelected)
        nodeSelectToggleByRatio(ratio);
    nodeResetParameters(ratio);
    if (!soft && voice) {
        nodeResetGlissando(ratio, 0);
        restoreVoiceInPlace(ratio, *voice);
    }
    mNodes.removeAltered(ratio);
    if (wasSelected && !deselect)
        nodeSelectToggleByRatio(ratio);
    if (soft && voice)
        noteOn(ratio);
}

void PdPlayer::resetSelectedNodes(bool deselect)
{
    ThreadCheck::audio();
    mFormerlySelected.assign(mNodes.selected().begin(), mNodes.selected().end());
    for (const OrloRatio& ratio : mFormerlySelected)
        nodeResetOne(ratio, deselect);
}

void PdPlayer::resetAllNodes(bool resetControls, bool deselect)
{
    ThreadCheck::audio();
    const bool soft = softNodeReset();
    const SoundingRatios sounding = soundingNow();
    mFormerlySelected.assign(mNodes.selected().begin(), mNodes.selected().end());
    if (soft)
        allNotesOff(true);
    nodeDeselectAll();
    for (const OrloRatio& ratio : mNodes.altered()) {
        if (!soft)
            nodeResetGlissando(ratio, 0);
        nodeResetParameters(ratio);
    }
    mNodes.clearAltered();
    if (resetControls) {
        const auto count = qMin<qsizetype>(mMacroDefaults.size(), NodeParameters::MACRO_COUNT);
        for (int i = 0; i < count; ++i)
            setMacroValue(i + 1, mNodes.defaultMacro(static_cast<std::size_t>(i)));
        emit resetGlissSliders(0);
        mNodes.resetSliders();
    }
    mNodes.clearSounding();
    for (const OrloRatio& ratio : sounding) {
        if (soft)
            noteOn(ratio);
        else if (const Voice* voice = mVoices.find(ratio))
            restoreVoiceInPlace(ratio, *voice);
    }
    if (!deselect) {
        for (const OrloRatio& ratio : mFormerlySelected)
            nodeSelectToggleByRatio(ratio);
    }
}

void PdPlayer::resetGlissandoAllNodes(short which)
{
    ThreadCheck::audio();
    ORLO_AUDIO_DEBUG << "Node reset: current0, current1: " << mNodes.current().glissOne
                     << mNodes.current().glissTwo;
    emit resetGlissSliders(which);
    mFormerlySelected.assign(mNodes.selected().begin(), mNodes.selected().end());
    nodeDeselectAll();
    mNodes.resetGlissandoSliders(which);
    for (const OrloRatio& ratio : mNodes.altered()) {
        mNodes.resetGlissando(ratio, which);
        ORLO_AUDIO_DEBUG << "Node reset: ratio, np0, np1, default, current0, current1: " << ratio.toString()
                         << mNodes.record(ratio).glissOne << mNodes.record(ratio).glissTwo
                         << mNodes.defaults().glissOne << mNodes.current().glissOne
                         << mNodes.current().glissTwo;
        nodeResetGlissando(ratio, which);
    }
    takeGlissandoRanges(); // the options dialog changes one and then asks for this reset
    for (const OrloRatio& ratio : mFormerlySelected)
        nodeSelectToggleByRatio(ratio);
}
