#pragma once

#include <array>

/// The name of each semitone of an octave, for a note that is spelled by the nearest semitone and not by
/// its intervals. The black keys are C#, Eb, F#, G# and Bb.
struct SemitoneSpelling
{
    int letter; // 0 C, 1 D, ... 6 B
    int accidental;
};

inline constexpr std::array<SemitoneSpelling, 12> SEMITONE_SPELLINGS{{
    {0, 0},
    {0, 1},
    {1, 0},
    {2, -1},
    {2, 0},
    {3, 0},
    {3, 1},
    {4, 0},
    {4, 1},
    {5, 0},
    {6, -1},
    {6, 0},
}};
