#include "ui/lattice/OrloView.h"

#include "model/OrloBall.h"
#include "ui/lattice/FingerPresses.h"
#include "ui/lattice/LatticeEdge.h"
#include "ui/lattice/OrloBallWidget.h"
#include "ui/lattice/OrloWidget.h"
#include "ui/lattice/StackPolicy.h"
#include "ui/stacks/BallScene.h"
#include "ui/stacks/CardStackTwoWidget.h"
#include "ui/stacks/CardStackWidget.h"
#include "ui/stacks/NodeStackWidget.h"

#include <QDebug>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTouchEvent>
#include <QWheelEvent>

#include <limits>

namespace {

/// In pixels. Beyond this Qt cuts each shape to the screen by itself, at a hundred times the cost.
constexpr double LARGEST_PICTURE = 32767.0;

bool isTouch(const QEvent* event)
{
    return event->type() == QEvent::TouchBegin || event->type() == QEvent::TouchUpdate
           || event->type() == QEvent::TouchEnd;
}

} // namespace

OrloView::OrloView(QWidget* parent)
    : QGraphicsView(parent)
    , mBallScene(new BallScene(this))
    , mFingers(new FingerPresses(this))
{
    // All items share one parent, so an index by place would hold that one alone.
    mBallScene->setItemIndexMethod(QGraphicsScene::NoIndex);
    setScene(mBallScene);
    setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing | QPainter::SmoothPixmapTransform);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    setDragMode(ScrollHandDrag);
    viewport()->setCursor(Qt::ArrowCursor);
    setTransformationAnchor(AnchorUnderMouse);
    // A transposition changes every ball; collecting their places one by one would cost more than
    // painting all that lies between them.
    setViewportUpdateMode(BoundingRectViewportUpdate);
}

void OrloView::init(OrloLeavesWidget::View view, Orlo* orlo, CardStackWidget* cardStack,
                    CardStackTwoWidget* cardStackTwo, NodeStackWidget* nodeStack)
{
    mOrlo = orlo;
    mCardStack = cardStack;
    mCardStackTwo = cardStackTwo;
    mNodeStack = nodeStack;
    buildScene(view);
}

void OrloView::buildScene(OrloLeavesWidget::View view)
{
    mOrloWidget = nullptr;
    scene()->clear();
    auto* orloWidget = new OrloWidget(view, this, mCardStack);
    orloWidget->buildOrlo();
    scene()->addItem(orloWidget);
    orloWidget->setPos(0.0, 0.0);
    scene()->setSceneRect(orloWidget->sceneBoundingRect());
    mOrloWidget = orloWidget;
    // The next resize fits the scene. Until then a scale chosen for a small scene could make a large one too
    // large to paint.
    if (qMax(sceneRect().width(), sceneRect().height()) * mZoom.current() > LARGEST_PICTURE)
        followFit();
    // The balls report changes only: those that sound already need their cards.
    for (OrloBallWidget* ball : orloWidget->balls())
        ball->updateCard();
    updateStacksItemsPositions();
}

OrloLeavesWidget::View OrloView::view() const
{
    return mOrloWidget->view();
}

void OrloView::updateOrloBalls()
{
    if (mOrloWidget)
        mOrloWidget->updateBalls();
    mBallScene->updateToolTip();
}

void OrloView::detectBallMouseOver(QPoint point) const
{
    const QList<QGraphicsItem*> under = items(point);
    for (QGraphicsItem* item : under) {
        if (const auto* ball = qgraphicsitem_cast<OrloBallWidget*>(item)) {
            qDebug() << "You hovered over ball" << ball->ball()->path().parseToString();
            return;
        }
    }
}

// ---------------------------------------------------------------- fit

void OrloView::resizeEvent(QResizeEvent* event)
{
    QGraphicsView::resizeEvent(event);
    followFit();
    emit resized();
}

void OrloView::followFit()
{
    const QRectF whole = sceneRect();
    // Before init, with a scene of no size, or squeezed to nothing there is no fit to follow.
    if (whole.width() <= 0.0 || whole.height() <= 0.0 || width() <= 0 || height() <= 0)
        return;
    fitInView(whole, Qt::KeepAspectRatio);
    mZoom.followFit(qMin(height() / whole.height(), width() / whole.width()));
    applyCurrentScale();
    centerOn(mSceneCentre);
}

void OrloView::applyCurrentScale()
{
    setTransform(QTransform::fromScale(mZoom.current(), mZoom.current()));
}

void OrloView::storeSceneCentre()
{
    const QRect area = viewport()->rect();
    mSceneCentre = mapToScene(QPoint((area.right() - area.left()) / 2, (area.bottom() - area.top()) / 2));
}

