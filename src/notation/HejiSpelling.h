#pragma once

#include <QList>
#include <QString>

#include <array>

class Note;

/// A pitch in Helmholtz-Ellis notation (the legend of 2020 by Marc Sabat and Thomas Nicholson): a letter with
/// sharps or flats by fifths, and for each prime from 5 on the signs that lead from there to the exact pitch.
/// A plain value. [any]
struct HejiSpelling
{
    /// The primes that have signs, in the order of `powers`.
    static constexpr std::array<int, 9> PRIMES{5, 7, 11, 13, 17, 19, 23, 29, 31};

    int letter = 0;              // 0 C to 6 B, as in Note
    int octave = 4;              // A4 lies in octave 4
    int sharps = 0;              // below 0: flats
    std::array<int, 9> powers{}; // so many of a prime's comma; above 0: the pitch is raised by it

    /// The pitch at the end of these signed prime steps (which may have 2s) from the note of 1/1. Exact for
    /// every list.
    static HejiSpelling of(const Note& oneOne, const QList<int>& steps);

    /// Such as "C#4 5:-1 7:+2", for tips, accessibility and logs.
    QString text() const;
    bool operator==(const HejiSpelling&) const = default;
};
