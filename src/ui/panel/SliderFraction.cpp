#include "ui/panel/SliderFraction.h"

#include <QSignalBlocker>
#include <QSlider>

#include <cmath>

float sliderFraction(const QSlider* slider)
{
    return static_cast<float>(slider->value() - slider->minimum())
           / static_cast<float>(slider->maximum() - slider->minimum());
}

QString percentText(const QSlider* slider)
{
    return QStringLiteral("%1%").arg(std::lround(100.0F * sliderFraction(slider)));
}

void setSliderFraction(QSlider* slider, float fraction)
{
    const QSignalBlocker blocker(slider);
    const float span = static_cast<float>(slider->maximum() - slider->minimum());
    slider->setValue(static_cast<int>(std::round(static_cast<float>(slider->minimum()) + span * fraction)));
}
