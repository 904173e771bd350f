#include "ui/stacks/NodeStackWidget.h"

#include "ui/stacks/CardStackTwoWidget.h"
#include "ui/stacks/FreeBallWidget.h"
#include "ui/stacks/FreeConnectorOverlay.h"
#include "ui/lattice/GeometryConstants.h"
#include "ui/lattice/OrloView.h"
#include "ui/lattice/PitchHeight.h"

#include <QDebug>
#include <QGraphicsScene>
#include <QMultiMap>
#include <QtMath>

#include <cmath>
#include <utility>

namespace {

constexpr float CELL_FACTOR = 1.35F; // of a playing ball's diameter
constexpr float LN_9 = 2.1972246F;   // nine times the ratio is half the scene's height
/// In units of the lattice's scene: its middle lies a little above the middle of the pitch axis.
constexpr float AXIS_OFFSET = 5.5F;
/// A pitch without a height, as a ratio of 0, lies below everything. Far enough from any screen,
/// and near enough for whole numbers to stay exact.
constexpr float FARTHEST = 1.0e6F;

float bounded(float height)
{
    return std::isnan(height) ? FARTHEST : qBound(-FARTHEST, height, FARTHEST);
}

double sortKey(const OrloRatio& ratio)
{
    return -(static_cast<double>(ratio.numerator()) / static_cast<double>(ratio.denominator()));
}

} // namespace

NodeStackWidget::NodeStackWidget(QWidget* parent)
    : QGraphicsView(parent)
{
    auto* stackScene = new QGraphicsScene(0, 0, 1, 1, this);
    // An index by place would be one over a single pixel, since the balls lie outside the rectangle.
    stackScene->setItemIndexMethod(QGraphicsScene::NoIndex);
    setScene(stackScene);
    setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing | QPainter::SmoothPixmapTransform);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAlignment(Qt::AlignTop | Qt::AlignLeft);
    setFocusPolicy(Qt::NoFocus);
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
    const int width = qCeil(2 * glow + 2 * radius * CELL_FACTOR * (mColumns - 1));
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
    mPlaced.clear();
    mTopLine = 0;
    mBottomLine = height() - mBottomSpace;

    QMultiMap<double, std::pair<const OrloRatio*, FreeBallWidget*>> fromHighest;
    for (auto it = mBalls.cbegin(); it != mBalls.cend(); ++it)
        fromHighest.insert(sortKey(it.key()), {&it.key(), it.value()});
    QList<double> rest = fromHighest.keys();
    for (auto it = fromHighest.cbegin(); it != fromHighest.cend(); ++it) {
        rest.removeOne(it.key());
        updatePosition(*it.value().first, it.value().second, &rest);
    }
}

NodeStackWidget::Cell NodeStackWidget::cellOf(const FreeBallWidget* ball)
{
    return {2.0F * static_cast<float>(ball->playingRadius()) * CELL_FACTOR,
            static_cast<float>(ball->glowRadius())};
}

/// The y of a pitch on the axis of the lattice beside: its scene spans 1/9 to 9. In single
/// precision but for the rounding.
int NodeStackWidget::pitchHeight(const OrloRatio& ratio) const
{
    const QRectF whole = mView->sceneRect();
    const int sceneHeight = static_cast<int>(mView->viewportTransform().mapRect(whole).height());
    const auto scenePixels = static_cast<float>(sceneHeight);
    const auto sceneUnits = static_cast<float>(whole.height());
    const int centre = mView->mapFromScene(whole.center()).y();
    const float offset = sceneUnits > 0.0F ? scenePixels * AXIS_OFFSET / sceneUnits : 0.0F;

    const OrloRatio relative = pitch::relativeOf(ratio);
    const float aboveCentre = bounded(std::log(pitch::quotient(relative)) / LN_9 * scenePixels * -0.5F);
    const int rounded = static_cast<int>(std::round(static_cast<double>(aboveCentre)));
    return static_cast<int>(bounded(static_cast<float>(centre) + offset + static_cast<float>(rounded)));
}

void NodeStackWidget::updatePosition(OrloRatio ratio, FreeBallWidget* ball, QList<double>* rest)
{
    const Cell cell = cellOf(ball);
    const auto top = static_cast<float>(mTopLine);
    const auto bottom = static_cast<float>(mBottomLine);
    const int howManyMore = static_cast<int>(rest->size());
    const int rowsToCome = howManyMore / mColumns;
    const float roomToCome = static_cast<float>(rowsToCome) * cell.size;

    int y = pitchHeight(ratio);
    const auto height = static_cast<float>(y);
    if (height < top + cell.margin + cell.size) {
        if (mPlaced.size() >= mColumns) {
            mTopLine += static_cast<int>(cell.size);
            mPlaced.clear();
        }
        y = static_cast<int>(static_cast<float>(mTopLine) + cell.margin);
        ball->setAtPitch(false);
    } else if (height > bottom - cell.margin - cell.size - roomToCome) {
        y = static_cast<int>(bottom - cell.margin - roomToCome);
        qDebug().noquote() << "Node jumps into grid at bottom: Ratio " << ratio.toString()
                           << "; howManyMore: " << howManyMore << "Threshold level for jump: " << rowsToCome;
        ball->setAtPitch(false);
        renewConnector(ball);
        const int column = mColumns - 1 - howManyMore % mColumns;
        const int x =
            static_cast<int>(static_cast<float>(static_cast<int>(cell.size) * column) + cell.margin);
        place(ball, QPoint(x, y), cell);
        return;
    } else {
        ball->setAtPitch(true);
    }
    renewConnector(ball);
    place(ball, QPoint(freeColumn(y, cell), y), cell);
}

int NodeStackWidget::freeColumn(int y, const Cell& cell)
{
    const auto height = static_cast<float>(y);
    int x = static_cast<int>(cell.margin);
    if (height >= static_cast<float>(mLastRowStart.y()) + cell.size)
        return x;
    for (const QPoint& placed : std::as_const(mPlaced)) {
        if (static_cast<float>(placed.y()) + cell.size >= height)
            x += static_cast<int>(cell.size);
    }
    if (static_cast<float>(x) > cell.size * static_cast<float>(mColumns)) {
        x = static_cast<int>(cell.margin);
        mPlaced.clear();
    }
    return x;
}

/// So that the lines follow the ball.
void NodeStackWidget::renewConnector(FreeBallWidget* ball)
{
    if (!mOverlay || !ball->isPlaying())
        return;
    mOverlay->removeConnector(ball);
    mOverlay->addConnector(ball);
}

void NodeStackWidget::place(FreeBallWidget* ball, QPoint point, const Cell& cell)
{
    ball->setPos(point);
    ball->setVisible(true);
    mPlaced.append(point);
    if (static_cast<float>(point.x()) == cell.margin)
        mLastRowStart = point;
}
