#include "ui/stacks/DottedLine.h"

#include <QImage>
#include <QPainter>

namespace {

constexpr int PERIOD = 3; // one dot and a gap of two
constexpr int TILE_WIDTH = 64 * PERIOD;

QBrush dots(const QColor& color)
{
    QImage tile(TILE_WIDTH, 1, QImage::Format_ARGB32_Premultiplied);
    tile.fill(Qt::transparent);
    for (int x = 0; x < TILE_WIDTH; x += PERIOD)
        tile.setPixelColor(x, 0, color);
    return QBrush(tile);
}

} // namespace

void drawDottedLines(QPainter& painter, const QList<QLine>& lines, const QColor& color)
{
    if (lines.isEmpty())
        return;
    const QBrush brush = dots(color);
    for (const QLine& line : lines) {
        const int left = qMin(line.x1(), line.x2());
        painter.setBrushOrigin(left, 0);
        painter.fillRect(left, line.y1(), qAbs(line.dx()) + 1, 1, brush);
    }
}
