#include "support/Tone.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <vector>

namespace tone {

namespace {

constexpr size_t HALF_WINDOW = 2048; // frames
constexpr size_t WINDOW = 2 * HALF_WINDOW;
constexpr double PURE_WITHIN = 0.01; // of the amplitude
constexpr double TWO_PI = 2.0 * std::numbers::pi;

double median(std::vector<double> values)
{
    if (values.empty())
        return 0.0;
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// The partial at this frequency under a Hann window: its amplitude and its phase at the first frame.
std::complex<double> partial(std::span<const float> frames, double frequency, double rate)
{
    std::complex<double> sum;
    double weights = 0.0;
    const auto count = static_cast<double>(frames.size());
    for (size_t i = 0; i < frames.size(); ++i) {
        const auto at = static_cast<double>(i);
        const double weight = 0.5 - 0.5 * std::cos(TWO_PI * (at + 0.5) / count);
        sum += std::polar(weight * static_cast<double>(frames[i]), -TWO_PI * frequency * at / rate);
        weights += weight;
    }
    return 2.0 * sum / weights;
}

/// From the upward crossings of zero; 0 when there are too few.
double roughPitch(std::span<const float> frames, double rate)
{
    double first = 0.0;
    double last = 0.0;
    int crossings = 0;
    for (size_t i = 1; i < frames.size(); ++i) {
        if (frames[i - 1] > 0.0F || frames[i] <= 0.0F)
            continue;
        last = static_cast<double>(i) - static_cast<double>(frames[i] / (frames[i] - frames[i - 1]));
        if (crossings++ == 0)
            first = last;
    }
    return crossings < 3 ? 0.0 : (crossings - 1) * rate / (last - first);
}

/// Between the two halves of a window the phase moves on by what the supposed pitch is wrong.
double pitchBetweenHalves(std::complex<double> before, std::complex<double> after, double supposed,
                          double rate)
{
    const double halfSeconds = static_cast<double>(HALF_WINDOW) / rate;
    const double expected = TWO_PI * supposed * halfSeconds;
    const double error = std::remainder(std::arg(after) - std::arg(before) - expected, TWO_PI);
    return supposed + error / (TWO_PI * halfSeconds);
}

std::optional<double> windowPitch(std::span<const float> window, double rate)
{
    const double rough = roughPitch(window, rate);
    const double amplitude = level(window) * std::numbers::sqrt2;
    if (rough <= 0.0 || amplitude <= 0.0)
        return std::nullopt;
    const std::complex<double> before = partial(window.first(HALF_WINDOW), rough, rate);
    const std::complex<double> after = partial(window.last(HALF_WINDOW), rough, rate);
    for (const auto& half : {before, after}) {
        if (std::abs(std::abs(half) / amplitude - 1.0) > PURE_WITHIN)
            return std::nullopt;
    }
    return pitchBetweenHalves(before, after, rough, rate);
}

} // namespace

double level(std::span<const float> recording)
{
    double sum = 0.0;
    for (const float sample : recording)
        sum += static_cast<double>(sample) * static_cast<double>(sample);
    return recording.empty() ? 0.0 : std::sqrt(sum / static_cast<double>(recording.size()));
}

double amplitudeAt(std::span<const float> recording, double frequency, double rate)
{
    std::vector<double> amplitudes;
    for (size_t from = 0; from + HALF_WINDOW <= recording.size(); from += HALF_WINDOW)
        amplitudes.push_back(std::abs(partial(recording.subspan(from, HALF_WINDOW), frequency, rate)));
    return median(amplitudes);
}

std::optional<double> pitch(std::span<const float> recording, double rate)
{
    std::vector<double> pitches;
    size_t windows = 0;
    for (size_t from = 0; from + WINDOW <= recording.size(); from += HALF_WINDOW) {
        ++windows;
        if (const auto found = windowPitch(recording.subspan(from, WINDOW), rate))
            pitches.push_back(*found);
    }
    if (windows == 0 || pitches.size() * 3 < windows)
        return std::nullopt;
    return median(pitches);
}

std::optional<double> pitchNear(std::span<const float> recording, double frequency, double rate)
{
    if (level(recording) < 1e-4)
        return std::nullopt;
    // Twice, since the window's measure is best close to the frequency that it is told.
    for (int pass = 0; pass < 2; ++pass) {
        std::vector<double> pitches;
        for (size_t from = 0; from + WINDOW <= recording.size(); from += HALF_WINDOW) {
            const auto window = recording.subspan(from, WINDOW);
            pitches.push_back(pitchBetweenHalves(partial(window.first(HALF_WINDOW), frequency, rate),
                                                 partial(window.last(HALF_WINDOW), frequency, rate),
                                                 frequency, rate));
        }
        frequency = median(pitches);
    }
    return frequency;
}

double centsBetween(double frequency, double reference)
{
    return 1200.0 * std::log2(frequency / reference);
}

} // namespace tone
