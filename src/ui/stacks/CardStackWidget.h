#pragma once

#include "ui/stacks/CardFan.h"
#include "ui/stacks/SpareCards.h"

#include <QHash>
#include <QPointer>
#include <QWidget>

class CardConnectorOverlay;
class CardWidget;
class OrloBallWidget;
class OrloView;
class SvgLoader;

/// The first stack: the cards of sounding balls, each level with its ball and tied to it by a
/// connector.
class CardStackWidget : public QWidget
{
    Q_OBJECT

public:
    explicit CardStackWidget(QWidget* parent = nullptr);

    /// All arguments outlive the cards. Positions follow the view's resized().
    void init(CardConnectorOverlay* overlay, const OrloView* view, SvgLoader* loader);

    /// A ball has one card. It lies on top.
    CardWidget* showCardForBall(const OrloBallWidget* ball);
    CardWidget* showCardForBall(const OrloBallWidget* ball, int hierarchy);
    /// Nothing happens for a ball without a card. A ball must hide its card before it is deleted.
    void hideCardForBall(const OrloBallWidget* ball);
    void raiseCardForBall(const OrloBallWidget* ball);
    void updatePosition(const OrloBallWidget* ball, CardWidget* card);
    /// Fills the cards again from the present transposition and options.
    void updateCards();

    /// The height left free at the bottom, in pixels.
    void setBottomSpace(int pixels) { mBottomSpace = pixels; }

    SvgLoader* loader() const { return mLoader; }
    CardWidget* cardForBall(const OrloBallWidget* ball) const { return mCards.value(ball, nullptr); }
    const QHash<const OrloBallWidget*, CardWidget*>& cards() const { return mCards; }

    /// Of a card, for when no style sheet says so.
    static constexpr int CARD_STACK_WIDTH = 174;
    QSize sizeHint() const override;

public slots:
    void updatePositions();

private:
    QHash<const OrloBallWidget*, CardWidget*> mCards; // child widgets
    SpareCards mSpareCards;
    CardFan* const mFan = new CardFan(this);
    int mBottomSpace = 0;
    QPointer<CardConnectorOverlay> mOverlay; // the page may delete it first
    const OrloView* mView = nullptr;
    SvgLoader* mLoader = nullptr;
};
