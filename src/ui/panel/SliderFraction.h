#pragma once

class QSlider;
class QString;

/// Where a slider stands in its range, 0 to 1.
float sliderFraction(const QSlider* slider);

/// The same as "75%".
QString percentText(const QSlider* slider);

/// Moves the slider there, to the nearest position and from a half away from zero. Its signals are
/// blocked, so that a value from the player is not sent back to it.
void setSliderFraction(QSlider* slider, float fraction);
