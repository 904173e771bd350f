// The nodes of the player: selection, sliders and resets, told to the voices and to whoever listens,
// and what goes over into the next patch. NodeBook has the arithmetic.

#include "sound/PdPlayer.h"

#include "app/Accessors.h"
#include "app/LogFilter.h"
#include "app/Settings.h"
#include "sound/GlissandoMapping.h"
#include "sound/ThreadCheck.h"

namespace {

bool softNodeReset()
{
    const Settings* settings = app::settings();
    return settings && settings->softNodeReset;
}

} // namespace

bool PdPlayer::maintainMacroParameters()
{
    const Settings* settings = app::settings();
    return settings && settings->maintainMacroParameters;
}

void PdPlayer::takeGlissandoRanges()
{
    if (const Settings* settings = app::settings()) {
        mGlissOneRange = settings->glissOneRangeCents;
        mGlissTwoRange = settings->glissTwoRangeCents;
    }
}

// ---------------------------------------------------------------- selection

void PdPlayer::nodeSelectToggleByRatio(OrloRatio ratio)
{
    ThreadCheck::audio();
    if (mNodes.deselect(ratio)) {
        emit nodeSelected(ratio, false);
    } else {
        if (mNodes.select(ratio))
            emit nodeAltered(ratio, true);
        emit nodeSelected(ratio, true);
    }
    ORLO_AUDIO_DEBUG << "Node selection toggled with ratio: " << ratio.toString();
}

void PdPlayer::nodeDeselectAll()
{
    ThreadCheck::audio();
    while (!mNodes.selected().isEmpty())
        nodeSelectToggleByRatio(mNodes.selected().first());
}

void PdPlayer::selectAllSounding()
{
    ThreadCheck::audio();
    for (const OrloRatio& ratio : soundingNow()) {
        if (!mNodes.selected().contains(ratio))
            nodeSelectToggleByRatio(ratio);
    }
}

void PdPlayer::toggleAllSelected()
{
    ThreadCheck::audio();
    mToggleLater.insert(mToggleLater.end(), mNodes.selected().begin(), mNodes.selected().end());
}

QList<OrloRatio> PdPlayer::getAllSelectedRatios() const
{
    ThreadCheck::audio();
    return mNodes.selected().toList();
}

QList<OrloRatio> PdPlayer::getAllRatiosWithAlteredParameters() const
{
    ThreadCheck::audio();
    return mNodes.altered().toList();
}

// ---------------------------------------------------------------- sliders

void PdPlayer::setMacroValue(int macro, float value)
{
    ThreadCheck::audio();
    emit macroValueChanged(macro, value);
    mNodes.slideMacro(static_cast<std::size_t>(macro - 1), value, [&](const OrloRatio& ratio, float own) {
        if (const Voice* voice = mVoices.find(ratio))
            applyMacroValue(macro, own, static_cast<float>(voice->voice));
    });
}

void PdPlayer::applyGlissandoOne(float value)
{
    ThreadCheck::audio();
    ORLO_AUDIO_DEBUG << "Apply gliss one";
    mNodes.slideGlissandoOne(value);
    glissandoToNodes();
}

void PdPlayer::applyGlissandoTwo(float value)
{
    ThreadCheck::audio();
    ORLO_AUDIO_DEBUG << "Apply gliss two";
    mNodes.slideGlissandoTwo(value);
    glissandoToNodes();
}

void PdPlayer::glissandoToNodes()
{
    if (mNodes.selected().isEmpty())
        return;
    const bool open = portOpen();
    clearInstruction();
    for (const OrloRatio& ratio : mNodes.selected()) {
        const Voice* voice = mVoices.find(ratio);
        if (!voice)
            continue;
        const NodeParameters heard = mNodes.heard(ratio);
        float frequency = ratioToFrequency(ratio);
        frequency *= glissandoOneMapping(heard.glissOne);
        frequency *= glissandoTwoMapping(heard.glissTwo);
        alterFrequency(frequency, static_cast<float>(voice->voice));
        if (open)
            addToInstruction(voice->voice, frequency, -1.0F);
    }
    if (!mInstructionVoices.isEmpty())
        emit instructionsToInterface(instructionBend, mInstructionVoices, mInstructionValues1,
                                     mInstructionValues2);
}

float PdPlayer::glissandoOneMapping(float value) const
{
    ThreadCheck::audio();
    ORLO_AUDIO_DEBUG << "Gliss one mapping: range, input: " << mGlissOneRange << value;
    return glissando::factor(mGlissOneRange, value);
}

float PdPlayer::glissandoTwoMapping(float value) const
{
    ThreadCheck::audio();
    ORLO_AUDIO_DEBUG << "Gliss two mapping: range, input: " << mGlissTwoRange << value;
    return glissando::factor(mGlissTwoRange, value);
}

// ---------------------------------------------------------------- resets

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
        * (static_cast<float>(ratio.numerator()) / static_cast<float>(ratio.denominator()));
    ORLO_AUDIO_DEBUG << "Gliss reset applied: Mapping 1, 2, 1*2: " << one << two << one * two;
    alterFrequency(frequency, static_cast<float>(voice->voice));
    if (portOpen())
        sendInstruction(instructionBend, voice->voice, frequency, -1.0F);
}

/// What a note that starts now would get, given to a voice that goes on.
void PdPlayer::restoreVoiceInPlace(const OrloRatio& ratio, const Voice& voice)
{
    applyAllCurrentMacroValues(static_cast<float>(voice.voice));
    if (!voice.released) // at its note-off a fading note has lost what it started with
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

// ---------------------------------------------------------------- around a change of patch

void PdPlayer::writeToCache()
{
    cachedSounding.clear();
    for (const OrloRatio& ratio : soundingNow())
        cachedSounding.append(ratio);
    mNodes.writeToCache(maintainMacroParameters());
}

void PdPlayer::readFromCache()
{
    mNodes.readFromCache();
    if (maintainMacroParameters()) {
        const auto& macros = mNodes.cached().macros;
        emit setMacroSliders(QList<float>(macros.begin(), macros.end()));
    }
    // What was pressed while there was no patch has not been heard yet.
    for (const OrloRatio& ratio : soundingNow()) {
        noteOff(ratio);
        cachedSounding.append(ratio);
    }
    for (const OrloRatio& ratio : cachedSounding)
        noteOn(ratio);
    cachedSounding.clear();
    for (const OrloRatio& ratio : mNodes.cachedSelection()) {
        if (!mNodes.selected().contains(ratio))
            nodeSelectToggleByRatio(ratio);
    }
}
