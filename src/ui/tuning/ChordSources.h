#pragma once

#include "tuning/TuningSet.h"

class Orlo;
class PdPlayer;
class StoreAndRecall;

/// Where the pitches of a file come from. Each source changes nothing, and gives each pitch once, by its
/// absolute ratio; 1/1 has the lattice's base frequency. [gui]
class ChordSources
{
public:
    /// All of these must outlive it.
    ChordSources(const PdPlayer& player, const StoreAndRecall& memory, const Orlo& orlo);

    TuningSet sounding() const;
    TuningSet slot(int slot) const;
    /// The pitches of all chords of a chord file; none, with the reason, where it has none or is no file.
    TuningSet preset(const QString& path, QString& reason) const;
    /// The balls that can be pressed, ascending.
    TuningSet enabledBalls() const;

    /// Which hold notes, ascending.
    QList<int> fullSlots() const;

private:
    TuningSet setOf(const QString& title, const QList<OrloRatio>& ratios) const;

    const PdPlayer& mPlayer;
    const StoreAndRecall& mMemory;
    const Orlo& mOrlo;
};
