#pragma once

#include "model/OrloRatio.h"

#include <QString>

#include <boost/multiprecision/cpp_int.hpp>

/// A ratio of whole numbers of any size, in lowest terms: what lies between two exact pitches may need more
/// than the 64 bits of each. [any]
using WideInt =
    boost::multiprecision::number<boost::multiprecision::cpp_int_backend<>, boost::multiprecision::et_off>;
using WideRatio = boost::multiprecision::number<
    boost::multiprecision::rational_adaptor<boost::multiprecision::cpp_int_backend<>>,
    boost::multiprecision::et_off>;

namespace wideratio {

/// A ratio that is not 0.
WideRatio of(const OrloRatio& ratio);
/// From the first up to the second; below 1 when that lies lower.
WideRatio between(const OrloRatio& low, const OrloRatio& high);
/// "n/d", whole numbers too.
QString text(const WideRatio& ratio);
/// Of a ratio above 0; right to a billionth of a cent for numbers of any size.
double cents(const WideRatio& ratio);
/// log2(n d), the harmonic distance of James Tenney.
double harmonicDistance(const WideRatio& ratio);
/// The highest prime factor of numerator and denominator up to 31, at least 1; 0 when a factor above
/// 31 is left.
int primeLimit(const WideRatio& ratio);
/// Moved by whole octaves into -600 to below 600 cents, and how many octaves were taken out:
/// ratio == reduced * 2^octaves.
struct OctaveParts
{
    WideRatio reduced;
    int octaves = 0;
};
OctaveParts withoutOctaves(const WideRatio& ratio);

} // namespace wideratio
