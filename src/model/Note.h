#pragma once

#include <QChar>
#include <QString>

class OrloPathUnlimited;

/// A pitch as a musician reads it: a conventional note name and a deviation in cents. A plain
/// value; graphical thread only, since the options and the transposition are read.
///
/// A pitch is named by walking its prime steps from the base note through diatonic intervals
/// (NoteInterval tells which one stands for which prime), so that the name tells how the pitch was reached,
/// not just which tempered note lies closest. What would need more than a double accidental, or more than
/// about half a semitone of cents, breaks out of that system: it is spelled by the nearest semitone
/// (SemitoneSpelling.h), and the note counts as enharmonic from then on.
///
/// Semitones count from C0 = 0, so that A4 is 57.
class Note
{
public:
    /// C0.
    Note() = default;
    /// `name` as for storeFromString.
    Note(const QString& name, int cents);
    Note(int semitone, int cents);
    /// Hz.
    explicit Note(float frequency);

    /// The name of the pitch at the end of the lattice's transposition and this path. `frequency`
    /// in Hz is the exact one; the cents are the deviation from it.
    static Note getNoteForPath(const OrloPathUnlimited* path, float frequency);

    /// C0; leaves the cents.
    void init();
    /// Letter, octave, accidental: "C4#", "b-1bb". That is not the form of noteSpelling().
    void storeFromString(const QString& name);
    /// The nearest semitone's name. With `useBaseNote` the letter and accidental come from the
    /// option "baseNote" if the options ask for that. A pitch that is no finite number of a
    /// sensible size changes nothing.
    void storeFromSemitone(float pitch, bool useBaseNote);
    /// Hz, against the calibration. Takes the base note's name within 50 cents of 1/1.
    void storeFromFreq(float frequency);

    /// "A" to "G"; the null character when the note has none.
    QChar noteLetter() const;
    /// Like "F#3" or "Bb4".
    QString noteSpelling() const;
    /// With the cents.
    float toSemitonePitch() const;
    /// Hz at A4 = 440, whatever the calibration is.
    float toFrequency() const;

    /// Walks by the interval that stands for a signed prime step. An enharmonic note walks by
    /// frequency instead.
    void addInterval(int prime);
    void addCents(float cents);
    void makeEnharmonic() { mEnharmonic = true; }

    int note() const { return mNote; } // letter: 0 C, 1 D, ... 6 B
    float cents() const { return mCents; }
    int accidental() const { return mAccidental; } // -2 to 2
    int octave() const { return mOctave; }
    bool enharmonic() const { return mEnharmonic; }

private:
    double semitone() const; // a whole number; an octave read from a text may be any int
    void respellAsBaseNote();
    void addIntervalByFrequency(int prime);

    int mNote = 0;
    float mCents = 0.0F; // deviation from the named pitch
    int mAccidental = 0;
    int mOctave = 0;
    bool mEnharmonic = false; // has left the system of intervals
};
