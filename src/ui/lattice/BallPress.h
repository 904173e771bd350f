#pragma once

#include <Qt>

class QEvent;

/// What a press on a ball asks for. The same for the balls of the lattice and
/// the free ones, in every mode.
enum class BallPress {
    None,
    Note,
    Transpose,
    SelectToggle,
    Reset,
    ResetAndDeselect,
};

/// Of the left button.
BallPress ballPressFor(Qt::KeyboardModifiers modifiers);
/// The middle button alone, which stands for Alt and the left one: many desktops take those for moving
/// windows.
bool isSelectingPress(const QEvent& event);
