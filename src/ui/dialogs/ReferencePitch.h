#pragma once

#include <QString>

/// The pitch of ratio 1/1: its frequency, its note, and the calibration of A4 that the note is measured
/// by. The note never follows the frequency, so the two can differ. A plain value.
class ReferencePitch
{
public:
    /// An unknown note is kept as text, and measured as "B 5".
    ReferencePitch(double calibration, double frequency, const QString& note);

    void setCalibration(double frequency) { mCalibration = frequency; } // Hz of A4
    void setFrequency(double frequency) { mFrequency = frequency; }     // Hz
    void setNote(int index);
    /// An unknown note is kept as text; the index stays as it was.
    void setNote(const QString& name);

    double calibration() const { return mCalibration; }
    double frequency() const { return mFrequency; }
    /// Like "A 4".
    const QString& note() const { return mNote; }
    /// In the table of OneOneNotes.
    int noteIndex() const { return mNoteIndex; }

    /// Hz of a note of the table under a calibration.
    static double temperedFrequency(double calibration, int noteIndex);
    double temperedFrequency() const { return temperedFrequency(mCalibration, mNoteIndex); }
    /// Whether the frequency is the tempered one of the note, as far as its shown decimals tell.
    static bool isTempered(float calibration, float frequency, int noteIndex);
    /// The number of decimals that the program shows for a frequency (Hz).
    static int shownDecimals(float frequency);
    /// While a frequency is typed: fewer than shown, so that there is room.
    static int typedDecimals(double frequency);

    /// How far the frequency lies from the note, in cents, rounded to two decimals. No number when the
    /// calibration is 0.
    double cents() const;
    /// More than 50 cents away, or no number of cents.
    bool isTooFarFromNote() const;
    /// "0", "+0.03", "-7.85", or "..." for what is too far.
    QString centsText() const;

    /// The note chosen by the text of the note menu, the place of that entry, and the octave menu. The place
    /// decides whether the octave has the note, although it may be a place in another octave's menu.
    static QString noteOfMenus(const QString& note, int place, const QString& octave);

private:
    double mCalibration;
    double mFrequency;
    QString mNote;
    int mNoteIndex;
};
