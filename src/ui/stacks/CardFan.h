#pragma once

#include <QObject>

class CardWidget;
class QWidget;

/// Spreads the cards of a stack that overlap: the topmost one lies in front, and the others lie behind
/// each other away from it, above and below, so that each shows at least the rows up to its neighbour.
/// Which card is topmost, and where the cards stand, remains the stack's and the pointer's affair.
///
/// Follows the cards' own events, and arranges them once when all of a chord have come.
class CardFan : public QObject
{
public:
    explicit CardFan(QWidget* stack);

    /// A child widget of the stack.
    void watch(CardWidget* card);

protected:
    bool eventFilter(QObject* card, QEvent* event) override;

private:
    void arrange();

    QWidget* const mStack;
    bool mPending = false;
    bool mArranging = false;
};
