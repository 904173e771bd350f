#include "ui/lattice/OrloWidget.h"

#include "model/Orlo.h"
#include "model/OrloBall.h"
#include "ui/lattice/GeometryConstants.h"
#include "ui/lattice/OrloBallWidget.h"
#include "ui/lattice/OrloStrutWidget.h"
#include "ui/lattice/OrloView.h"

#include <QDebug>

#include <cmath>

namespace {

constexpr double BALL_Z = 20;
constexpr double LEAVES_Z = 30;
constexpr double STRUT_Z = 10;
constexpr int NO_ANGLE = -1; // the step leads to a leaf

/// Degrees, not wrapped. The constants are read at each call, since they can be edited.
int angleOfStep(int step)
{
    switch (step) {
    case 2: return ANGLE_2_PLUS;
    case 3: return ANGLE_3_PLUS;
    case -2: return ANGLE_2_PLUS + 180;
    case -3: return ANGLE_3_PLUS + 180;
    default: return NO_ANGLE;
    }
}

/// Positive angles go up on the screen.
QPointF pointOfStep(const QPointF& from, int step)
{
    const double angle = radiansFromDegrees(angleOfStep(step));
    const int length = qAbs(step) == 2 ? STRUT_2_LENGTH : STRUT_3_LENGTH;
    return {from.x() + length * std::cos(angle), from.y() - length * std::sin(angle)};
}

} // namespace

OrloWidget::OrloWidget(OrloLeavesWidget::View view, const OrloView* orloView, CardStackWidget* cardStack)
    : mView(view)
    , mOrlo(orloView->orlo())
    , mTree(mOrlo->tree())
    , mCardStack(cardStack)
{
    setFlag(ItemHasNoContents);
}

OrloWidget::~OrloWidget()
{
    qDeleteAll(childItems()); // before the tree that they show
}

void OrloWidget::buildOrlo()
{
    QHash<OrloPath, OrloBallWidget*> built;
    buildOrloFrom(*mTree, QPointF(0.0, 0.0), built);
    buildLinks(built);
    // The balls report changes only: what is switched off already must be hidden here.
    for (OrloBallWidget* ball : std::as_const(mBalls)) {
        if (!ball->ball()->isEnabled())
            ball->onEnabledChanged(false);
    }
}

OrloBallWidget* OrloWidget::buildOrloFrom(const OrloBall& ball, const QPointF& point,
                                          QHash<OrloPath, OrloBallWidget*>& built)
{
    auto* widget = new OrloBallWidget(&ball, this, BALL_DIAMETER, this);
    widget->setPos(point);
    widget->setZValue(BALL_Z);
    OrloLeavesWidget* minusLeaves = addLeavesSide(-1, widget);
    OrloLeavesWidget* plusLeaves = addLeavesSide(1, widget);

    const QMap<int, OrloBall*>& children = ball.children();
    for (auto it = children.begin(); it != children.end(); ++it) {
        const int step = it.key();
        if (angleOfStep(step) != NO_ANGLE) {
            OrloBallWidget* child = buildOrloFrom(*it.value(), pointOfStep(point, step), built);
            auto* strut = new OrloStrutWidget(widget, child, STRUT_WIDTH, nullptr, this);
            strut->setZValue(STRUT_Z);
        } else {
            OrloLeavesWidget* leaves = step < 0 ? minusLeaves : plusLeaves;
            auto* leaf = new OrloBallWidget(it.value(), this, LEAF_DIAMETER, leaves);
            leaves->addPrime(step, leaf);
            mBalls.append(leaf);
        }
    }
    built.insert(ball.path(), widget);
    mBalls.append(widget);
    return widget;
}

OrloLeavesWidget* OrloWidget::addLeavesSide(int side, OrloBallWidget* ball) const
{
    auto* leaves = new OrloLeavesWidget(mView, side, ball);
    leaves->setZValue(LEAVES_Z);
    if (mView == OrloLeavesWidget::Circles)
        leaves->setPos(side * LEAVES_PLUS_OFFSET_X, side * LEAVES_PLUS_OFFSET_Y);
    return leaves;
}

void OrloWidget::buildLinks(const QHash<OrloPath, OrloBallWidget*>& built)
{
    // In the order of the list, so that the picture does not depend on the order of a hash.
    for (OrloBallWidget* ball : std::as_const(mBalls)) {
        if (built.value(ball->ball()->path(), nullptr) != ball)
            continue;
        for (const OrloBall::Link& link : ball->ball()->links()) {
            OrloBallWidget* target = built.value(link.path, nullptr);
            if (!target) {
                qWarning() << "OrloWidget: the link from" << ball->ball()->path().parseToString() << "to"
                           << link.path.parseToString() << "leads to no ball of the tree and is not drawn.";
                continue;
            }
            auto* strut = new OrloStrutWidget(ball, target, LINK_WIDTH, &link.color, this);
            strut->setZValue(STRUT_Z);
        }
    }
}

void OrloWidget::updateBalls()
{
    for (OrloBallWidget* ball : std::as_const(mBalls))
        ball->updateBall();
}
