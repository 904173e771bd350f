// The part of the player that keeps what nodes carry beyond their sound: selection, macros and
// detuning of their own, glissando, resets, and the cache around a change of patch.

#include "sound/PdPlayer.h"

#include "app/Accessors.h"
#include "app/LogFilter.h"
#include "app/Settings.h"
#include "model/Orlo.h"
#include "sound/MacroList.h"

#include <cmath>
#include <optional>

namespace {

bool softNodeReset()
{
    const Settings* settings = app::settings();
    return settings && settings->softNodeReset;
}

bool maintainMacroParameters()
{
    const Settings* settings = app::settings();
    return settings && settings->maintainMacroParameters;
}

float glissandoMapping(float rangeCents, float value)
{
    return static_cast<float>(
        std::exp2(static_cast<double>(rangeCents) * 2.0 * (static_cast<double>(value) - 0.5) / 1200.0));
}

/// Selection and reset of one node carry the ratio as the lattice knows it. Empty for what is no
/// pitch or does not fit.
std::optional<OrloRatio> absoluteForm(const OrloRatio& relative)
{
    const PublishedRatio::Value by =
        app::orlo() ? app::orlo()->publishedTransposition() : PublishedRatio::Value{1, 1};
    OrloRatio ratio(by.numerator, by.denominator);
    if (relative.numerator() == 0 || !ratio.fitsWhenMultipliedWith(relative))
        return std::nullopt;
    ratio *= relative;
    return ratio;
}

/// 0 both, 1 or 2.
void resetPair(NodeParameters& parameters, const NodeParameters& to, short which)
{
    if (which == 0 || which == 1)
        parameters.glissOne = to.glissOne;
    if (which == 0 || which == 2)
        parameters.glissTwo = to.glissTwo;
}

/// `base` plus `sign` times `by`, in every field.
void addParameters(NodeParameters& base, float sign, const NodeParameters& by)
{
    base.glissOne += sign * by.glissOne;
    base.glissTwo += sign * by.glissTwo;
    for (size_t i = 0; i < base.macros.size(); ++i)
        base.macros[i] += sign * by.macros[i];
}

} // namespace

// ---------------------------------------------------------------- commands

void PdPlayer::onNodesResetSelected(const Chunk& chunk)
{
    resetSelectedNodes(chunk.type == OrloEvent::NodesResetSelectedDeselect);
}

void PdPlayer::onNodesResetAll(const Chunk& chunk)
{
    const bool controls = chunk.type == OrloEvent::NodesResetAllAndControls
                          || chunk.type == OrloEvent::NodesResetAllAndControlsDeselect;
    const bool deselect = chunk.type == OrloEvent::NodesResetAllDeselect
                          || chunk.type == OrloEvent::NodesResetAllAndControlsDeselect;
    resetAllNodes(controls, deselect);
}

void PdPlayer::onGlissReset(const Chunk& chunk)
{
    // One, two, both.
    const int which = chunk.type == OrloEvent::GlissBothReset ? 0 : chunk.type - OrloEvent::GlissOneReset + 1;
    resetGlissandoAllNodes(static_cast<short>(which));
}

void PdPlayer::onNodesToggleAllSelected(const Chunk&)
{
    toggleAllSelected();
}

void PdPlayer::onNodesSelectAllSounding(const Chunk&)
{
    selectAllSounding();
}

void PdPlayer::onMacroSet(const Chunk& chunk)
{
    setMacroValue(chunk.type - OrloEvent::Macro1Set + 1, chunk.value);
}

void PdPlayer::onGlissOneSet(const Chunk& chunk)
{
    applyGlissandoOne(chunk.value);
}

void PdPlayer::onGlissTwoSet(const Chunk& chunk)
{
    applyGlissandoTwo(chunk.value);
}

void PdPlayer::onNodeSelectToggle(const Chunk& chunk)
{
    if (const auto ratio = absoluteForm(chunk.ratio))
        nodeSelectToggleByRatio(*ratio);
}

void PdPlayer::onNodeReset(const Chunk& chunk)
{
    if (const auto ratio = absoluteForm(chunk.ratio))
        nodeResetOne(*ratio, chunk.value != 0.0F);
}

// ---------------------------------------------------------------- selection

void PdPlayer::nodeSelectToggleByRatio(OrloRatio ratio)
{
    if (selectedNodes.contains(ratio)) {
        addParameters(nodeRecord(ratio), 1.0F, currentParameters);
        selectedNodes.remove(ratio);
        emit nodeSelected(ratio, false);
    } else {
        selectedNodes.append(ratio);
        if (!alteredNodes.contains(ratio))
            makeNode(ratio);
        addParameters(nodeRecord(ratio), -1.0F, currentParameters);
        emit nodeSelected(ratio, true);
    }
    ORLO_AUDIO_DEBUG << "Node selection toggled with ratio: " << ratio.toString();
}

