#include "external/MidiNote.h"

#include <cmath>
#include <limits>

namespace midi {

namespace {

constexpr double A4_HZ = 440.0;
constexpr double A4_NOTE = 69.0;

} // namespace

double noteOfFrequency(float hz)
{
    const double note = std::log2(static_cast<double>(hz) / A4_HZ) * 12.0 + A4_NOTE;
    return std::isnan(note) ? -std::numeric_limits<double>::infinity() : note;
}

} // namespace midi
