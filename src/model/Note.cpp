#include "model/Note.h"

#include "app/Accessors.h"
#include "app/Settings.h"
#include "model/AbsoluteRatio.h"
#include "model/NoteInterval.h"
#include "model/Orlo.h"
#include "model/OrloPath.h"
#include "model/OrloPathUnlimited.h"
#include "model/SemitoneSpelling.h"

#include <QDebug>

#include <array>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

constexpr int A4 = 57;
constexpr float A4_FREQUENCY = 440.0F;
constexpr float SEMITONE_RATIO = 1.0594631F;

// Where a pitch counts to the next semitone: off centre, so that a quarter tone has the same name
// whether it is reached from below or from above.
constexpr float HIGHEST_CENTS = 50.5F; // still in
constexpr float LOWEST_CENTS = -49.5F; // already out

/// Within this distance of 1/1 a note may take the base note's name.
constexpr double BASE_NOTE_CENTS = 50.0;

/// Semitones, far outside of all hearing; what lies beyond does not fit the arithmetic here.
constexpr float PITCH_LIMIT = 100000.0F;
constexpr int OCTAVE_LIMIT = 100000000; // beyond it semitones do not fit in an int

constexpr QLatin1StringView LETTERS("CDEFGAB");
constexpr std::array<int, 7> LETTER_SEMITONES{0, 2, 4, 5, 7, 9, 11};

const std::array<QString, 5> ACCIDENTALS{u"bb"_s, u"b"_s, QString(), u"#"_s, u"##"_s}; // from -2

int floorModulo(int value, int modulus)
{
    return (value % modulus + modulus) % modulus;
}

int floorDivide(int value, int divisor)
{
    return (value - floorModulo(value, divisor)) / divisor;
}

bool isOutside(float cents)
{
    return cents <= LOWEST_CENTS || cents > HIGHEST_CENTS;
}

double calibrationFrequency()
{
    const Settings* settings = app::settings();
    return settings ? settings->calibrationFrequency : 440.0;
}

double baseFrequency()
{
    const Settings* settings = app::settings();
    return settings ? settings->baseFrequency : 440.0;
}

float pitchOfFrequency(float frequency)
{
    return static_cast<float>(std::log2(frequency / calibrationFrequency()) * 12.0 + A4);
}

bool isNearBase(float frequency)
{
    return std::abs(std::log2(frequency / baseFrequency()) * 1200.0) < BASE_NOTE_CENTS;
}

} // namespace

Note::Note(const QString& name, int cents)
{
    init();
    storeFromString(name);
    mCents = static_cast<float>(cents);
}

Note::Note(int semitone, int cents)
{
    init();
    storeFromSemitone(static_cast<float>(semitone + cents / 100.0), false);
}

Note::Note(float frequency)
{
    init();
    storeFromFreq(frequency);
}

Note Note::getNoteForPath(const OrloPathUnlimited* path, float frequency)
{
    Note note(static_cast<float>(baseFrequency()));
    if (const Orlo* orlo = app::orlo()) {
        for (const int step : orlo->transposeSteps())
            note.addInterval(step);
    }
    for (const signed char* step = path->toCharArray(); *step != 0; ++step)
        note.addInterval(*step);
    // The intervals leave the cents alone, so the whole deviation from the true pitch comes here.
    const float missing = Note(frequency).toSemitonePitch() - note.toSemitonePitch();
    note.addCents(static_cast<float>(missing * 100.0));
    return note;
}

void Note::init()
{
    mNote = 0;
    mAccidental = 0;
    mOctave = 0;
    mEnharmonic = false;
}

void Note::storeFromString(const QString& name)
{
    const qsizetype letter = name.isEmpty() ? -1 : LETTERS.indexOf(name.front().toUpper());
    if (letter >= 0)
        mNote = static_cast<int>(letter);

    qsizetype end = 1;
    while (end < name.size() && (name[end] == u'-' || (name[end] >= u'0' && name[end] <= u'9')))
        ++end;
    mOctave = name.mid(1, end - 1).toInt(); // 0 for what is no number

    const QString accidental = name.mid(end);
    mAccidental = 0;
    for (size_t i = 0; i < ACCIDENTALS.size(); ++i) {
        if (accidental == ACCIDENTALS[i])
            mAccidental = static_cast<int>(i) - 2;
    }
}

