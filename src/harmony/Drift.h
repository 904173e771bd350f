#pragma once

#include "harmony/WideRatio.h"

#include <QString>

/// How far the lattice's 1/1 has moved from where it began, for the player: the ledger of transpositions.
/// [gui]
struct Drift
{
    /// The lattice's transposition.
    static Drift of(const OrloRatio& transposition);

    WideRatio whole{1};
    WideRatio reduced{1}; // without octaves, -600 to below 600 cents
    int octaves = 0;      // of `whole` beyond `reduced`
    double cents = 0.0;   // of `reduced`
    /// Of `reduced`: an exact hit in the table of names, else so many of one comma, else empty.
    QString name;

    /// "81/80 up, 21.506 cents: syntonic comma, and 2 octaves up"
    QString text() const;
};
