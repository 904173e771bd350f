#pragma once

#include <QString>

/// How a deviation in cents is rounded and written, on cards and in the options.
namespace texts {

/// Two decimals, half away from zero.
double roundedCents(float cents);
/// With its sign, for cents that are rounded.
QString centsText(double cents, int decimals);

} // namespace texts
