#pragma once

#include "harmony/WideRatio.h"
#include "tuning/TuningExport.h"

#include <QList>

/// A set of pitches as a scale that repeats by octaves: what all formats tell. A plain value. [gui]
///
/// Its 1/1 is the set's lowest pitch. Within the octave it is the 1/1 that the set's ratios are meant above,
/// in the lowest octave where the set has it, if the set has it at all.
struct TuningScale
{
    struct Pitch
    {
        WideRatio ratio = 1; // above the scale's 1/1
        double cents = 0.0;
        double hertz = 0.0;
    };

    TuningScale(const TuningSet& set, tuningexport::Range range);

    QByteArray title;     // ASCII, not empty
    double oneOne;        // Hz of the set's 1/1
    WideRatio root = 1;   // the scale's 1/1 above the set's
    QList<Pitch> pitches; // ascending, each once, 1/1 first; empty only for an empty set
    QList<Pitch> degrees; // the same without 1/1, and the period last, which may be one of the pitches
    int periodOctaves = 1;

    /// The key that plays 1/1: nearest in pitch by twelve equal steps and an A of 440 Hz.
    int rootKey() const;
    /// Each key from there is one degree above the one below it. 0 or infinite far beyond what can be heard.
    double hertzOfKey(int key) const;
    /// "1/1 is 445.5 Hz, which is 81/80 of 440.0 Hz", for a remark.
    QByteArray rootText() const;

    /// Such as 440.0: in the C locale, without an exponent, with ten decimals at most.
    static QByteArray hertzText(double hertz);
};
