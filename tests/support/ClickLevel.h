#pragma once

#include <vector>

/// The loudest of the sound's parts above 9 kHz, as dB of full scale, at 44100 Hz: what a click is heard by.
double clickLevel(const std::vector<float>& sound);
