#include "ui/stacks/CardStackWidget.h"

#include "ui/cards/CardWidget.h"
#include "ui/lattice/OrloBallWidget.h"
#include "ui/lattice/OrloView.h"
#include "ui/stacks/CardConnectorOverlay.h"

CardStackWidget::CardStackWidget(QWidget* parent)
    : QWidget(parent)
{
    setFocusPolicy(Qt::NoFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
}

void CardStackWidget::init(CardConnectorOverlay* overlay, const OrloView* view, SvgLoader* loader)
{
    mOverlay = overlay;
    mView = view;
    mLoader = loader;
    connect(view, &OrloView::resized, this, &CardStackWidget::updatePositions);
}

QSize CardStackWidget::sizeHint() const
{
    return {CARD_STACK_WIDTH, 0};
}

CardWidget* CardStackWidget::showCardForBall(const OrloBallWidget* ball)
{
    hideCardForBall(ball);
    CardWidget* card = mSpareCards.take();
    if (card) {
        card->refillFor(ball->ball());
        card->raise();
    } else {
        card = new CardWidget(ball->ball(), this);
        card->adjustSize();
        mFan->watch(card);
    }
    updatePosition(ball, card);
    card->show();
    if (mOverlay)
        mOverlay->addConnector(ball, card);
    mCards.insert(ball, card);
    return card;
}

CardWidget* CardStackWidget::showCardForBall(const OrloBallWidget* ball, int hierarchy)
{
    CardWidget* card = showCardForBall(ball);
    card->setCardHirarchy(hierarchy);
    return card;
}

void CardStackWidget::hideCardForBall(const OrloBallWidget* ball)
{
    CardWidget* card = mCards.take(ball);
    if (!card)
        return;
    if (mOverlay)
        mOverlay->removeConnector(ball);
    mSpareCards.put(card);
}

void CardStackWidget::raiseCardForBall(const OrloBallWidget* ball)
{
    if (CardWidget* card = cardForBall(ball)) {
        card->raise();
        card->setCardHirarchy(0);
    }
}

void CardStackWidget::updatePosition(const OrloBallWidget* ball, CardWidget* card)
{
    const int room = mView->height() - mBottomSpace;
    const int y = mView->mapFromScene(ball->scenePos()).y() - card->height() / 2;
    card->move(0, qMax(0, qMin(y, room - card->height())));
}

void CardStackWidget::updatePositions()
{
    for (auto it = mCards.begin(); it != mCards.end(); ++it)
        updatePosition(it.key(), it.value());
    if (mOverlay)
        mOverlay->update(); // the balls have moved
}

void CardStackWidget::updateCards()
{
    for (CardWidget* card : std::as_const(mCards))
        card->refill();
}
