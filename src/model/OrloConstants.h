#pragma once

#include <boost/rational.hpp>

#include <array>

/// The primes of the lattice and their octave-reduced ratios.
namespace OrloConstants {

using Rational = boost::rational<unsigned long long>;

constexpr int HIGHEST_PRIME = 31;

/// 1 and the eleven primes, ascending.
extern const std::array<int, 12> PRIMES;

/// Octave-reduced value of each prime, indexed by the prime itself; -1.0 elsewhere.
extern const std::array<float, HIGHEST_PRIME + 1> PRIME_RATIOS;

/// The same exactly: a prime over the largest power of 2 below it, and 2/1. Indexed by the prime
/// itself; the entries elsewhere mean nothing.
extern const std::array<Rational, HIGHEST_PRIME + 1> PRIME_RATIONALS;

/// True for the eleven primes and their negatives.
bool isValidPrime(int step);

/// The power of 2 that stands below `prime` in its rational.
unsigned long long octaveDivisor(int prime);

} // namespace OrloConstants
