#pragma once

#include "model/OrloRatio.h"

#include <array>

/// A just ratio for each of the twelve equal steps. Any thread.
namespace twelvesteps {

inline constexpr int STEPS = 12;

/// Among the ratios from 1 to 2 without a prime beyond the limit, whose numerator times denominator fits in
/// 64 bits, each step has the one with the lowest such product within the window, in cents to either side.
/// Where none lies in the window it is the nearest one.
///
/// Of equal products the nearer one, of equally near ones the lower product: 45/32 goes before 64/45, and
/// 1/1 before 2/1. The limit is one of the primes from 2 to 31.
std::array<OrloRatio, STEPS> ratios(int primeLimit, double window);

} // namespace twelvesteps