/// A node that is selected while it sounds keeps the macros with which it started.
void PdPlayer::makeNode(const OrloRatio& ratio)
{
    alteredNodes.append(ratio);
    emit nodeAltered(ratio, true);
    alteredParameters[ratio] =
        NodeParameters{soundingParameters.value(ratio, NodeParameters{currentParameters.macros}).macros};
}

void PdPlayer::nodeDeselectAll()
{
    while (!selectedNodes.isEmpty())
        nodeSelectToggleByRatio(selectedNodes.first());
}

void PdPlayer::selectAllSounding()
{
    for (const OrloRatio& ratio : soundingNow()) {
        if (!selectedNodes.contains(ratio))
            nodeSelectToggleByRatio(ratio);
    }
}

void PdPlayer::toggleAllSelected()
{
    mToggleLater.insert(mToggleLater.end(), selectedNodes.begin(), selectedNodes.end());
}

// ---------------------------------------------------------------- sliders

void PdPlayer::setMacroValue(int macro, float value)
{
    const auto index = static_cast<size_t>(macro - 1);
    currentParameters.macros.at(index) = value;
    emit macroValueChanged(macro, value);
    for (const OrloRatio& ratio : selectedNodes) {
        float& stored = nodeRecord(ratio).macros[index];
        float effective = stored + value;
        if (effective >= 1.0F) {
            stored = 1.0F - value;
            effective = 1.0F;
        } else if (effective <= 0.0F) {
            stored = 0.0F - value;
            effective = 0.0F;
        }
        if (const Voice* voice = mVoices.find(ratio))
            applyMacroValue(macro, effective, static_cast<float>(voice->voice));
    }
}

void PdPlayer::applyGlissandoOne(float value)
{
    ORLO_AUDIO_DEBUG << "Apply gliss one";
    currentParameters.glissOne = value;
    if (!mPatch)
        cachedParameters.glissOne = value; // the next patch shall not jump back behind it
    glissandoToNodes();
}

void PdPlayer::applyGlissandoTwo(float value)
{
    ORLO_AUDIO_DEBUG << "Apply gliss two";
    currentParameters.glissTwo = value;
    if (!mPatch)
        cachedParameters.glissTwo = value;
    glissandoToNodes();
}

void PdPlayer::glissandoToNodes()
{
    if (selectedNodes.isEmpty())
        return;
    const bool open = portOpen();
    clearInstruction();
    for (const OrloRatio& ratio : selectedNodes) {
        const Voice* voice = mVoices.find(ratio);
        if (!voice)
            continue;
        const NodeParameters& node = nodeRecord(ratio);
        const float frequency = glissedFrequency(ratio, currentParameters.glissOne + node.glissOne,
                                                 currentParameters.glissTwo + node.glissTwo);
        alterFrequency(frequency, static_cast<float>(voice->voice));
        if (open)
            addToInstruction(voice->voice, frequency, -1.0F);
    }
    if (!mInstructionVoices.isEmpty())
        emit instructionsToInterface(instructionBend, mInstructionVoices, mInstructionValues1,
                                     mInstructionValues2);
}

float PdPlayer::glissedFrequency(const OrloRatio& ratio, float glissOne, float glissTwo) const
{
    float frequency = ratioToFrequency(ratio);
    frequency *= glissandoOneMapping(glissOne);
    frequency *= glissandoTwoMapping(glissTwo);
    return frequency;
}

float PdPlayer::glissandoOneMapping(float value) const
{
    ORLO_AUDIO_DEBUG << "Gliss one mapping: range, input: " << mGlissOneRange << value;
    return glissandoMapping(mGlissOneRange, value);
}

float PdPlayer::glissandoTwoMapping(float value) const
{
    ORLO_AUDIO_DEBUG << "Gliss two mapping: range, input: " << mGlissTwoRange << value;
    return glissandoMapping(mGlissTwoRange, value);
}

// ---------------------------------------------------------------- resets

/// A macro without a default in the patch stays where its slider is.
float PdPlayer::defaultMacro(int index) const
{
    const auto macro = static_cast<size_t>(index);
    const float value = defaultParameters.macros[macro];
    return MacroList::isDefault(value) ? value : currentParameters.macros[macro];
}

void PdPlayer::nodeResetParameters(const OrloRatio& ratio)
{
    NodeParameters& node = nodeRecord(ratio);
    node.glissOne = defaultParameters.glissOne;
    node.glissTwo = defaultParameters.glissTwo;
    ORLO_AUDIO_DEBUG << "Node reset parameters: ratio, np0, np1: " << ratio.toStringAbs() << node.glissOne
                     << node.glissTwo;
    for (int i = 0; i < NodeParameters::MACRO_COUNT; ++i)
        node.macros[static_cast<size_t>(i)] = defaultMacro(i);
    emit nodeAltered(ratio, false);
}

void PdPlayer::nodeResetGlissando(const OrloRatio& ratio, short which)
{
    const NodeParameters& source = which < 1 ? defaultParameters : nodeRecord(ratio);
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
    if (!voice.released) // a fading note has none; it took them along at its note-off
        setSoundingParameters(ratio);
}

