#pragma once

#include "harmony/WideRatio.h"

#include <QString>

#include <optional>
#include <span>

/// The names of intervals and commas, as the literature has them: ratios of primes up to 31, each above 1/1
/// and not above 2/1. [any]
namespace intervalnames {

struct Entry
{
    unsigned long long numerator = 1; // lowest terms, larger than the denominator
    unsigned long long denominator = 1;
    const char* name = ""; // plain ASCII, lower case but for proper names
    bool isComma = false;  // one that drifts and near misses are told by: below 66 cents
};

/// Ascending by size; no ratio and no name twice. The file is IntervalTable.cpp.
std::span<const Entry> table();

/// The name of an exact ratio above 0, in either direction; a wider interval as "perfect fifth + 2 octaves",
/// or as "2 octaves" alone. Empty for 1/1, and when the table does not have it.
QString nameOf(const WideRatio& ratio);
/// The commas alone, in either direction, without octaves added.
QString commaNameOf(const WideRatio& ratio);

/// A ratio as so many of one comma: 6561/6400 is two syntonic commas. Of several commas the one that it takes
/// the fewest of, and of those the smallest.
struct CommaPower
{
    int count = 0; // 2 and above; the ratio may lie below 1
    QString name;
};
std::optional<CommaPower> powerOfComma(const WideRatio& ratio);

/// The named interval nearest to a size in cents, of numerator and denominator up to 64, and how far the size
/// lies above it. Downward intervals count by their size. Nothing within `within` cents: no value.
struct Near
{
    const Entry* entry = nullptr;
    int octaves = 0;
    double cents = 0.0; // the size minus the named interval
};
std::optional<Near> nearestTo(double cents, double within);
/// With its octaves, as above.
QString nameOf(const Near& found);

} // namespace intervalnames
