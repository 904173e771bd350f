#pragma once

class OrloPathUnlimited;

/// The colour of a pitch that has no ball of its own to take it from: that of the highest prime on the
/// way to it, the transposition's steps included.
namespace highestprime {

/// The key for Orlo::lookupColor, at least 1. The absolute origin is 1 in the absolute modes, whatever
/// the way was.
int colorKey(const OrloPathUnlimited& path);

} // namespace highestprime
