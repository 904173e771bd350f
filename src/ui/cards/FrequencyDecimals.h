#pragma once

#include <QtGlobal>

namespace texts {

/// Digits behind the point for a frequency in Hz, fewer the higher it is: 1 from 10000 Hz, one more for
/// each power of ten below, 5 from 1 Hz, and 6 below that. Cards and readout have room for 5.
constexpr int frequencyDecimals(double frequency, int most = 5)
{
    int decimals = 6;
    for (double bound = 1.0; decimals > 1 && frequency >= bound; bound *= 10.0)
        --decimals;
    return qMin(decimals, most);
}

} // namespace texts
