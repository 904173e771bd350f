#pragma once

#include <QString>

/// A diatonic interval, up or down, such as the fifth that stands for a step of 3. A plain value.
///
/// The text form is an optional "-", a quality ("dim", "m", "M", "p", "aug") and the interval's
/// number as one digit: "p5", "-M3", "aug4".
class NoteInterval
{
public:
    explicit NoteInterval(const QString& text);
    explicit NoteInterval(int prime);

    /// A perfect unison, up.
    void init();
    /// A quality that is not known leaves the field as it was.
    void storeFromString(const QString& text);
    /// The interval that stands for a signed prime step. Any other number changes nothing.
    void storeFromPrime(int prime);

    QString toString() const;
    /// Signed. Counts only the quality for more than an octave.
    int toSemitoneDistance() const;

    int direction() const { return mDirection; } // 1 up, -1 down
    int octaves() const { return mOctaves; }
    int steps() const { return mSteps; }
    int quality() const { return mQuality; }

private:
    int mDirection = 1;
    int mOctaves = 0; // beyond the interval; no text gives one
    int mSteps = 0;   // diatonic: the interval's number minus 1
    int mQuality = 0; // semitones away from the major or perfect interval
};
