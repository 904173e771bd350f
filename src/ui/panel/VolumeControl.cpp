#include "ui/panel/VolumeControl.h"

#include "app/Settings.h"
#include "sound/PdPlayer.h"
#include "ui/panel/SliderFraction.h"

#include <QSlider>

namespace {

constexpr int KEY_STEP = 2;

} // namespace

VolumeControl::VolumeControl(QSlider* slider, PdPlayer* player)
    : mSlider(slider)
    , mPlayer(player)
{
}

void VolumeControl::queueVolume() const
{
    mPlayer->queueGui(OrloEvent::MasterVolumeSet, sliderFraction(mSlider));
}

void VolumeControl::showVolume(float volume)
{
    setSliderFraction(mSlider, volume);
}

void VolumeControl::setToMinimum()
{
    mSlider->setValue(mSlider->minimum());
}

void VolumeControl::setToDefault()
{
    mSlider->setValue(defaultPosition());
}

void VolumeControl::lower()
{
    if (mSlider->value() >= KEY_STEP)
        mSlider->setValue(mSlider->value() - KEY_STEP);
}

void VolumeControl::raise()
{
    if (mSlider->value() + 1 < mSlider->maximum())
        mSlider->setValue(mSlider->value() + KEY_STEP);
}

QString VolumeControl::valueText() const
{
    return percentText(mSlider);
}

int VolumeControl::defaultPosition() const
{
    return static_cast<int>(mSlider->maximum() * Settings::DEFAULT_VOLUME);
}
