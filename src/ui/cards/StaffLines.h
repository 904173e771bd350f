#pragma once

#include <QLine>
#include <QList>
#include <QRect>

/// The level lines of a card's staff, in pixels of the card. The space of the staff is an eighth of the
/// card's inner height, and two of them lie above the top line.
struct StaffLines
{
    QRect area; // the card's inner rectangle

    /// Of two staff lines.
    float spacing() const;
    /// The y of a staff position in spaces from the top line.
    float yOf(float position) const;
    /// The five lines, `width` long.
    QList<QLine> staff(int width) const;
    /// The ledger lines between the staff and a note at this position and place.
    QList<QLine> ledgers(float position, const QRect& note) const;
};
