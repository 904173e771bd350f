#pragma once

#include "ui/lattice/LatticeZoom.h"
#include "ui/lattice/OrloLeavesWidget.h"

#include <QGraphicsView>
#include <QPointer>

class BallScene;
class CardStackTwoWidget;
class CardStackWidget;
class FingerPresses;
class NodeStackWidget;
class Orlo;
class OrloWidget;
class QNativeGestureEvent;
class QTouchEvent;

/// The scene of one page: fits it into the widget, drags it with the mouse, scrolls it with the wheel and
/// zooms it with two fingers on a screen or a trackpad, or with the wheel and Ctrl (LatticeZoom has the
/// scales). Every finger presses a ball of its own (FingerPresses). Graphical thread only, as is all of this
/// folder.
class OrloView : public QGraphicsView
{
    Q_OBJECT

public:
    explicit OrloView(QWidget* parent = nullptr);

    /// The stacks stand on the same page; a view without them draws the lattice alone.
    void init(OrloLeavesWidget::View view, Orlo* orlo, CardStackWidget* cardStack = nullptr,
              CardStackTwoWidget* cardStackTwo = nullptr, NodeStackWidget* nodeStack = nullptr);
    /// Clears the scene and makes it anew from the lattice and the geometry constants.
    void buildScene(OrloLeavesWidget::View view);
    void updateOrloBalls();
    /// Makes what stands in the stacks anew, by the present transposition and options.
    void updateCardStack();
    /// Moves what stands in the stacks to its place.
    void updateStacksItemsPositions();
    /// Moves the stacks that the policy names, while a gesture lasts or at its end.
    void updateStacksWhenZoom(bool final);
    /// Back to the fit. Then `value` below 0: zoom on, with that many updates of a touch for a step;
    /// 0: zoom off; above 0: zoom on, with this policy for the stacks.
    void setTestingVariables(int value);
    /// A developer's aid: logs the ball at this point of the viewport.
    void detectBallMouseOver(QPoint point) const;

    OrloLeavesWidget::View view() const;
    Orlo* orlo() const { return mOrlo; }
    OrloWidget* orloWidget() const { return mOrloWidget; }
    double totalScale() const { return mZoom.total(); }
    double fitScale() const { return mZoom.fit(); }
    double currentScale() const { return mZoom.current(); }

signals:
    /// After the scale followed a resize.
    void resized();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    bool viewportEvent(QEvent* event) override;

private:
    void followFit();
    void zoomByTouch(QTouchEvent& event);
    void zoomByTrackpad(const QNativeGestureEvent& event);
    void zoomAround(QPointF fixed, double factor);
    void applyCurrentScale();
    void storeSceneCentre();

    BallScene* const mBallScene; // owned
    FingerPresses* const mFingers;
    LatticeZoom mZoom;
    QPointF mSceneCentre{1.0, 1.0};
    bool mZoomAllowed = true;
    int mStackUpdatePolicy = 6;
    Orlo* mOrlo = nullptr;
    OrloWidget* mOrloWidget = nullptr; // owned by the scene

    // Owned by the page, which may delete them before the view.
    QPointer<CardStackWidget> mCardStack;
    QPointer<CardStackTwoWidget> mCardStackTwo;
    QPointer<NodeStackWidget> mNodeStack;
};
