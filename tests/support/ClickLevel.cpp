#include "support/ClickLevel.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

double clickLevel(const std::vector<float>& sound)
{
    // A high-pass of windowed sine integral; below 8.5 kHz it lets through less than -74 dB.
    constexpr int half = 128;
    constexpr double pi = std::numbers::pi;
    constexpr double corner = 2.0 * 9000.0 / 44100.0;
    std::array<double, 2 * half + 1> filter{};
    for (int i = -half; i <= half; ++i) {
        const double window = 0.42 + 0.5 * std::cos(pi * i / half) + 0.08 * std::cos(2.0 * pi * i / half);
        const double low = i == 0 ? corner : std::sin(pi * corner * i) / (pi * i);
        filter[static_cast<size_t>(i + half)] = window * ((i == 0 ? 1.0 : 0.0) - low);
    }
    double loudest = 0.0;
    double sum = 0.0;
    int inWindow = 0;
    for (size_t at = 0; at + filter.size() <= sound.size(); ++at) {
        double high = 0.0;
        for (size_t i = 0; i < filter.size(); ++i)
            high += filter[i] * static_cast<double>(sound[at + i]);
        sum += high * high;
        if (++inWindow == 64) {
            loudest = std::max(loudest, sum / inWindow);
            sum = 0.0;
            inWindow = 0;
        }
    }
    return 10.0 * std::log10(loudest + 1e-20);
}
