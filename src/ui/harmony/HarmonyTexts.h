#pragma once

#include "harmony/Harmony.h"

/// What the harmony panel says of notes that sound together. [gui]
namespace harmonytexts {

/// Stands before all that is near, not equal.
constexpr QChar NEAR_SIGN(0x2248);

/// A whole number, or "(a number of 120 digits)" for one that nobody reads.
QString number(const WideInt& number);

// The chord as whole numbers; empty with fewer than two notes that have any.
QString otonal(const Harmony& harmony); // "4 : 5 : 6"
QString utonal(const Harmony& harmony); // "1/(6 : 5 : 4)"
/// "5", or "beyond 31"; empty with fewer than two such notes.
QString limit(const Harmony& harmony);
/// "110.000 Hz, A2 +0.0 cents; the lowest note is its harmonic 4"
QString fundamental(const Harmony& harmony);
/// What the chord leaves out: "2 notes are near, not exact."; or what it takes to be one. Empty:
/// nothing.
QString leftOut(const Harmony& harmony);

/// What the list says of a pair.
struct PairTexts
{
    QString ratio; // "5/4"; of a glided pair the near sign, and the nearest that has a name
    /// Which of the chord's numbers, "4 : 5", unless they are long; of a near one how far: "+2.1".
    QString beside;
    QString cents;    // "386.314 cents"
    QString name;     // of a comma it begins with that word, unless it ends with it
    QString distance; // "4.32"; empty of a glided pair
    QString beats;    // "0.21/s (5:4)"; empty beyond the highest partial that is looked at

    /// In one line, for a screen reader.
    QString all() const;
};
PairTexts ofPair(const Harmony& harmony, const Harmony::Pair& pair);

/// The pair from the lowest note up to another one.
const Harmony::Pair& fromLowest(const Harmony& harmony, int note);

} // namespace harmonytexts
