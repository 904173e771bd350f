#include "ui/lattice/BallPress.h"

#include <QGraphicsSceneMouseEvent>

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

bool isSelectingPress(const QEvent& event)
{
    if (event.type() != QEvent::GraphicsSceneMousePress)
        return false;
    const auto& press = static_cast<const QGraphicsSceneMouseEvent&>(event);
    return press.button() == Qt::MiddleButton && press.modifiers() == Qt::NoModifier;
}
