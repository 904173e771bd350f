#pragma once

#include <chrono>
#include <optional>

/// Lets a controller take a slider over without a jump: it moves the slider once it has passed the place
/// where the slider stands, and loses it again when something else moves the slider.
class TakeOver
{
public:
    using Time = std::chrono::steady_clock::time_point;

    /// The engine reports each value back a moment later, so for this long after a move the slider may
    /// show an earlier one.
    static constexpr std::chrono::milliseconds ECHO{250};

    /// In positions.
    struct Slider
    {
        int minimum;
        int maximum;
        int now;
        bool centred = false; // the controller's middle is the slider's
    };

    /// The slider's position for a controller's value of 0 to 127; both ends and, of a centred one, the
    /// middle (64) are met exactly.
    static int positionOf(int value, const Slider& slider);

    /// What the controller has sent. Where the slider goes; empty: it stays.
    std::optional<int> move(int value, const Slider& slider, Time now);

private:
    bool reaches(int value, const Slider& slider) const;

    std::optional<int> mLast;  // where the controller was
    std::optional<int> mPutAt; // where it put the slider, while the slider is its own
    Time mPutWhen;
};
