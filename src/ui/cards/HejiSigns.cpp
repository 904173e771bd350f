#include "ui/cards/HejiSigns.h"

#include "ui/cards/HejiFont.h"

#include <QTransform>

namespace {

constexpr qreal LEAST_SCALE = 0.75;

// In staff spaces.
constexpr qreal GAP = 0.2; // between signs
constexpr qreal DOT = 0.4; // of the mark of more
constexpr qreal DOT_STEP = 0.6;

QPainterPath markOfMore()
{
    QPainterPath dots;
    for (int i = 0; i < 3; ++i)
        dots.addEllipse(QRectF(i * DOT_STEP, -DOT / 2, DOT, DOT));
    return dots;
}

qreal widthOf(const QList<QPainterPath>& outlines)
{
    qreal width = outlines.isEmpty() ? 0.0 : GAP * static_cast<qreal>(outlines.size() - 1);
    for (const QPainterPath& outline : outlines)
        width += outline.boundingRect().width();
    return width;
}

} // namespace

HejiSigns HejiSigns::within(HejiFont& font, const QList<char32_t>& glyphs, qreal room, qreal space)
{
    QList<QPainterPath> outlines;
    for (const char32_t glyph : glyphs)
        outlines.append(font.outline(glyph));

    HejiSigns signs;
    const qreal most = room / (space * LEAST_SCALE);
    if (widthOf(outlines) > most) {
        outlines.prepend(markOfMore());
        for (; outlines.size() > 1 && widthOf(outlines) > most; ++signs.left)
            outlines.removeAt(1);
    }
    qreal width = widthOf(outlines);
    signs.scale = width > 0.0 ? qBound(LEAST_SCALE, room / (space * width), 1.0) : 1.0;

    QPainterPath line;
    qreal x = -width;
    for (const QPainterPath& outline : outlines) {
        const QRectF box = outline.boundingRect();
        line.addPath(outline.translated(x - box.left(), 0.0));
        x += box.width() + GAP;
    }
    const qreal pixels = space * signs.scale;
    signs.outline = QTransform::fromScale(pixels, pixels).map(line);
    signs.outline.setFillRule(Qt::WindingFill); // as the font means it: strokes may cross
    signs.width = width * pixels;
    return signs;
}
