#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// The names that ratio 1/1 can have, from "A 8" down to "A 0", and their equal-tempered frequencies
/// on A4 = 440 Hz. A sharp and its flat are two entries of the same frequency.
class OneOneNotes
{
public:
    /// The one table, made at the first call.
    static const OneOneNotes& table();

    /// 137, a note and its octave with a blank between them.
    const QStringList& names() const { return mNames; }
    /// The 17 without an octave, from B down to C.
    const QStringList& notes() const { return mNotes; }
    /// "8" to "0".
    const QStringList& octaves() const { return mOctaves; }
    /// Those of `notes()` that the octave has: 0 begins at A, 8 ends there.
    QStringList notesOf(const QString& octave) const;

    bool contains(int index) const { return index >= 0 && index < mFrequencies.size(); }
    /// Hz on A4 = 440 Hz, to six significant digits; 0 for an index outside the table.
    float frequency(int index) const { return contains(index) ? mFrequencies[index] : 0.0F; }
    /// Of a full name; an unknown name gives "B 5".
    int indexOf(const QString& name) const;

private:
    OneOneNotes();

    QStringList mNames;
    QList<float> mFrequencies;
    QStringList mNotes;
    QStringList mOctaves;
};
