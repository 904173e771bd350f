#pragma once

#include <QGraphicsItemGroup>
#include <QMap>

class OrloBallWidget;

/// One side of a ball's leaves: the primes above 3 down from it, or up. Knows where each prime
/// lies in the two views.
class OrloLeavesWidget : public QGraphicsItemGroup
{
public:
    enum View { Circles = 0, Grapes = 1 };
    enum { Type = UserType + 3 };

    /// `side`: -1 for the steps down, +1 for the steps up.
    OrloLeavesWidget(View view, int side, QGraphicsItem* parent);

    /// Takes the ball in, at its prime's place; a prime without a place lands on the origin.
    void addPrime(int prime, OrloBallWidget* ball);

    /// So that edited geometry takes effect with the next leaves.
    static void clearPositions();

    int type() const override { return Type; }

protected:
    bool sceneEventFilter(QGraphicsItem* watched, QEvent* event) override;

private:
    static void fillCirclePositions();
    static void fillGrapePositions();

    // Offsets of the leaves down, by prime; the leaves up are the same turned by half a turn.
    static QMap<int, QPointF> sCirclePositions;
    static QMap<int, QPointF> sGrapePositions;

    const View mView;
    const int mSide;
};
