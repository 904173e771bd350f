#pragma once

#include <QColor>
#include <QPainterPath>
#include <QRectF>

class QGraphicsEllipseItem;
class QGraphicsItem;

/// The five circles that a ball is drawn with, of the lattice or free: the ball itself, its glow,
/// and the marks for selected, hold and altered. All are centred on the ball's origin and take no
/// presses: those fall to the ball.
class BallCircles
{
public:
    /// Diameters in parts of the ball's.
    struct Proportions
    {
        double selectedRing;
        double alteredRing;
        double selectedZ;
    };
    enum class Mark { Selected, Hold, Altered };

    /// Makes the circles as children of `ball`, which owns them and outlives this object. The
    /// diameter is in scene units.
    BallCircles(QGraphicsItem* ball, int diameter, const Proportions& proportions);

    /// `unity`: the central pitch, which keeps its own colour when it plays.
    void draw(const QColor& color, bool unity, bool playing);
    void show(Mark mark, bool visible);

    QRectF boundingRect() const;
    /// The round ball, so that close neighbours do not catch each other's presses.
    QPainterPath shape() const;
    /// The same with the rings that are shown.
    QPainterPath shapeWithRings() const;
    /// Contains shapeWithRings(), whichever rings are shown.
    QRectF rectWithRings() const;

    /// Radius of the ball with its outline when it plays, in scene units.
    double playingRadius() const;
    double glowRadius() const;

private:
    QGraphicsEllipseItem* circleOf(Mark mark) const;

    QGraphicsEllipseItem* mMain;
    QGraphicsEllipseItem* mSelectedRing;
    QGraphicsEllipseItem* mAlteredRing;
    QGraphicsEllipseItem* mHoldDot;
    QGraphicsEllipseItem* mGlow;
};
