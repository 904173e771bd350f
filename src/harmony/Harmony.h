#pragma once

#include "harmony/SoundingNote.h"
#include "harmony/WideRatio.h"

#include <QList>
#include <QString>

/// What notes that sound together are to each other. A plain value. [gui]
struct Harmony
{
    /// Two of the notes.
    struct Pair
    {
        int low = 0; // in `notes`
        int high = 0;
        bool isExact = false; // both notes are exact, or glided by the same (SAME_OFFSET)
        WideRatio ratio{1};   // from low to high, at least 1; without meaning when not exact
        double cents = 0.0;   // as heard
        bool isComma = false; // closer than 50 cents, and not in unison
        double beats = 0.0;   // a second, of the nearest pair of partials up to MAX_PARTIAL
        int lowPartial = 1;
        int highPartial = 1;
    };
    static constexpr int MAX_PARTIAL = 16;
    static constexpr double COMMA_CENTS = 50.0;
    /// Cents within which two notes were glided by the same: what single precision makes of one glide.
    static constexpr double SAME_OFFSET = 0.001;

    /// In any order; notes that are silent are left out by the caller.
    static Harmony of(QList<SoundingNote> notes);

    QList<SoundingNote> notes; // ascending by frequency
    /// Which of `notes` the numbers are of: those that are exact among each other, each pitch once. All, when
    /// all were glided by the same; else those that were not.
    QList<int> numbered;
    /// As smallest whole numbers, ascending by pitch: a : b : c. Empty with fewer than two.
    QList<WideInt> otonal;
    /// The same chord as 1/a : 1/b : 1/c, so these numbers descend.
    QList<WideInt> utonal;
    /// Whether the first is the simpler: by the highest odd factor (Harry Partch's odd limit), then the
    /// highest number, then the sum. Equal ones count as otonal.
    bool isOtonal = true;
    int primeLimit = 1;       // of the intervals between them; 0: beyond 31
    double fundamental = 0.0; // Hz of the 1 of `otonal`, as heard; 0 without `otonal`
    QList<Pair> pairs;        // by low, then high
};
