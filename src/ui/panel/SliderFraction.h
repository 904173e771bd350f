#pragma once

class QSlider;

/// Where a slider stands in its range, 0 to 1.
float sliderFraction(const QSlider* slider);

/// Moves the slider there, to the nearest position and from a half away from zero. Its signals are
/// blocked, so that a value from the player is not sent back to it.
void setSliderFraction(QSlider* slider, float fraction);
