#pragma once

#include <QString>

#include <optional>

/// How cards and readout write numbers.
namespace texts {

/// Digits behind the point, fewer the higher the pitch: 5 below 10 Hz, 1 from 10000 Hz.
int frequencyDecimals(float frequency);

/// Two decimals, half away from zero.
double roundedCents(float cents);
/// With its sign, for cents that are rounded.
QString centsText(double cents, int decimals);

/// The two numbers of a ratio's text, if it is one; they may not fit in int, or be zero.
struct RatioParts
{
    QString numerator;
    QString denominator;

    /// Both positive and within int.
    bool areWithinBounds() const;
};
std::optional<RatioParts> ratioParts(const QString& ratio);

} // namespace texts
