// Which nodes of the player are selected, and the sliders that they follow. This part tells the voices and
// emits the signals; NodeBook has the arithmetic.

#include "sound/PdPlayer.h"

#include "app/Accessors.h"
#include "app/LogFilter.h"
#include "app/Settings.h"
#include "sound/GlissandoMapping.h"
#include "sound/TemperedRatio.h"
#include "sound/ThreadCheck.h"

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
        if (!mNodes.selected().contains(ratio) && !temperedratio::is(ratio))
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
    const auto index = static_cast<std::size_t>(macro - 1);
    mNodes.setMacro(index, value);
    emit macroValueChanged(macro, value);
    mNodes.followMacro(index, [&](const OrloRatio& ratio, float own) {
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
        const float frequency = glidedFrequency(*voice);
        alterFrequency(frequency, static_cast<float>(voice->voice));
        if (open)
            addToInstruction(voice->voice, frequency, -1.0F);
    }
    sendBends();
}

void PdPlayer::takeGlissandoRanges()
{
    if (const Settings* settings = app::settings()) {
        mGlissOneRange = settings->glissOneRangeCents;
        mGlissTwoRange = settings->glissTwoRangeCents;
    }
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
