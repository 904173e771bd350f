#include "keyboard/TakeOver.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int HIGHEST = 127;
constexpr int MIDDLE = 64;

/// The place of `value` between two values, in positions.
int between(int value, int low, int high, int from, int to)
{
    const double part = static_cast<double>(value - low) / (high - low);
    return from + static_cast<int>(std::lround(part * (to - from)));
}

} // namespace

int TakeOver::positionOf(int value, const Slider& slider)
{
    value = std::clamp(value, 0, HIGHEST);
    if (!slider.centred)
        return between(value, 0, HIGHEST, slider.minimum, slider.maximum);
    const int centre = slider.minimum + (slider.maximum - slider.minimum) / 2;
    return value < MIDDLE ? between(value, 0, MIDDLE, slider.minimum, centre)
                          : between(value, MIDDLE, HIGHEST, centre, slider.maximum);
}

/// The slider stands no further away than the controller's neighbouring values, or the controller has
/// passed it since the last time.
bool TakeOver::reaches(int value, const Slider& slider) const
{
    const int low = positionOf(value - 1, slider);
    const int high = positionOf(value + 1, slider);
    return slider.now >= std::min(low, mLast.value_or(low))
           && slider.now <= std::max(high, mLast.value_or(high));
}

std::optional<int> TakeOver::move(int value, const Slider& slider, Time now)
{
    const int position = positionOf(value, slider);
    const bool isOwn = mPutAt && (slider.now == *mPutAt || now - mPutWhen < ECHO);
    const bool takes = isOwn || reaches(value, slider);
    mLast = position;
    if (!takes) {
        mPutAt.reset();
        return std::nullopt;
    }
    mPutAt = position;
    mPutWhen = now;
    return position;
}
