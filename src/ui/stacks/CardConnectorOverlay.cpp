#include "ui/stacks/CardConnectorOverlay.h"

#include "ui/cards/CardWidget.h"
#include "ui/lattice/OrloBallWidget.h"
#include "ui/lattice/OrloView.h"
#include "ui/stacks/DottedLine.h"

#include <QPainter>
#include <QStyleOption>

namespace {

constexpr QColor LINE_COLOR(255, 255, 255, 0x40);

} // namespace

CardConnectorOverlay::CardConnectorOverlay(QWidget* parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
}

void CardConnectorOverlay::init(const OrloView* view)
{
    mView = view;
    connect(view, &OrloView::resized, this, qOverload<>(&QWidget::update));
}

void CardConnectorOverlay::addConnector(const OrloBallWidget* ball, const CardWidget* card)
{
    mConnectors.insert(ball, card);
    update();
}

void CardConnectorOverlay::removeConnector(const OrloBallWidget* ball)
{
    mConnectors.remove(ball);
    update();
}

QList<QLine> CardConnectorOverlay::linesOf(const OrloBallWidget* ball) const
{
    const CardWidget* card = mConnectors.value(ball, nullptr);
    // While the stacks are hidden there is nothing to be tied to.
    if (!card || !card->isVisibleTo(parentWidget()))
        return {};
    const auto fromScene = [this](QPointF point) {
        return mapFromGlobal(mView->viewport()->mapToGlobal(mView->mapFromScene(point)));
    };
    const QPointF centre = ball->scenePos();
    const QPointF radius(ball->playingRadius(), 0.0);
    const QPoint right = fromScene(centre + radius);
    const QPoint left = fromScene(centre - radius);
    const int cardX = mapFromGlobal(card->mapToGlobal(QPoint(0, 0))).x();
    return {QLine(right, QPoint(cardX, right.y())), QLine(QPoint(0, left.y()), left)};
}

void CardConnectorOverlay::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    QStyleOption option;
    option.initFrom(this);
    style()->drawPrimitive(QStyle::PE_Widget, &option, &painter, this);
    QList<QLine> lines;
    for (auto it = mConnectors.begin(); it != mConnectors.end(); ++it)
        lines += linesOf(it.key());
    drawDottedLines(painter, lines, LINE_COLOR);
}
