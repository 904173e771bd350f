#pragma once

#include "model/OrloRatio.h"
#include "ui/stacks/CardFan.h"
#include "ui/stacks/SpareCards.h"

#include <QHash>
#include <QWidget>

class CardWidget;
class OrloView;
class SvgLoader;

/// The second stack, on the right of the page: the cards of sounding pitches that have no ball, placed by
/// height of pitch (PitchAxis). Keyed by absolute ratio. Cards of very near pitches overlap.
class CardStackTwoWidget : public QWidget
{
    Q_OBJECT

public:
    explicit CardStackTwoWidget(QWidget* parent = nullptr);

    /// Both outlive the cards. Follows the view's resized().
    void init(const OrloView* view, SvgLoader* loader);

    /// Null: the ratio has no card.
    CardWidget* getCardForRatio(OrloRatio ratio) const;
    /// The card that is there already, or a new one.
    CardWidget* showCardForRatio(OrloRatio ratio);
    /// Always a new one, in the place of the former.
    CardWidget* showCardForRatio(OrloRatio ratio, int hierarchy);
    /// Nothing happens for a ratio without a card.
    void hideCardForRatio(OrloRatio ratio);
    void raiseCardForRatio(OrloRatio ratio);
    void updatePosition(OrloRatio ratio, CardWidget* card);
    /// Fills the cards again from the present transposition and options, and places them.
    void updateCards();

    /// The height left free at the bottom, in pixels.
    void setBottomSpace(int pixels) { mBottomSpace = pixels; }

    SvgLoader* loader() const { return mLoader; }
    const QHash<OrloRatio, CardWidget*>& cards() const { return mCards; }

    QSize sizeHint() const override;

public slots:
    void updatePositions();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    CardWidget* openCard(const OrloRatio& ratio);

    QHash<OrloRatio, CardWidget*> mCards; // child widgets
    SpareCards mSpareCards;
    CardFan* const mFan = new CardFan(this);
    int mBottomSpace = 0;
    const OrloView* mView = nullptr;
    SvgLoader* mLoader = nullptr;
};
