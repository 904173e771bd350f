#include "ui/stacks/FreeConnectorOverlay.h"

#include "ui/lattice/OrloView.h"
#include "ui/stacks/CardStackTwoWidget.h"
#include "ui/stacks/DottedLine.h"
#include "ui/stacks/FreeBallWidget.h"
#include "ui/stacks/NodeStackWidget.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOption>

namespace {

constexpr QColor LINE_COLOR(142, 142, 142, 64);

} // namespace

FreeConnectorOverlay::FreeConnectorOverlay(QWidget* parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
}

void FreeConnectorOverlay::init(const OrloView* view, const CardStackTwoWidget* cardStackTwo,
                                const NodeStackWidget* nodeStack)
{
    mView = view;
    mCardStackTwo = cardStackTwo;
    mNodeStack = nodeStack;
    connect(view, &OrloView::resized, this, qOverload<>(&QWidget::update));
}

void FreeConnectorOverlay::addConnector(const FreeBallWidget* ball)
{
    if (!mBalls.contains(ball))
        mBalls.append(ball);
    update();
}

void FreeConnectorOverlay::removeConnector(const FreeBallWidget* ball)
{
    mBalls.removeOne(ball);
    update();
}

QList<QLine> FreeConnectorOverlay::linesOf(const FreeBallWidget* ball) const
{
    // A ball without a place yet, or in a stack that is switched off.
    if (!mNodeStack || !mCardStackTwo || !mNodeStack->isVisible() || !ball->isVisible())
        return {};
    const auto fromStack = [this](QPointF point) {
        return mapFromGlobal(mNodeStack->viewport()->mapToGlobal(mNodeStack->mapFromScene(point)));
    };
    const QPointF centre = ball->scenePos();
    const double radius = ball->playingRadius();
    const QPoint right = fromStack(centre + QPointF(radius, 0.0));
    const int cards = mapFromGlobal(mCardStackTwo->mapToGlobal(pos())).x();
    QList<QLine> lines{QLine(right, QPoint(cards, right.y()))};

    if (ball->isAtPitch() && mView->orloWidget() && mView->view() == OrloLeavesWidget::Grapes) {
        const QPoint left = fromStack(centre + QPointF(-radius, 1.0));
        lines.append(QLine(QPoint(0, left.y()), left));
    }
    return lines;
}

void FreeConnectorOverlay::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    QStyleOption option;
    option.initFrom(this);
    style()->drawPrimitive(QStyle::PE_Widget, &option, &painter, this);
    QList<QLine> lines;
    for (const FreeBallWidget* ball : mBalls)
        lines += linesOf(ball);
    drawDottedLines(painter, lines, LINE_COLOR);
}
