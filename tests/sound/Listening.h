#pragma once

#include <vector>

/// What an ear or a meter would say of a rendered sound. Rates in frames per second.
namespace listening {

struct Stereo
{
    std::vector<float> left;
    std::vector<float> right;

    std::vector<float> both() const; // the sum of the sides
    void append(const Stereo& more);
};

/// Loudness of the loudest 400 ms, weighted as ITU-R BS.1770 does, in dB of full scale.
double loudness(const Stereo& sound, double rate);

/// How far a partial lies from the frequency, by its phase under two Hann windows, one at either
/// end. Errors up to a few Hz are told; a partial that is not there gives a huge one.
double centsOff(const std::vector<float>& sound, double frequency, double rate);

/// How deeply the loudness of a band of some 80 Hz beats at a rate: 0 not at all, near 1 fully.
double beating(const std::vector<float>& sound, double band, double beat, double rate);

} // namespace listening
