#include "ui/lattice/OrloView.h"

#include "model/OrloBall.h"
#include "ui/stacks/CardStackTwoWidget.h"
#include "ui/stacks/CardStackWidget.h"
#include "ui/stacks/NodeStackWidget.h"
#include "ui/lattice/OrloBallWidget.h"
#include "ui/lattice/OrloWidget.h"

#include <QDebug>
#include <QGraphicsScene>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QScrollBar>
#include <QTouchEvent>
#include <QWheelEvent>

#include <cmath>
#include <limits>

namespace {

/// In pixels. Beyond this Qt cuts each shape to the screen by itself, at a hundred times the cost.
constexpr double LARGEST_PICTURE = 32767.0;

/// Eighths of a degree of the wheel for twice the size: four clicks of a common one.
constexpr double WHEEL_FOR_DOUBLE = 480.0;
/// Times the fit. A ball of this size fills the page; fingers may go further.
constexpr double LARGEST_BY_WHEEL = 16.0;

struct StackPolicy
{
    int policy;
    OrloView::Stacks during;
    OrloView::Stacks atEnd;
};

constexpr StackPolicy STACK_POLICIES[] = {
    {2, OrloView::Stacks::None, OrloView::Stacks::Cards},
    {3, OrloView::Stacks::None, OrloView::Stacks::All},
    {4, OrloView::Stacks::Cards, OrloView::Stacks::Cards},
    {5, OrloView::Stacks::Cards, OrloView::Stacks::All},
    {6, OrloView::Stacks::All, OrloView::Stacks::All},
};

/// How far the fingers moved apart since they came down; 1 for two fingers on one spot, whose
/// distance says nothing.
double spread(const QEventPoint& first, const QEventPoint& second)
{
    const double before = QLineF(first.pressPosition(), second.pressPosition()).length();
    const double now = QLineF(first.position(), second.position()).length();
    return before < 1.0 ? 1.0 : now / before;
}

bool isTouch(const QEvent* event)
{
    return event->type() == QEvent::TouchBegin || event->type() == QEvent::TouchUpdate
           || event->type() == QEvent::TouchEnd;
}

} // namespace

OrloView::OrloView(QWidget* parent)
    : QGraphicsView(parent)
{
    auto* orloScene = new QGraphicsScene(this);
    // Everything hangs on one item: an index by place would hold that one alone.
    orloScene->setItemIndexMethod(QGraphicsScene::NoIndex);
    setScene(orloScene);
    setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing | QPainter::SmoothPixmapTransform);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    viewport()->setAttribute(Qt::WA_AcceptTouchEvents);
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
    // The next resize fits it. But the scale of a picture of a few units must not meet one of thousands.
    if (qMax(sceneRect().width(), sceneRect().height()) * mCurrentScale > LARGEST_PICTURE)
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
    const double fit = qMin(height() / whole.height(), width() / whole.width());
    mCurrentScale = mCurrentScale * fit / mFitScale;
    mTotalScale = fit * mTotalScale / mFitScale;
    mFitScale = fit;
    applyCurrentScale();
    centerOn(mSceneCentre);
}

void OrloView::applyCurrentScale()
{
    setTransform(QTransform::fromScale(mCurrentScale, mCurrentScale));
}

void OrloView::storeSceneCentre()
{
    const QRect area = viewport()->rect();
    mSceneCentre = mapToScene(QPoint((area.right() - area.left()) / 2, (area.bottom() - area.top()) / 2));
}

void OrloView::setTestingVariables(int value)
{
    mTotalScale = mFitScale;
    mCurrentScale = mFitScale; // or the next resize would bring the former zoom back
    applyCurrentScale();
    updateStacksItemsPositions();
    mZoomAllowed = value != 0;
    if (value < 0)
        mTouchStepThreshold = qAbs(qMax(value, -std::numeric_limits<int>::max()));
    else if (value > 0)
        mStackUpdatePolicy = value;
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
    event->accept(); // with zoom off too: it is no scrolling
    if (mZoomAllowed)
        zoomAround(event->position(), std::exp2(event->angleDelta().y() / WHEEL_FOR_DOUBLE));
}

/// What is at this point of the viewport stays there, as far as the edges of the scene let it.
void OrloView::zoomAround(QPointF fixed, double factor)
{
    const double largest = qMax(mTotalScale, LARGEST_BY_WHEEL * mFitScale);
    mTotalScale = qBound(mFitScale, mTotalScale * factor, largest);
    mCurrentScale = mTotalScale;
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
        return false; // goes on as a mouse event: one finger plays
    if (touch.pointCount() == 2)
        zoomByTouch(touch);
    return true;
}

void OrloView::zoomByTouch(QTouchEvent& event)
{
    const bool released = event.touchPointStates().testFlag(QEventPoint::Released);
    mCurrentScale = spread(event.points().at(0), event.points().at(1)) * mTotalScale;
    ++mTouchSteps;
    if (released) {
        mTotalScale = mCurrentScale;
        mTouchSteps = mTouchStepThreshold; // the last step always runs
    }
    if (!mZoomBelowFit && mTotalScale < mFitScale) {
        mTotalScale = mFitScale;
        mCurrentScale = mFitScale;
    }
    if (mTouchSteps < mTouchStepThreshold)
        return;
    if (mCurrentScale >= mFitScale) {
        applyCurrentScale();
        storeSceneCentre();
        updateStacksWhenZoom(released);
    }
    mTouchSteps = 0;
    qDebug() << "Zoom etc. - step executed. ";
}

void OrloView::zoomByTrackpad(const QNativeGestureEvent& event)
{
    if (event.gestureType() == Qt::ZoomNativeGesture)
        zoomAround(event.position(), 1.0 + event.value());
}

// ---------------------------------------------------------------- stacks

OrloView::Stacks OrloView::stacksToMove(int policy, bool final)
{
    for (const StackPolicy& row : STACK_POLICIES) {
        if (row.policy == policy)
            return final ? row.atEnd : row.during;
    }
    return Stacks::None;
}

void OrloView::updateStacksWhenZoom(bool final)
{
    switch (stacksToMove(mStackUpdatePolicy, final)) {
    case Stacks::None: break;
    case Stacks::Cards:
        if (mCardStack)
            mCardStack->updatePositions();
        break;
    case Stacks::All: updateStacksItemsPositions(); break;
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