void Note::storeFromSemitone(float pitch, bool useBaseNote)
{
    if (!(std::abs(pitch) < PITCH_LIMIT))
        return; // also for what is no number: a frequency of 0 has no pitch

    // The whole part comes from the same single precision as the cents: taken from a finer value
    // it could be the number below one that the pitch was rounded up to. It moves as an integer,
    // since the float may round when 1 is added.
    int whole = static_cast<int>(pitch);
    mCents = (pitch - static_cast<float>(whole)) * 100.0F;
    if (mCents > HIGHEST_CENTS) {
        ++whole;
        mCents -= 100.0F;
    } else if (mCents <= LOWEST_CENTS) {
        --whole;
        mCents += 100.0F;
    }
    mOctave = floorDivide(whole, 12);
    const SemitoneSpelling& spelling = SEMITONE_SPELLINGS[static_cast<size_t>(floorModulo(whole, 12))];
    mNote = spelling.letter;
    mAccidental = spelling.accidental;
    if (useBaseNote)
        respellAsBaseNote();
}

void Note::storeFromFreq(float frequency)
{
    storeFromSemitone(pitchOfFrequency(frequency), isNearBase(frequency));
}

/// Gives 1/1 the name that the player chose where the tuning would give a neighbour's or the other
/// spelling. Octave and cents stay.
void Note::respellAsBaseNote()
{
    const Settings* settings = app::settings();
    // The flag reads the wrong way round: it is on only while 1/1 lies too far from the base note.
    if (!settings || settings->oneOneFreqTempered || settings->baseNote.isEmpty())
        return;
    const QString& name = settings->baseNote;
    const qsizetype letter = LETTERS.indexOf(name.front());
    if (letter < 0)
        return;
    mNote = static_cast<int>(letter);
    const QChar accidental = name.size() > 1 ? name[1] : QChar(u' ');
    mAccidental = accidental == u'b' ? -1 : (accidental == u'#' ? 1 : 0);
}

QChar Note::noteLetter() const
{
    return mNote >= 0 && mNote < LETTERS.size() ? QChar(LETTERS[mNote]) : QChar();
}

QString Note::noteSpelling() const
{
    return noteLetter() + ACCIDENTALS[static_cast<size_t>(mAccidental + 2)] + QString::number(mOctave);
}

double Note::semitone() const
{
    return LETTER_SEMITONES[static_cast<size_t>(mNote)] + 12.0 * mOctave + mAccidental;
}

float Note::toSemitonePitch() const
{
    return static_cast<float>(semitone() + mCents / 100.0);
}

float Note::toFrequency() const
{
    return std::pow(SEMITONE_RATIO, toSemitonePitch() - A4) * A4_FREQUENCY;
}

void Note::addInterval(int prime)
{
    if (mOctave < -OCTAVE_LIMIT || mOctave > OCTAVE_LIMIT)
        return; // only a text can name such an octave
    if (mEnharmonic) {
        addIntervalByFrequency(prime);
        return;
    }
    const NoteInterval interval(prime);
    const int direction = interval.direction();
    const int oldSemitone = static_cast<int>(std::round(toSemitonePitch()));

    // Below octave 0 the cut toward zero would round up; the shift makes it round down.
    const int raw = mNote + interval.steps() * direction;
    const int adjusted = mOctave < 0 || (mOctave == 0 && raw < 0) ? raw - 6 : raw;
    const int octave =
        static_cast<int>(static_cast<float>(mOctave + (direction * interval.octaves() + adjusted / 7.0)));
    const int letter = floorModulo(raw, 7);

    const double deviation = mCents / 100.0;
    const int natural = LETTER_SEMITONES[static_cast<size_t>(letter)] + octave * 12;
    const float newNatural = std::round(static_cast<float>(deviation + mAccidental + natural));
    const int accidental =
        mAccidental + interval.toSemitoneDistance() + oldSemitone - static_cast<int>(newNatural);
    if (accidental < -2 || accidental > 2) {
        storeFromSemitone(static_cast<float>(deviation + natural + accidental), false);
        mEnharmonic = true;
        return;
    }
    mNote = letter;
    mOctave = octave;
    mAccidental = accidental;
}

void Note::addIntervalByFrequency(int prime)
{
    const OrloRatio ratio(OrloPath(static_cast<signed char>(prime)));
    const float frequency = toFrequency() * ratios::quotient(ratio);
    storeFromSemitone(pitchOfFrequency(frequency), isNearBase(frequency));
}

void Note::addCents(float cents)
{
    mCents += cents;
    if (!isOutside(mCents))
        return;
    qDebug() << "Note:addCents - breaking out of rule system @ mCents" << mCents;
    storeFromSemitone(toSemitonePitch(), false);
    mEnharmonic = true;
    qDebug() << ">50 ct -> Note displayed as enharmonic";
}
