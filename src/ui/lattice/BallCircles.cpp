#include "ui/lattice/BallCircles.h"

#include "ui/lattice/GeometryConstants.h"
#include "ui/lattice/GlowItem.h"

#include <QBrush>
#include <QGraphicsEllipseItem>
#include <QPen>
#include <QRadialGradient>

namespace {

constexpr double HOLD_DOT_FACTOR = 0.3;

constexpr double MAIN_Z = 20;
constexpr double ALTERED_Z = -10;
constexpr double HOLD_Z = 100;
constexpr double GLOW_Z = 10;

constexpr int UNITY_FILL_FACTOR = 100;
constexpr int UNITY_OUTLINE_FACTOR = 200;

QPen alteredPen(const QColor& color)
{
    return QPen(color, 1.0, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin);
}

/// Edited constants may be below 0; then nothing is drawn.
template <class Item>
QGraphicsEllipseItem* add(QGraphicsItem* ball, double edited, double z)
{
    const double diameter = qMax(0.0, edited);
    auto* item = new Item(-diameter / 2, -diameter / 2, diameter, diameter, ball);
    item->setZValue(z);
    item->setAcceptedMouseButtons(Qt::NoButton);
    return item;
}

} // namespace

BallCircles::BallCircles(QGraphicsItem* ball, int diameter, const Proportions& proportions)
    : mMain(add<QGraphicsEllipseItem>(ball, diameter, MAIN_Z))
    , mSelectedRing(
          add<QGraphicsEllipseItem>(ball, proportions.selectedRing * diameter, proportions.selectedZ))
    , mAlteredRing(add<QGraphicsEllipseItem>(ball, proportions.alteredRing * diameter, ALTERED_Z))
    , mHoldDot(add<QGraphicsEllipseItem>(ball, HOLD_DOT_FACTOR * diameter, HOLD_Z))
    , mGlow(add<GlowItem>(ball, diameter * BALL_GLOW_SIZE_FACTOR / 100.0, GLOW_Z))
{
    mSelectedRing->setBrush(Qt::gray);
    mAlteredRing->setBrush(Qt::transparent);
    mAlteredRing->setPen(alteredPen(Qt::black));
    mHoldDot->setBrush(Qt::gray);

    mGlow->setPen(Qt::NoPen);
    QRadialGradient gradient(QPointF(0.0, 0.0), glowRadius());
    gradient.setColorAt(0.0, QColor(255, 255, 255, qBound(0, GLOW_ALPHA_START, 255)));
    gradient.setColorAt(1.0, QColor(255, 255, 255, 0));
    mGlow->setBrush(gradient);
    for (QGraphicsEllipseItem* item : {mSelectedRing, mAlteredRing, mHoldDot, mGlow})
        item->setVisible(false);
}

void BallCircles::draw(const QColor& color, bool unity, bool playing)
{
    QColor fill = color.darker(BALL_DIM_FACTOR);
    QPen outline(QColor(0, 0, 0, 128), 0);
    if (playing) {
        fill = color.lighter(unity ? UNITY_FILL_FACTOR : BALL_BRIGHTEN_FACTOR);
        outline = QPen(color.lighter(unity ? UNITY_OUTLINE_FACTOR : OUTLINE_BRIGHTEN_FACTOR),
                       static_cast<int>(mMain->rect().width() / 10));
    }
    mMain->setPen(outline);
    mMain->setBrush(fill);
    mGlow->setVisible(playing);
    mAlteredRing->setPen(alteredPen(color));
}

QGraphicsEllipseItem* BallCircles::circleOf(Mark mark) const
{
    switch (mark) {
    case Mark::Selected: return mSelectedRing;
    case Mark::Hold: return mHoldDot;
    case Mark::Altered: break;
    }
    return mAlteredRing;
}

void BallCircles::show(Mark mark, bool visible)
{
    circleOf(mark)->setVisible(visible);
}

QRectF BallCircles::boundingRect() const
{
    return mMain->boundingRect();
}

QPainterPath BallCircles::shape() const
{
    QPainterPath path;
    path.addEllipse(mMain->rect());
    return path;
}

QPainterPath BallCircles::shapeWithRings() const
{
    QRectF seen = mMain->rect();
    for (const QGraphicsEllipseItem* ring : {mSelectedRing, mAlteredRing}) {
        // Its own flag, not isVisible(): the ball may be hidden as a whole.
        if (ring->isVisibleTo(ring->parentItem()))
            seen |= ring->rect();
    }
    QPainterPath path;
    path.addEllipse(seen);
    return path;
}

QRectF BallCircles::rectWithRings() const
{
    return mMain->boundingRect() | mSelectedRing->boundingRect() | mAlteredRing->boundingRect();
}

double BallCircles::playingRadius() const
{
    const double width = mMain->rect().width();
    return width * 0.5 + width / 10;
}

double BallCircles::glowRadius() const
{
    return mGlow->rect().width() / 2;
}
