#pragma once

#include "model/OrloPath.h"
#include "ui/lattice/OrloLeavesWidget.h"

#include <QGraphicsItemGroup>
#include <QHash>
#include <QList>

#include <memory>

class CardStackWidget;
class Orlo;
class OrloBall;
class OrloBallWidget;
class OrloView;

/// The root item of the scene: walks the tree of balls once and makes every item of it. A change
/// of the tree's shape means a new scene.
class OrloWidget : public QGraphicsItemGroup
{
public:
    /// The view knows the lattice. Without a stack the balls have no cards.
    OrloWidget(OrloLeavesWidget::View view, const OrloView* orloView, CardStackWidget* cardStack);
    ~OrloWidget() override;

    /// Once.
    void buildOrlo();
    /// Makes the ball at this scene point and everything beneath it. `built` takes in the tree
    /// balls, by path; leaves have no entry.
    OrloBallWidget* buildOrloFrom(const OrloBall& ball, const QPointF& point,
                                  QHash<OrloPath, OrloBallWidget*>& built);
    void updateBalls();

    OrloLeavesWidget::View view() const { return mView; }
    const Orlo* orlo() const { return mOrlo; }
    CardStackWidget* cardStack() const { return mCardStack; }
    /// Leaves included; a tree ball stands behind everything beneath it.
    const QList<OrloBallWidget*>& balls() const { return mBalls; }

    QRectF boundingRect() const override { return childrenBoundingRect(); }

private:
    OrloLeavesWidget* addLeavesSide(int side, OrloBallWidget* ball) const;
    void buildLinks(const QHash<OrloPath, OrloBallWidget*>& built);

    const OrloLeavesWidget::View mView;
    const Orlo* const mOrlo;
    const std::shared_ptr<const OrloBall> mTree; // what is drawn here, even if another one was loaded since
    CardStackWidget* const mCardStack;
    QList<OrloBallWidget*> mBalls; // owned by the scene, as this is
};
