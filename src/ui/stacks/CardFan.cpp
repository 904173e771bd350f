#include "ui/stacks/CardFan.h"

#include "ui/cards/CardWidget.h"

#include <QEvent>
#include <QMetaObject>
#include <QScopedValueRollback>

#include <algorithm>

namespace {

/// The shown cards, from the back to the front.
QList<CardWidget*> shownCards(const QWidget* stack)
{
    QList<CardWidget*> cards;
    for (QObject* child : stack->children()) {
        auto* card = qobject_cast<CardWidget*>(child);
        if (card && !card->isHidden())
            cards.append(card);
    }
    return cards;
}

/// In this order from the back to the front, of which as many are raised as stand otherwise.
void raiseInOrder(const QList<CardWidget*>& wanted, const QList<CardWidget*>& present)
{
    const auto differing = std::mismatch(wanted.begin(), wanted.end(), present.begin());
    std::for_each(differing.first, wanted.end(), [](CardWidget* card) { card->raise(); });
}

} // namespace

CardFan::CardFan(QWidget* stack)
    : QObject(stack)
    , mStack(stack)
{
}

void CardFan::watch(CardWidget* card)
{
    card->installEventFilter(this);
}

bool CardFan::eventFilter(QObject* card, QEvent* event)
{
    switch (event->type()) {
    case QEvent::Show:
    case QEvent::Hide:
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::ZOrderChange:
        if (!mPending && !mArranging && mStack->isVisible()) {
            mPending = true;
            QMetaObject::invokeMethod(this, &CardFan::arrange, Qt::QueuedConnection);
        }
        break;
    default: break;
    }
    return QObject::eventFilter(card, event);
}

void CardFan::arrange()
{
    mPending = false;
    const QScopedValueRollback<bool> guard(mArranging, true);
    const QList<CardWidget*> present = shownCards(mStack);
    if (present.isEmpty())
        return;
    QList<CardWidget*> byHeight = present;
    std::stable_sort(byHeight.begin(), byHeight.end(),
                     [](const CardWidget* one, const CardWidget* other) { return one->y() < other->y(); });
    const qsizetype front = byHeight.indexOf(present.last());

    // Those above and those below the front card meet only behind it.
    QList<CardWidget*> order = byHeight.first(front);
    order.append(QList<CardWidget*>(byHeight.rbegin(), byHeight.rend() - front));
    raiseInOrder(order, present);

    for (qsizetype i = 0; i < byHeight.size(); ++i) {
        CardWidget* card = byHeight[i];
        int top = 0;
        int bottom = card->height();
        if (i < front)
            bottom = qMin(bottom, byHeight[i + 1]->y() - card->y());
        else if (i > front)
            top = qMax(top, byHeight[i - 1]->geometry().bottom() + 1 - card->y());
        card->setUncoveredRows(top, bottom);
    }
}
