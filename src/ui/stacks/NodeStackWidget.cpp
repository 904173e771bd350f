#include "ui/stacks/NodeStackWidget.h"

#include "ui/lattice/FingerPresses.h"
#include "ui/lattice/GeometryConstants.h"
#include "ui/lattice/OrloView.h"
#include "ui/lattice/PitchAxis.h"
#include "ui/stacks/BallScene.h"
#include "ui/stacks/CardStackTwoWidget.h"
#include "ui/stacks/FreeBallWidget.h"
#include "ui/stacks/FreeConnectorOverlay.h"

#include <QDebug>
#include <QMultiMap>
#include <QtMath>

#include <utility>

namespace {

double sortKey(const OrloRatio& ratio)
{
    return -(static_cast<double>(ratio.numerator()) / static_cast<double>(ratio.denominator()));
}

} // namespace

NodeStackWidget::NodeStackWidget(QWidget* parent)
    : QGraphicsView(parent)
    , mBallScene(new BallScene(this))
{
    mBallScene->setSceneRect(0, 0, 1, 1);
    // An index by place would be one over a single pixel, since the balls lie outside the rectangle.
    mBallScene->setItemIndexMethod(QGraphicsScene::NoIndex);
    setScene(mBallScene);
    setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing | QPainter::SmoothPixmapTransform);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAlignment(Qt::AlignTop | Qt::AlignLeft);
    setFocusPolicy(Qt::NoFocus);
    new FingerPresses(this);
}

NodeStackWidget::~NodeStackWidget()
{
    reset();
}

void NodeStackWidget::init(FreeConnectorOverlay* overlay, const OrloView* view,
                           CardStackTwoWidget* cardStackTwo)
{
    mOverlay = overlay;
    mView = view;
    mCardStackTwo = cardStackTwo;
    connect(view, &OrloView::resized, this, &NodeStackWidget::updatePositions);
}

QSize NodeStackWidget::sizeHint() const
{
    const double radius = LEAF_DIAMETER * 0.5 + LEAF_DIAMETER / 10.0;
    const double glow = LEAF_DIAMETER * BALL_GLOW_SIZE_FACTOR / 200.0;
    const int width =
        qCeil(2 * glow + 2 * radius * FreeBallLayout::CELL_FACTOR * (FreeBallLayout::COLUMNS - 1));
    return QSize(width + 2 * frameWidth(), QGraphicsView::sizeHint().height());
}

void NodeStackWidget::resizeEvent(QResizeEvent* event)
{
    QGraphicsView::resizeEvent(event);
    updatePositions();
    emit resized();
}

// ---------------------------------------------------------------- balls come and go

void NodeStackWidget::addNodeForRatio(OrloRatio ratio)
{
    if (mBalls.contains(ratio))
        return;
    auto* ball = new FreeBallWidget(this, &ratio, LEAF_DIAMETER, nullptr);
    scene()->addItem(ball);
    mBalls.insert(ratio, ball);
}

FreeBallWidget* NodeStackWidget::ballForRatio(const OrloRatio& ratio) const
{
    return mBalls.value(ratio, nullptr);
}

void NodeStackWidget::removeNodeForRatio(OrloRatio ratio)
{
    if (FreeBallWidget* ball = mBalls.take(ratio))
        retire(ball);
}

/// Nothing may point to the ball when it goes, and it may be in the middle of an event.
void NodeStackWidget::retire(FreeBallWidget* ball)
{
    ball->setVisible(false);
    scene()->removeItem(ball);
    if (mOverlay)
        mOverlay->removeConnector(ball);
    ball->QObject::setParent(this); // or a program that ends before the next event would leak it
    ball->deleteLater();
}

void NodeStackWidget::reset()
{
    for (FreeBallWidget* ball : std::as_const(mBalls))
        retire(ball);
    scene()->clear();
    mBalls.clear();
}

