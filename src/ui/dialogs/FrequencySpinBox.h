#pragma once

#include <QDoubleSpinBox>

/// A frequency whose decimals follow its size, also while it is being typed: what is typed stays
/// as it is then, where Qt would write the number anew under the player's fingers.
class FrequencySpinBox : public QDoubleSpinBox
{
    Q_OBJECT

public:
    using QDoubleSpinBox::QDoubleSpinBox;

    void setShownDecimals(int decimals);
};
