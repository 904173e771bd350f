#include "ui/stacks/CardStackTwoWidget.h"

#include "ui/cards/CardWidget.h"
#include "ui/lattice/OrloView.h"
#include "ui/lattice/PitchAxis.h"
#include "ui/stacks/CardStackWidget.h"

CardStackTwoWidget::CardStackTwoWidget(QWidget* parent)
    : QWidget(parent)
{
    setFocusPolicy(Qt::NoFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
}

void CardStackTwoWidget::init(const OrloView* view, SvgLoader* loader)
{
    mView = view;
    mLoader = loader;
    connect(view, &OrloView::resized, this, &CardStackTwoWidget::updatePositions);
}

QSize CardStackTwoWidget::sizeHint() const
{
    return {CardStackWidget::CARD_STACK_WIDTH, 0};
}

CardWidget* CardStackTwoWidget::getCardForRatio(OrloRatio ratio) const
{
    return mCards.value(ratio, nullptr);
}

CardWidget* CardStackTwoWidget::openCard(const OrloRatio& ratio)
{
    CardWidget* card = mSpareCards.take();
    if (card) {
        card->refillFor(ratio);
        card->raise();
    } else {
        card = new CardWidget(&ratio, this);
        card->setObjectName(QStringLiteral("CardAtStack2"));
        card->adjustSize();
        mFan->watch(card);
    }
    updatePosition(ratio, card);
    card->show();
    mCards.insert(ratio, card);
    return card;
}

CardWidget* CardStackTwoWidget::showCardForRatio(OrloRatio ratio)
{
    if (CardWidget* card = getCardForRatio(ratio))
        return card;
    return openCard(ratio);
}

CardWidget* CardStackTwoWidget::showCardForRatio(OrloRatio ratio, int hierarchy)
{
    hideCardForRatio(ratio);
    CardWidget* card = openCard(ratio);
    card->setCardHirarchy(hierarchy);
    return card;
}

void CardStackTwoWidget::hideCardForRatio(OrloRatio ratio)
{
    if (CardWidget* card = mCards.take(ratio))
        mSpareCards.put(card);
}

void CardStackTwoWidget::raiseCardForRatio(OrloRatio ratio)
{
    if (CardWidget* card = getCardForRatio(ratio)) {
        card->raise();
        card->setCardHirarchy(0);
    }
}

void CardStackTwoWidget::updatePosition(OrloRatio ratio, CardWidget* card)
{
    if (mView->sceneRect().height() <= 0.0)
        return;
    const int y = static_cast<int>(PitchAxis::of(*mView).cardHeight(ratio)) - card->height() / 2;
    card->move(0, qMax(0, qMin(y, height() - mBottomSpace - card->height())));
}

void CardStackTwoWidget::updatePositions()
{
    for (auto it = mCards.begin(); it != mCards.end(); ++it)
        updatePosition(it.key(), it.value());
}

void CardStackTwoWidget::updateCards()
{
    for (CardWidget* card : std::as_const(mCards))
        card->refill();
    updatePositions(); // a transposition moves the pitches beside the lattice
}

void CardStackTwoWidget::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    updatePositions();
}