void PdPlayer::setSoundingParameters(const OrloRatio& ratio)
{
    soundingParameters[ratio] = NodeParameters{currentParameters.macros};
}

void PdPlayer::nodeResetOne(OrloRatio ratio, bool deselect)
{
    Voice* voice = mVoices.find(ratio);
    if (alteredNodes.contains(ratio)) {
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
    const bool wasSelected = selectedNodes.contains(ratio);
    if (soft && voice)
        noteOff(ratio);
    if (wasSelected)
        nodeSelectToggleByRatio(ratio);
    nodeResetParameters(ratio);
    if (!soft && voice) {
        nodeResetGlissando(ratio, 0);
        restoreVoiceInPlace(ratio, *voice);
    }
    alteredNodes.remove(ratio);
    if (wasSelected && !deselect)
        nodeSelectToggleByRatio(ratio);
    if (soft && voice)
        noteOn(ratio);
}

void PdPlayer::resetSelectedNodes(bool deselect)
{
    mFormerlySelected.assign(selectedNodes.begin(), selectedNodes.end());
    for (const OrloRatio& ratio : mFormerlySelected)
        nodeResetOne(ratio, deselect);
}

void PdPlayer::resetAllNodes(bool resetControls, bool deselect)
{
    const bool soft = softNodeReset();
    const SoundingRatios sounding = soundingNow();
    mFormerlySelected.assign(selectedNodes.begin(), selectedNodes.end());
    if (soft)
        allNotesOff(true);
    nodeDeselectAll();
    for (const OrloRatio& ratio : alteredNodes) {
        if (!soft)
            nodeResetGlissando(ratio, 0);
        nodeResetParameters(ratio);
    }
    alteredNodes.clear();
    if (resetControls) {
        const auto count = qMin<qsizetype>(mMacroDefaults.size(), NodeParameters::MACRO_COUNT);
        for (int i = 0; i < count; ++i)
            setMacroValue(i + 1, defaultMacro(i));
        emit resetGlissSliders(0);
        resetCurrentGlissando(0);
        for (int i = 0; i < NodeParameters::MACRO_COUNT; ++i)
            currentParameters.macros[static_cast<size_t>(i)] = defaultMacro(i);
    }
    soundingParameters.clear();
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

void PdPlayer::resetCurrentGlissando(short which)
{
    resetPair(currentParameters, defaultParameters, which);
    if (!mPatch)
        resetPair(cachedParameters, defaultParameters, which); // as by a move of the slider
}

void PdPlayer::resetGlissandoAllNodes(short which)
{
    ORLO_AUDIO_DEBUG << "Node reset: current0, current1: " << currentParameters.glissOne
                     << currentParameters.glissTwo;
    emit resetGlissSliders(which);
    mFormerlySelected.assign(selectedNodes.begin(), selectedNodes.end());
    nodeDeselectAll();
    resetCurrentGlissando(which);
    for (const OrloRatio& ratio : alteredNodes) {
        NodeParameters& node = nodeRecord(ratio);
        resetPair(node, defaultParameters, which);
        ORLO_AUDIO_DEBUG << "Node reset: ratio, np0, np1, default, current0, current1: " << ratio.toString()
                         << node.glissOne << node.glissTwo << defaultParameters.glissOne
                         << currentParameters.glissOne << currentParameters.glissTwo;
        nodeResetGlissando(ratio, which);
    }
    // The options dialog changes a range and then asks for this reset.
    if (const Settings* settings = app::settings()) {
        mGlissOneRange = settings->glissOneRangeCents;
        mGlissTwoRange = settings->glissTwoRangeCents;
    }
    for (const OrloRatio& ratio : mFormerlySelected)
        nodeSelectToggleByRatio(ratio);
}

// ---------------------------------------------------------------- around a change of patch

void PdPlayer::writeToCache()
{
    cachedSounding.clear();
    for (const OrloRatio& ratio : soundingNow())
        cachedSounding.append(ratio);
    cachedSelected.clear();
    for (const OrloRatio& ratio : selectedNodes)
        cachedSelected.append(ratio);
    cachedParameters.glissOne = currentParameters.glissOne;
    cachedParameters.glissTwo = currentParameters.glissTwo;
    if (maintainMacroParameters())
        cachedParameters.macros = currentParameters.macros;
}

void PdPlayer::readFromCache()
{
    currentParameters.glissOne = cachedParameters.glissOne;
    currentParameters.glissTwo = cachedParameters.glissTwo;
    if (maintainMacroParameters())
        emit setMacroSliders(QList<float>(cachedParameters.macros.begin(), cachedParameters.macros.end()));
    // What was pressed while there was no patch has not been heard yet.
    for (const OrloRatio& ratio : soundingNow()) {
        noteOff(ratio);
        cachedSounding.append(ratio);
    }
    for (const OrloRatio& ratio : cachedSounding)
        noteOn(ratio);
    for (const OrloRatio& ratio : cachedSelected) {
        if (!selectedNodes.contains(ratio))
            nodeSelectToggleByRatio(ratio);
    }
    cachedSounding.clear();
    cachedSelected.clear();
}
