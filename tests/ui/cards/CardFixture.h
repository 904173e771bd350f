#pragma once

#include "ui/WindowFixture.h"
#include "ui/cards/CardGraphic.h"
#include "ui/cards/CardWidget.h"
#include "ui/stacks/CardStackTwoWidget.h"
#include "ui/stacks/CardStackWidget.h"
#include "ui/stacks/OrloLayer.h"

#include <QLabel>

/// One page with its stacks, in the program's look, on which the places on a card depend.
class CardFixture : public UiFixture
{
public:
    static void SetUpTestSuite() { WindowFixture::SetUpTestSuite(); }
    static void TearDownTestSuite() { WindowFixture::TearDownTestSuite(); }

protected:
    CardFixture()
    {
        settings.absRelView = 0;
        settings.ratiosWithinOctave = false;
        page.init(OrloLeavesWidget::Grapes, &orlo);
        page.resize(1200, 800);
        page.show();
        report();
    }

    void sound(const OrloRatio& ratio, bool on = true)
    {
        orlo.onNoteToggled(ratio, on);
        report();
    }

    /// The card of a pitch, whichever stack it belongs to.
    CardWidget* cardFor(unsigned long long numerator, unsigned long long denominator)
    {
        const OrloRatio ratio(numerator, denominator);
        if (!orlo.playingRatios().contains(ratio))
            sound(ratio);
        if (CardWidget* card = page.cardStackTwo()->getCardForRatio(ratio))
            return card;
        const OrloBall* ball = orlo.ballFromRatio(ratio);
        return ball ? cardOf(qPrintable(ball->path().toString())) : nullptr;
    }
    CardWidget* cardOf(const char* path) const
    {
        return page.cardStack()->cardForBall(scene::ballAt(*page.orloView(), path));
    }
    /// As a button of the window does after it has changed an option.
    void updatePage() const
    {
        page.orloView()->updateOrloBalls();
        page.orloView()->updateCardStack();
    }

    static QLabel* label(const CardWidget* card, const char* name)
    {
        return card->findChild<QLabel*>(QLatin1StringView(name));
    }
    static QString text(const CardWidget* card, const char* name) { return label(card, name)->text(); }
    /// The card's graphics that are shown: clef and note, then the plain and the coloured
    /// accidental if there is one, then arrows and heads.
    static QList<CardGraphic*> graphics(const CardWidget* card)
    {
        QList<CardGraphic*> shown;
        for (QObject* child : card->children()) {
            auto* graphic = dynamic_cast<CardGraphic*>(child);
            if (graphic && !graphic->isHidden())
                shown.append(graphic);
        }
        return shown;
    }

    OrloLayer page;
};
