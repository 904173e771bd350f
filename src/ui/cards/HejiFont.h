#pragma once

#include <QHash>
#include <QPainterPath>
#include <QRawFont>

/// The music font with the signs of Helmholtz-Ellis notation, from the resource directory. Read when it is
/// first asked for, as few players use it. Graphical thread only.
class HejiFont
{
public:
    /// False: the file cannot be read, which the first call logs.
    bool isUsable();
    /// The outline of a code point, in staff spaces; y runs downward from the line or space of the note.
    /// Empty for a glyph that the font does not have.
    QPainterPath outline(char32_t glyph);

private:
    void read();

    bool mIsRead = false;
    QRawFont mFont;
    QHash<char32_t, QPainterPath> mOutlines;
};
