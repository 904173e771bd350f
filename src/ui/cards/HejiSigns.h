#pragma once

#include <QList>
#include <QPainterPath>

class HejiFont;

/// The signs of Helmholtz-Ellis notation before one note head, side by side. A plain value.
struct HejiSigns
{
    /// The right end is x 0, the place of the note on the staff y 0; pixels, drawn at the scale.
    QPainterPath outline;
    qreal width = 0.0;  // pixels
    qreal scale = 1.0;  // 1: as large as the staff asks for
    qsizetype left = 0; // signs that have no room; three dots stand in their place

    /// From left to right, on a staff with this space, within `room` pixels. Where they have no room they
    /// get smaller, down to the least scale that can be read, and then the first ones are left out, so that
    /// the accidental and the signs of the lowest primes stay.
    static HejiSigns within(HejiFont& font, const QList<char32_t>& glyphs, qreal room, qreal space);
};
