#include "sound/Listening.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <functional>
#include <limits>
#include <numbers>

namespace listening {

namespace {

constexpr double PI = std::numbers::pi;

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
void addWeightedEnergy(const std::vector<float>& side, double rate, std::vector<double>& sums)
{
    const double k = std::tan(PI * 1681.974450955533 / rate);
    const double q = 0.7071752369554196;
    const double high = std::pow(10.0, 3.999843853973347 / 20.0);
    const double band = std::pow(high, 0.4996667741545416);
    const double a = 1.0 + k / q + k * k;
    Biquad shelf{(high + band * k / q + k * k) / a, 2.0 * (k * k - high) / a,
                 (high - band * k / q + k * k) / a, 2.0 * (k * k - 1.0) / a, (1.0 - k / q + k * k) / a};
    const double h = std::tan(PI * 38.13547087602444 / rate);
    const double hq = 0.5003270373238773;
    const double ha = 1.0 + h / hq + h * h;
    Biquad highPass{1.0, -2.0, 1.0, 2.0 * (h * h - 1.0) / ha, (1.0 - h / hq + h * h) / ha};
    double sum = 0.0;
    for (size_t i = 0; i < side.size(); ++i) {
        const double out = highPass.run(shelf.run(static_cast<double>(side[i])));
        sum += out * out;
        sums[i + 1] += sum;
    }
}

double hann(size_t i, size_t count)
{
    return 0.5 - 0.5 * std::cos(2.0 * PI * (static_cast<double>(i) + 0.5) / static_cast<double>(count));
}

std::complex<double> partial(const float* frames, size_t count, size_t first, double frequency, double rate)
{
    std::complex<double> sum;
    for (size_t i = 0; i < count; ++i) {
        const double weight = hann(i, count);
        const double turns = std::fmod(frequency * static_cast<double>(first + i) / rate, 1.0);
        sum += std::polar(weight * static_cast<double>(frames[i]), -2.0 * PI * turns);
    }
    return 2.0 * sum / (0.5 * static_cast<double>(count));
}

} // namespace

std::vector<float> Stereo::both() const
{
    std::vector<float> sum(left.size());
    std::transform(left.begin(), left.end(), right.begin(), sum.begin(), std::plus<>());
    return sum;
}

void Stereo::append(const Stereo& more)
{
    left.insert(left.end(), more.left.begin(), more.left.end());
    right.insert(right.end(), more.right.begin(), more.right.end());
}

double loudness(const Stereo& sound, double rate)
{
    std::vector<double> sums(sound.left.size() + 1);
    addWeightedEnergy(sound.left, rate, sums);
    addWeightedEnergy(sound.right, rate, sums);
    const auto window = std::min(static_cast<size_t>(0.4 * rate), sound.left.size());
    double loudest = 0.0;
    for (size_t at = window; at < sums.size(); ++at)
        loudest = std::max(loudest, sums[at] - sums[at - window]);
    return 10.0 * std::log10(loudest / static_cast<double>(window) + 1e-20);
}

double centsOff(const std::vector<float>& sound, double frequency, double rate)
{
    const size_t window = frequency < 100.0 ? 32768 : 16384; // the next partial must stay outside
    const size_t apart = window / 2;
    constexpr double leastAmplitude = 1e-6;
    if (sound.size() < window + apart)
        return std::numeric_limits<double>::infinity();
    const float* end = sound.data() + (sound.size() - window - apart);
    const auto before = partial(end, window, 0, frequency, rate);
    const auto after = partial(end + apart, window, apart, frequency, rate);
    if (std::abs(before) < leastAmplitude || std::abs(after) < leastAmplitude)
        return std::numeric_limits<double>::infinity();
    const double advance =
        std::arg(after * std::conj(before)) / (2.0 * PI) * rate / static_cast<double>(apart);
    return 1200.0 * std::log2(1.0 + advance / frequency);
}

double beating(const std::vector<float>& sound, double band, double beat, double rate)
{
    constexpr size_t window = 1024;
    constexpr size_t step = 128;
    std::vector<double> loud;
    for (size_t at = 0; at + window <= sound.size(); at += step)
        loud.push_back(std::abs(partial(sound.data() + at, window, at, band, rate)));
    std::complex<double> swing;
    double mean = 0.0;
    for (size_t i = 0; i < loud.size(); ++i) {
        const double weight = hann(i, loud.size());
        swing += std::polar(weight * loud[i], -2.0 * PI * beat * static_cast<double>(i * step) / rate);
        mean += weight * loud[i];
    }
    return mean > 0.0 ? 2.0 * std::abs(swing) / mean : 0.0;
}

} // namespace listening
