#pragma once

#include <QGraphicsEllipseItem>

/// The glow of a playing ball. Draws from pictures that all glows share: a gradient takes as long as
/// all else of a ball together, and a chord moves many at once.
class GlowItem : public QGraphicsEllipseItem
{
public:
    using QGraphicsEllipseItem::QGraphicsEllipseItem;

    /// The brush, within the ellipse; there is no outline.
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;
};
