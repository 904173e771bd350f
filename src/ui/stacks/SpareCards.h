#pragma once

#include "ui/cards/CardWidget.h"

#include <QList>

/// The cards of a stack whose pitches have stopped, hidden, to be filled again for others. Building
/// a card costs ten times as much as filling one, and a transposition takes every sounding pitch off
/// its card before it finds the new ones. They are child widgets of the stack, which owns them.
///
/// A card is hidden only once the present change is through, and before the next repaint: hiding and
/// showing a card that is needed at once takes as long as filling it.
class SpareCards
{
public:
    void put(CardWidget* card)
    {
        if (mCards.size() >= LIMIT) {
            card->hide();
            card->deleteLater(); // it may be handling a press
            return;
        }
        mCards.append(card);
        if (!mHidePending) {
            mHidePending = true;
            QMetaObject::invokeMethod(
                card->parentWidget(), [this] { hideAll(); }, Qt::QueuedConnection);
        }
    }

    /// Null: there is none.
    CardWidget* take() { return mCards.isEmpty() ? nullptr : mCards.takeLast(); }

    qsizetype size() const { return mCards.size(); }

    static constexpr qsizetype LIMIT = 48;

private:
    void hideAll()
    {
        mHidePending = false;
        for (CardWidget* card : std::as_const(mCards))
            card->hide();
    }

    QList<CardWidget*> mCards;
    bool mHidePending = false;
};
