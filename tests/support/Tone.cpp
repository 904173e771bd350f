#include "support/Tone.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
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

double hann(size_t i, size_t count)
{
    return 0.5 - 0.5 * std::cos(TWO_PI * (static_cast<double>(i) + 0.5) / static_cast<double>(count));
}

/// The partial at this frequency under a Hann window: its amplitude and its phase at the first frame.
std::complex<double> partial(std::span<const float> frames, double frequency, double rate)
{
    std::complex<double> sum;
    for (size_t i = 0; i < frames.size(); ++i)
        sum += std::polar(hann(i, frames.size()) * static_cast<double>(frames[i]),
                          -TWO_PI * frequency * static_cast<double>(i) / rate);
    return 4.0 * sum / static_cast<double>(frames.size()); // half of the weight is the window's
}

/// From one window to the next, so many frames later, the phase moves on by what the supposed pitch is wrong.
double pitchBetween(std::complex<double> before, std::complex<double> after, size_t frames, double supposed,
                    double rate)
{
    const double seconds = static_cast<double>(frames) / rate;
    const double error =
        std::remainder(std::arg(after) - std::arg(before) - TWO_PI * supposed * seconds, TWO_PI);
    return supposed + error / (TWO_PI * seconds);
}

/// The median over the windows, or over those alone that hold nothing else.
std::optional<double> pitchOfWindows(std::span<const float> recording, double supposed, double rate,
                                     bool pure)
{
    std::vector<double> pitches;
    size_t windows = 0;
    for (size_t from = 0; from + WINDOW <= recording.size(); from += HALF_WINDOW) {
        const auto window = recording.subspan(from, WINDOW);
        const auto before = partial(window.first(HALF_WINDOW), supposed, rate);
        const auto after = partial(window.last(HALF_WINDOW), supposed, rate);
        const double amplitude = tone::level(window) * std::numbers::sqrt2;
        const auto isPure = [amplitude](const std::complex<double>& half) {
            return amplitude > 0.0 && std::abs(std::abs(half) / amplitude - 1.0) <= PURE_WITHIN;
        };
        ++windows;
        if (!pure || (isPure(before) && isPure(after)))
            pitches.push_back(pitchBetween(before, after, HALF_WINDOW, supposed, rate));
    }
    if (windows == 0 || pitches.size() * 3 < windows)
        return std::nullopt;
    return median(pitches);
}

struct Biquad
{
    double b0, b1, b2, a1, a2;
    double z1 = 0.0, z2 = 0.0;

    double run(double in)
    {
        const double out = b0 * in + z1;
        z1 = b1 * in - a1 * out + z2;
        z2 = b2 * in - a2 * out;
        return out;
    }
};

/// Adds to the running sums. The shelf of the head and the high pass, from their analogue values,
/// so that any rate will do.
void addWeightedEnergy(std::span<const float> side, double rate, std::vector<double>& sums)
{
    const double k = std::tan(std::numbers::pi * 1681.974450955533 / rate);
    const double q = 0.7071752369554196;
    const double high = std::pow(10.0, 3.999843853973347 / 20.0);
    const double band = std::pow(high, 0.4996667741545416);
    const double a = 1.0 + k / q + k * k;
    Biquad shelf{(high + band * k / q + k * k) / a, 2.0 * (k * k - high) / a,
                 (high - band * k / q + k * k) / a, 2.0 * (k * k - 1.0) / a, (1.0 - k / q + k * k) / a};
    const double h = std::tan(std::numbers::pi * 38.13547087602444 / rate);
    const double hq = 0.5003270373238773;
    const double ha = 1.0 + h / hq + h * h;
    Biquad highPass{1.0, -2.0, 1.0, 2.0 * (h * h - 1.0) / ha, (1.0 - h / hq + h * h) / ha};
    double sum = 0.0;
    for (size_t i = 0; i < side.size(); ++i) {
        const double out = highPass.run(shelf.run(static_cast<double>(side[i])));
        sums[i + 1] += sum += out * out;
    }
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

std::optional<double> pitchNear(std::span<const float> recording, double frequency, double rate)
{
    if (level(recording) < 1e-4)
        return std::nullopt;
    // Twice, since the window's measure is best close to the frequency that it is told.
    const auto rough = pitchOfWindows(recording, frequency, rate, false);
    return rough ? pitchOfWindows(recording, *rough, rate, false) : std::nullopt;
}

std::optional<double> pitchOfSine(std::span<const float> recording, double near, double rate)
{
    const auto rough = pitchNear(recording, near, rate);
    return rough ? pitchOfWindows(recording, *rough, rate, true) : std::nullopt;
}

double centsBetween(double frequency, double reference)
{
    return 1200.0 * std::log2(frequency / reference);
}

double centsOff(std::span<const float> recording, double frequency, double rate)
{
    const size_t window = frequency < 100.0 ? 32768 : 16384; // the next partial must stay outside
    const size_t apart = window / 2;
    constexpr double leastAmplitude = 1e-6;
    if (recording.size() < window + apart)
        return std::numeric_limits<double>::infinity();
    const auto before = partial(recording.last(window + apart).first(window), frequency, rate);
    const auto after = partial(recording.last(window), frequency, rate);
    if (std::min(std::abs(before), std::abs(after)) < leastAmplitude)
        return std::numeric_limits<double>::infinity();
    return centsBetween(pitchBetween(before, after, apart, frequency, rate), frequency);
}

double loudness(std::span<const float> left, std::span<const float> right, double rate)
{
    std::vector<double> sums(left.size() + 1);
    addWeightedEnergy(left, rate, sums);
    addWeightedEnergy(right, rate, sums);
    const auto window = std::min(static_cast<size_t>(0.4 * rate), left.size());
    double loudest = 0.0;
    for (size_t at = window; at < sums.size(); ++at)
        loudest = std::max(loudest, sums[at] - sums[at - window]);
    return 10.0 * std::log10(loudest / static_cast<double>(window) + 1e-20);
}

} // namespace tone
