#pragma once

#include <optional>
#include <span>

/// What a recording holds. All frequencies in Hz, all rates in frames per second.
namespace tone {

/// Root mean square.
double level(std::span<const float> recording);

/// Of the partial at this frequency; tones beside it that are 90 Hz or more away do not count.
/// The median over short windows, so a few missing blocks do not count either.
double amplitudeAt(std::span<const float> recording, double frequency, double rate);

/// The pitch of the partial that lies next to this frequency, within half a semitone, of any steady
/// tone whose other partials are 90 Hz or more away. Empty when there is hardly any.
std::optional<double> pitchNear(std::span<const float> recording, double frequency, double rate);

/// The same of one sine, to a few thousandths of a cent: the median over the windows that hold this sine
/// and nothing else. Empty when fewer than a third of them do.
std::optional<double> pitchOfSine(std::span<const float> recording, double near, double rate);

double centsBetween(double frequency, double reference);

/// How far a partial lies from the frequency, by its phase under two long windows at the end. Errors of
/// up to a few Hz are told; infinite for a partial that is not there.
double centsOff(std::span<const float> recording, double frequency, double rate);

/// Loudness of the loudest 400 ms, weighted as ITU-R BS.1770 does, in dB of full scale.
double loudness(std::span<const float> left, std::span<const float> right, double rate);

} // namespace tone
