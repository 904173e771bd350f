#include "ui/lattice/LatticeEdge.h"

#include <QLinearGradient>
#include <QPainter>

namespace {

constexpr QColor RULE(28, 33, 31, 150);
constexpr QColor SHADE(28, 33, 31, 90);
constexpr int SHADE_WIDTH = 10;

/// The fit is exact but for rounding, and a scene has a margin beyond its balls.
constexpr double UNSEEN = 2.0;

/// From the side's own line inward.
void drawSide(QPainter& painter, const QRect& strip, const QRect& rule, QPointF outer, QPointF inner)
{
    QLinearGradient shade(outer, inner);
    shade.setColorAt(0.0, SHADE);
    shade.setColorAt(1.0, QColor(SHADE.red(), SHADE.green(), SHADE.blue(), 0));
    painter.fillRect(strip, shade);
    painter.fillRect(rule, RULE);
}

} // namespace

Qt::Edges latticeedge::cutEdges(const QRectF& lattice, const QRect& viewport)
{
    const QRectF seen(viewport);
    Qt::Edges edges;
    edges.setFlag(Qt::LeftEdge, lattice.left() < seen.left() - UNSEEN);
    edges.setFlag(Qt::TopEdge, lattice.top() < seen.top() - UNSEEN);
    edges.setFlag(Qt::RightEdge, lattice.right() > seen.right() + UNSEEN);
    edges.setFlag(Qt::BottomEdge, lattice.bottom() > seen.bottom() + UNSEEN);
    return edges;
}

void latticeedge::draw(QPainter& painter, const QRect& viewport, Qt::Edges edges)
{
    const QRectF area(viewport);
    const QPointF across(SHADE_WIDTH, 0);
    const QPointF down(0, SHADE_WIDTH);
    const auto strip = [&viewport](Qt::Edge edge, int width) {
        QRect part = viewport;
        switch (edge) {
        case Qt::LeftEdge: part.setWidth(width); break;
        case Qt::RightEdge: part.setLeft(part.right() + 1 - width); break;
        case Qt::TopEdge: part.setHeight(width); break;
        case Qt::BottomEdge: part.setTop(part.bottom() + 1 - width); break;
        }
        return part;
    };
    const struct
    {
        Qt::Edge edge;
        QPointF outer;
        QPointF inner;
    } sides[] = {
        {Qt::LeftEdge, area.topLeft(), area.topLeft() + across},
        {Qt::TopEdge, area.topLeft(), area.topLeft() + down},
        {Qt::RightEdge, area.bottomRight(), area.bottomRight() - across},
        {Qt::BottomEdge, area.bottomRight(), area.bottomRight() - down},
    };
    for (const auto& side : sides) {
        if (edges.testFlag(side.edge))
            drawSide(painter, strip(side.edge, SHADE_WIDTH), strip(side.edge, 1), side.outer, side.inner);
    }
}
