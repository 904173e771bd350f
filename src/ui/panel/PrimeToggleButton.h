#pragma once

#include "sound/OrloEvent.h"

#include <QColor>
#include <QToolButton>

class QGraphicsDropShadowEffect;

/// Switches the balls of one prime on and off; in the colour of the prime. The primes below 4
/// cannot be switched off and stay disabled in their full colour.
class PrimeToggleButton : public QToolButton
{
    Q_OBJECT

public:
    PrimeToggleButton(int prime, QWidget* parent);

    /// The mark of the row that the arrow keys act on.
    void setHaloVisible(bool visible);

    /// A prime's colour on the controls, where 19 is darkened to carry white. The sign is ignored.
    static QColor primeColor(int prime);

public slots:
    void onPrimeToggled();

private:
    const int mPrime;
    QGraphicsDropShadowEffect* mHalo; // owned by the widget as its effect
    const OrloEvent mEvent;
};
