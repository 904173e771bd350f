#pragma once

/// The colours of a lattice that is made anew; a lattice file brings its own.
struct DefaultPrimeColor
{
    int prime; // 0: a crowded display, 1: the central ball, 2: the octave balls
    const char* color;
};

inline constexpr DefaultPrimeColor DEFAULT_PRIME_COLORS[] = {
    {0, "#b7b7b7"},  {1, "#202020"},  {2, "#5b5b5b"},  {3, "#5173b6"},  {5, "#9c0404"},
    {7, "#2838d0"},  {11, "#b46110"}, {13, "#710071"}, {17, "#077407"}, {19, "#999900"},
    {23, "#005b5b"}, {29, "#775c42"}, {31, "#2a9d7b"},
};
