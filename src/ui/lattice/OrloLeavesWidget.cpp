#include "ui/lattice/OrloLeavesWidget.h"

#include "ui/lattice/GeometryConstants.h"
#include "ui/lattice/OrloBallWidget.h"

#include <cmath>

namespace {

constexpr int CENTRE_PRIME = 23;
constexpr int CIRCLE_PRIMES[] = {19, 11, 7, 31, 29, 13, 5, 17}; // clockwise

struct GrapePlace
{
    int prime;
    float side;   // of half the column's width
    float height; // semitones above the octave's start
};

// A table of its own, near the true intervals but not computed from them.
constexpr GrapePlace GRAPE_PLACES[] = {
    {5, -0.5F, 3.86F}, {7, -0.5F, 9.69F},  {11, 0.5F, 5.51F},  {13, 0.5F, 8.41F},  {17, -0.5F, 1.05F},
    {19, 0.5F, 2.98F}, {23, -0.5F, 6.28F}, {29, 0.5F, 10.37F}, {31, -0.5F, 11.5F},
};

} // namespace

QMap<int, QPointF> OrloLeavesWidget::sCirclePositions;
QMap<int, QPointF> OrloLeavesWidget::sGrapePositions;

OrloLeavesWidget::OrloLeavesWidget(View view, int side, QGraphicsItem* parent)
    : QGraphicsItemGroup(parent)
    , mView(view)
    , mSide(side)
{
    setFlag(ItemHasNoContents);
    if (mView == Circles && sCirclePositions.isEmpty())
        fillCirclePositions();
    if (mView == Grapes && sGrapePositions.isEmpty())
        fillGrapePositions();
}

void OrloLeavesWidget::fillCirclePositions()
{
    sCirclePositions.insert(CENTRE_PRIME, QPointF(0.0, 0.0));
    const double radius = CIRCLE_NODE_DISTANCE_FACTOR * LEAVES_RADIUS;
    double angle = radiansFromDegrees(LEAVES_START_ANGLE);
    for (const int prime : CIRCLE_PRIMES) {
        sCirclePositions.insert(prime, QPointF(std::cos(angle) * radius, -std::sin(angle) * radius));
        angle -= 2 * PI * 0.125;
        if (angle < 0.0)
            angle += 2 * PI;
    }
}

void OrloLeavesWidget::fillGrapePositions()
{
    const auto width = static_cast<float>(GRAPE_LEAVES_WIDTH);
    const auto octave = static_cast<float>(GRAPE_LEAVES_HEIGHT);
    for (const GrapePlace& place : GRAPE_PLACES) {
        const float x = width * 0.5F * place.side;
        const float y = octave * place.height / 12.0F;
        sGrapePositions.insert(place.prime, QPointF(static_cast<double>(x), static_cast<double>(y)));
    }
}

void OrloLeavesWidget::clearPositions()
{
    sCirclePositions.clear();
    sGrapePositions.clear();
}

void OrloLeavesWidget::addPrime(int prime, OrloBallWidget* ball)
{
    const QMap<int, QPointF>& positions = mView == Circles ? sCirclePositions : sGrapePositions;
    const QPointF offset = positions.value(qAbs(prime), QPointF(0.0, 0.0));
    ball->setPos(mSide < 0 ? offset : -offset);
    addToGroup(ball);
}

bool OrloLeavesWidget::sceneEventFilter(QGraphicsItem*, QEvent*)
{
    return false;
}
