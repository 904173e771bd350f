#pragma once

#include <utility>

/// Numerator and denominator of a ratio under way: not in lowest terms, and the denominator may be 0.
using RatioFraction = std::pair<unsigned long long, unsigned long long>;
