#pragma once

#include "ui/cards/CardWidget.h"

#include <QList>

/// The cards of a stack whose pitches have stopped, hidden, to be filled again for others. Building
/// a card costs ten times as much as filling one, and a transposition takes every sounding pitch off
/// its card before it finds the new ones. They are child widgets of the stack, which owns them.
class SpareCards
{
public:
    void put(CardWidget* card)
    {
        card->hide();
        if (mCards.size() < LIMIT)
            mCards.append(card);
        else
            card->deleteLater(); // it may be handling a press
    }

    /// Null: there is none.
    CardWidget* take() { return mCards.isEmpty() ? nullptr : mCards.takeLast(); }

    qsizetype size() const { return mCards.size(); }

    static constexpr qsizetype LIMIT = 48;

private:
    QList<CardWidget*> mCards;
};
