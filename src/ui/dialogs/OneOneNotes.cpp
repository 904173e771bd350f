#include "ui/dialogs/OneOneNotes.h"

#include <cmath>

namespace {

constexpr int LAST_OCTAVE = 8;
constexpr int SEMITONE_OF_A = 9; // above C
constexpr int OCTAVE_OF_A4 = 4;
constexpr int UNKNOWN_NAME = 48; // index, for a name that is in no table
constexpr int SIGNIFICANT_DIGITS = 6;

struct NamedSemitone
{
    const char* name;
    int semitone; // above C
};
constexpr NamedSemitone NAMES[] = {{"C", 0},  {"C#", 1}, {"Db", 1},  {"D", 2},   {"D#", 3}, {"Eb", 3},
                                   {"E", 4},  {"F", 5},  {"F#", 6},  {"Gb", 6},  {"G", 7},  {"G#", 8},
                                   {"Ab", 8}, {"A", 9},  {"A#", 10}, {"Bb", 10}, {"B", 11}};

bool isInOctave(int semitone, int octave)
{
    return (octave > 0 || semitone >= SEMITONE_OF_A) && (octave < LAST_OCTAVE || semitone <= SEMITONE_OF_A);
}

float temperedFrequency(int semitonesFromA4)
{
    const double frequency = 440.0 * std::exp2(semitonesFromA4 / 12.0);
    return QString::number(frequency, 'g', SIGNIFICANT_DIGITS).toFloat();
}

} // namespace

const OneOneNotes& OneOneNotes::table()
{
    static const OneOneNotes notes;
    return notes;
}

OneOneNotes::OneOneNotes()
{
    for (int octave = 0; octave <= LAST_OCTAVE; ++octave) {
        const QString octaveText = QString::number(octave);
        mOctaves.prepend(octaveText);
        for (const auto& [name, semitone] : NAMES) {
            if (!isInOctave(semitone, octave))
                continue;
            mNames.prepend(QLatin1StringView(name) + u' ' + octaveText);
            mFrequencies.prepend(temperedFrequency(semitone - SEMITONE_OF_A + 12 * (octave - OCTAVE_OF_A4)));
        }
    }
    for (const auto& [name, semitone] : NAMES)
        mNotes.prepend(QLatin1StringView(name));
}

QStringList OneOneNotes::notesOf(const QString& octave) const
{
    QStringList notes;
    for (const QString& note : mNotes) {
        if (mNames.contains(note + u' ' + octave))
            notes.append(note);
    }
    return notes.isEmpty() ? mNotes : notes;
}

int OneOneNotes::indexOf(const QString& name) const
{
    const qsizetype index = mNames.indexOf(name);
    return index < 0 ? UNKNOWN_NAME : static_cast<int>(index);
}