void NodeStackWidget::updateNodes()
{
    struct Node
    {
        OrloRatio ratio;
        bool playing;
        bool selected;
        bool hold;
        bool altered;
    };
    QList<Node> nodes;
    nodes.reserve(mBalls.size());
    for (auto it = mBalls.cbegin(); it != mBalls.cend(); ++it) {
        const FreeBallWidget* ball = it.value();
        nodes.append({it.key(), ball->isPlaying(), ball->isSelected(), ball->isHold(), ball->isAltered()});
    }
    for (const Node& node : std::as_const(nodes)) {
        removeNodeForRatio(node.ratio);
        addNodeForRatio(node.ratio);
        toggleNodeForRatio(node.ratio, node.playing);
        selectNodeForRatio(node.ratio, node.selected);
        setHoldNodeForRatio(node.ratio, node.hold);
        setAlteredNodeForRatio(node.ratio, node.altered);
    }
    updatePositions();
    mBallScene->updateToolTip();
}

// ---------------------------------------------------------------- their flags

void NodeStackWidget::toggleNodeForRatio(OrloRatio ratio, bool on)
{
    FreeBallWidget* ball = ballForRatio(ratio);
    if (!ball)
        return;
    ball->setPlayingState(on);
    if (!mOverlay)
        return;
    if (on)
        mOverlay->addConnector(ball);
    else
        mOverlay->removeConnector(ball);
}

void NodeStackWidget::selectNodeForRatio(OrloRatio ratio, bool on)
{
    if (FreeBallWidget* ball = ballForRatio(ratio))
        ball->setSelected(on);
}

void NodeStackWidget::setHoldNodeForRatio(OrloRatio ratio, bool on)
{
    if (FreeBallWidget* ball = ballForRatio(ratio))
        ball->setHold(on);
}

void NodeStackWidget::setAlteredNodeForRatio(OrloRatio ratio, bool on)
{
    if (FreeBallWidget* ball = ballForRatio(ratio))
        ball->setAltered(on);
}

void NodeStackWidget::raiseNodeForRatio(OrloRatio ratio)
{
    FreeBallWidget* ball = ballForRatio(ratio);
    if (!ball)
        return;
    const QList<QGraphicsItem*> colliding = ball->collidingItems(Qt::IntersectsItemShape);
    for (QGraphicsItem* item : colliding) {
        if (item->type() == FreeBallWidget::Type) // the circles of other balls follow their ball
            item->stackBefore(ball);
    }
    viewport()->update();
}

// ---------------------------------------------------------------- places

void NodeStackWidget::showNodes()
{
    updatePositions();
}

void NodeStackWidget::updatePositions()
{
    if (!mView)
        return;
    mLayout.begin(height() - mBottomSpace);

    QMultiMap<double, std::pair<const OrloRatio*, FreeBallWidget*>> fromHighest;
    for (auto it = mBalls.cbegin(); it != mBalls.cend(); ++it)
        fromHighest.insert(sortKey(it.key()), {&it.key(), it.value()});
    QList<double> rest = fromHighest.keys();
    for (auto it = fromHighest.cbegin(); it != fromHighest.cend(); ++it) {
        rest.removeOne(it.key());
        updatePosition(*it.value().first, it.value().second, &rest);
    }
}

void NodeStackWidget::updatePosition(OrloRatio ratio, FreeBallWidget* ball, QList<double>* rest)
{
    const int howManyMore = static_cast<int>(rest->size());
    const FreeBallLayout::Place place = mLayout.place(PitchAxis::of(*mView).freeBallHeight(ratio),
                                                      ball->playingRadius(), ball->glowRadius(), howManyMore);
    if (place.isInBottomGrid) {
        qDebug().noquote() << "Node jumps into grid at bottom: Ratio " << ratio.toString()
                           << "; howManyMore: " << howManyMore
                           << "Threshold level for jump: " << FreeBallLayout::rowsToCome(howManyMore);
    }
    ball->setAtPitch(place.isAtPitch);
    renewConnector(ball);
    ball->setPos(place.point);
    ball->setVisible(true);
}

/// So that the lines follow the ball.
void NodeStackWidget::renewConnector(FreeBallWidget* ball)
{
    if (!mOverlay || !ball->isPlaying())
        return;
    mOverlay->removeConnector(ball);
    mOverlay->addConnector(ball);
}
