#pragma once

#include "sound/OrloEvent.h"

#include <QColor>
#include <QToolButton>

class QGraphicsDropShadowEffect;

/// Switches the balls of one prime on and off. It has the prime's colour. The primes below 4 cannot be
/// switched off, so that their buttons are disabled, in the full colour.
class PrimeToggleButton : public QToolButton
{
    Q_OBJECT

public:
    PrimeToggleButton(int prime, QWidget* parent);

    /// The mark of the row that the arrow keys act on.
    void setHaloVisible(bool visible);

    /// A prime's colour on the controls. That of 19 is darkened, since white text lies on it. The sign is
    /// ignored.
    static QColor primeColor(int prime);

public slots:
    void onPrimeToggled();

private:
    const int mPrime;
    QGraphicsDropShadowEffect* mHalo; // owned by the widget as its effect
    const OrloEvent mEvent;
};
