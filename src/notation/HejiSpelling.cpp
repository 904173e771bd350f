#include "notation/HejiSpelling.h"

#include "model/Note.h"
#include "model/OrloConstants.h"

namespace {

using Exponents = std::array<qint64, OrloConstants::HIGHEST_PRIME + 1>; // by the prime itself

/// How many powers of 2 and of 3 the Pythagorean pitch has that stands for an octave-reduced prime, and
/// by which way the prime's comma leads from there to the prime itself.
struct Base
{
    int twos;
    int threes;
    int comma;
};

// In the order of HejiSpelling::PRIMES.
constexpr std::array<Base, HejiSpelling::PRIMES.size()> BASES{{
    {-6, 4, -1},  // 5/4 = 81/64 * 80/81
    {4, -2, -1},  // 7/4 = 16/9 * 63/64
    {2, -1, 1},   // 11/8 = 4/3 * 33/32
    {-4, 3, -1},  // 13/8 = 27/16 * 26/27
    {-11, 7, -1}, // 17/16 = 2187/2048 * 2176/2187
    {5, -3, 1},   // 19/16 = 32/27 * 513/512
    {-9, 6, 1},   // 23/16 = 729/512 * 736/729
    {4, -2, 1},   // 29/16 = 16/9 * 261/256
    {1, 0, -1},   // 31/16 = 2/1 * 31/32
}};

constexpr std::array<int, 7> LETTER_SEMITONES{0, 2, 4, 5, 7, 9, 11};
constexpr QLatin1StringView LETTERS("CDEFGAB");

// What an octave and 3/1 are in steps of the staff and in semitones.
constexpr int OCTAVE_PLACES = 7;
constexpr int TWELFTH_PLACES = 11;
constexpr int OCTAVE_SEMITONES = 12;
constexpr int TWELFTH_SEMITONES = 19;

/// So many of a sign that only very long paths need more than a few of.
QString repeated(QChar sign, int times)
{
    constexpr int WRITTEN_OUT = 3;
    return times <= WRITTEN_OUT ? QString(times, sign) : QStringLiteral("(%1%2)").arg(times).arg(sign);
}

} // namespace

HejiSpelling HejiSpelling::of(const Note& oneOne, const QList<int>& steps)
{
    Exponents exponents{};
    for (const int step : steps) {
        if (OrloConstants::isValidPrime(step))
            exponents[static_cast<size_t>(qAbs(step))] += step > 0 ? 1 : -1;
    }

    // The Pythagorean pitch: what is left of the ratio once the commas are taken out.
    HejiSpelling spelling;
    qint64 threes = exponents[3];
    qint64 twos = exponents[2] - exponents[3]; // a step of 3 is 3/2
    for (size_t i = 0; i < PRIMES.size(); ++i) {
        const qint64 power = exponents[static_cast<size_t>(PRIMES[i])];
        twos += power * BASES[i].twos;
        threes += power * BASES[i].threes;
        spelling.powers[i] = static_cast<int>(power * BASES[i].comma);
    }

    // Both a place on the staff and a number of semitones, whose difference is the accidental.
    const qint64 place = qint64{oneOne.octave()} * OCTAVE_PLACES + oneOne.note() + twos * OCTAVE_PLACES
                         + threes * TWELFTH_PLACES;
    const qint64 semitone = qint64{oneOne.octave()} * OCTAVE_SEMITONES
                            + LETTER_SEMITONES[static_cast<size_t>(oneOne.note())] + oneOne.accidental()
                            + twos * OCTAVE_SEMITONES + threes * TWELFTH_SEMITONES;
    spelling.letter = static_cast<int>((place % OCTAVE_PLACES + OCTAVE_PLACES) % OCTAVE_PLACES);
    const qint64 octave = (place - spelling.letter) / OCTAVE_PLACES;
    spelling.octave = static_cast<int>(octave);
    spelling.sharps = static_cast<int>(semitone - octave * OCTAVE_SEMITONES
                                       - LETTER_SEMITONES[static_cast<size_t>(spelling.letter)]);
    return spelling;
}

QString HejiSpelling::text() const
{
    QString text(LETTERS[letter]);
    text += repeated(sharps < 0 ? u'b' : u'#', qAbs(sharps)) + QString::number(octave);
    for (size_t i = 0; i < PRIMES.size(); ++i) {
        if (powers[i] != 0)
            text += QStringLiteral(" %1:%2%3").arg(PRIMES[i]).arg(powers[i] > 0 ? u"+" : u"").arg(powers[i]);
    }
    return text;
}
