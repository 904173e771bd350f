#include "ui/lattice/BallPress.h"

BallPress ballPressFor(Qt::KeyboardModifiers modifiers)
{
    constexpr Qt::KeyboardModifiers altAndControl = Qt::AltModifier | Qt::ControlModifier;
    if ((modifiers & altAndControl) == altAndControl)
        return BallPress::ResetAndDeselect; // whatever else is held
    const struct
    {
        Qt::KeyboardModifiers modifiers;
        BallPress press;
    } rows[] = {
        {Qt::ShiftModifier, BallPress::Transpose},
        {Qt::AltModifier, BallPress::SelectToggle},
        {Qt::ControlModifier, BallPress::Reset},
        {Qt::NoModifier, BallPress::Note},
    };
    for (const auto& row : rows) {
        if (modifiers == row.modifiers)
            return row.press;
    }
    return BallPress::None;
}
