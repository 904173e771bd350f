#include "ui/panel/SliderSnapBack.h"

#include <QSlider>

void SliderSnapBack::add(QSlider* slider, const std::function<int()>& defaultPosition)
{
    connect(slider, &QSlider::sliderReleased, this, [this, slider, defaultPosition] {
        if (mAltDown)
            slider->setValue(defaultPosition());
    });
}
