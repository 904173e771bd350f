#pragma once

#include <Qt>

/// What a press of the left button on a ball asks for. The same for the balls of the lattice and
/// the free ones, in every mode.
enum class BallPress {
    None,
    Note,
    Transpose,
    SelectToggle,
    Reset,
    ResetAndDeselect,
};

BallPress ballPressFor(Qt::KeyboardModifiers modifiers);
