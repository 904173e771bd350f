#pragma once

#include "ui/cards/CardWidget.h"

#include <QList>
#include <QTimer>

/// The cards of a stack whose pitches have stopped, hidden, to be filled again for others. Building
/// a card costs ten times as much as filling one, and a transposition takes every sounding pitch off
/// its card before it finds the new ones. They are child widgets of the stack, which owns them.
///
/// Each card takes two tenths of a megabyte. Those that nobody needed for a while are given up but for
/// a few, so that one great chord does not stay in memory for ever.
class SpareCards
{
public:
    SpareCards()
    {
        mTrim.setInterval(UNUSED_MS);
        mTrim.callOnTimeout([this] { trim(); });
    }

    void put(CardWidget* card)
    {
        card->hide();
        if (mCards.size() >= LIMIT) {
            card->deleteLater(); // it may be handling a press
            return;
        }
        mCards.append(card);
        if (!mTrim.isActive()) {
            mLeast = 0;
            mTrim.start();
        }
    }

    /// Null: there is none.
    CardWidget* take()
    {
        CardWidget* const card = mCards.isEmpty() ? nullptr : mCards.takeLast();
        mLeast = qMin(mLeast, mCards.size());
        return card;
    }

    qsizetype size() const { return mCards.size(); }

    /// By the clock: those go that were spare ever since the last time.
    void trim()
    {
        for (qsizetype unused = qMin(mLeast, mCards.size() - KEPT); unused > 0; --unused)
            delete mCards.takeFirst();
        mLeast = mCards.size();
        if (mLeast <= KEPT)
            mTrim.stop();
    }

    static constexpr qsizetype LIMIT = 48;
    static constexpr qsizetype KEPT = 8; // for the next notes
    static constexpr int UNUSED_MS = 60'000;

private:
    QList<CardWidget*> mCards;
    QTimer mTrim;
    qsizetype mLeast = 0; // spare ones at any time since the last trim
};