void OrloView::setTestingVariables(int value)
{
    mZoom.resetToFit();
    applyCurrentScale();
    updateStacksItemsPositions();
    mZoomAllowed = value != 0;
    if (value < 0)
        mZoom.setTouchStepThreshold(qAbs(qMax(value, -std::numeric_limits<int>::max())));
    else if (value > 0)
        mStackUpdatePolicy = value;
}

void OrloView::paintEvent(QPaintEvent* event)
{
    QGraphicsView::paintEvent(event);
    const QRect area = viewport()->rect();
    const Qt::Edges cut = latticeedge::cutEdges(viewportTransform().mapRect(sceneRect()), area);
    if (!cut || !mOrloWidget)
        return;
    QPainter painter(viewport());
    latticeedge::draw(painter, area, cut);
}

// ---------------------------------------------------------------- mouse

void OrloView::mouseMoveEvent(QMouseEvent* event)
{
    QGraphicsView::mouseMoveEvent(event);
    if (event->buttons() & Qt::LeftButton) {
        storeSceneCentre();
        updateStacksWhenZoom(false);
    }
}

void OrloView::mouseReleaseEvent(QMouseEvent* event)
{
    storeSceneCentre();
    updateStacksWhenZoom(true);
    QGraphicsView::mouseReleaseEvent(event);
    viewport()->setCursor(Qt::ArrowCursor);
}

void OrloView::wheelEvent(QWheelEvent* event)
{
    if (!event->modifiers().testFlag(Qt::ControlModifier)) {
        QGraphicsView::wheelEvent(event);
        storeSceneCentre();
        updateStacksWhenZoom(true);
        return;
    }
    event->accept(); // with zoom off too: it must not scroll
    if (mZoomAllowed)
        zoomAround(event->position(), LatticeZoom::factorOfWheel(event->angleDelta().y()));
}

/// What is at this point of the viewport stays there, as far as the edges of the scene let it.
void OrloView::zoomAround(QPointF fixed, double factor)
{
    mZoom.zoomBy(factor);
    const QPointF kept = viewportTransform().inverted().map(fixed);
    applyCurrentScale();
    const QPoint gone = (viewportTransform().map(kept) - fixed).toPoint();
    horizontalScrollBar()->setValue(horizontalScrollBar()->value() + gone.x());
    verticalScrollBar()->setValue(verticalScrollBar()->value() + gone.y());
    storeSceneCentre();
    updateStacksWhenZoom(true);
}

// ---------------------------------------------------------------- touch

bool OrloView::viewportEvent(QEvent* event)
{
    if (mZoomAllowed && event->type() == QEvent::NativeGesture) {
        zoomByTrackpad(static_cast<const QNativeGestureEvent&>(*event));
        return true;
    }
    if (!mZoomAllowed || !isTouch(event))
        return QGraphicsView::viewportEvent(event);
    auto& touch = static_cast<QTouchEvent&>(*event);
    if (touch.pointCount() == 1)
        return false; // goes on as a mouse event
    if (touch.pointCount() == 2 && mFingers->areZooming())
        zoomByTouch(touch);
    return true;
}

void OrloView::zoomByTouch(QTouchEvent& event)
{
    const bool released = event.touchPointStates().testFlag(QEventPoint::Released);
    const QEventPoint& first = event.points().at(0);
    const QEventPoint& second = event.points().at(1);
    const double spread = LatticeZoom::spread(QLineF(first.pressPosition(), second.pressPosition()).length(),
                                              QLineF(first.position(), second.position()).length());
    if (!mZoom.pinch(spread, released))
        return;
    if (mZoom.isDrawable()) {
        applyCurrentScale();
        storeSceneCentre();
        updateStacksWhenZoom(released);
    }
    qDebug() << "Zoom etc. - step executed. ";
}

void OrloView::zoomByTrackpad(const QNativeGestureEvent& event)
{
    if (event.gestureType() == Qt::ZoomNativeGesture)
        zoomAround(event.position(), 1.0 + event.value());
}

// ---------------------------------------------------------------- stacks

void OrloView::updateStacksWhenZoom(bool final)
{
    switch (stackpolicy::toMove(mStackUpdatePolicy, final)) {
    case stackpolicy::Stacks::None: break;
    case stackpolicy::Stacks::Cards:
        if (mCardStack)
            mCardStack->updatePositions();
        break;
    case stackpolicy::Stacks::All: updateStacksItemsPositions(); break;
    }
}

void OrloView::updateStacksItemsPositions()
{
    if (mCardStack)
        mCardStack->updatePositions();
    if (mCardStackTwo)
        mCardStackTwo->updatePositions();
    if (mNodeStack)
        mNodeStack->updatePositions();
}

void OrloView::updateCardStack()
{
    if (mCardStack)
        mCardStack->updateCards();
    if (mNodeStack)
        mNodeStack->updateNodes();
    if (mCardStackTwo)
        mCardStackTwo->updateCards();
}
