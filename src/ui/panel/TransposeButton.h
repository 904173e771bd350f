#pragma once

#include "sound/OrloEvent.h"

#include <QToolButton>

class QLabel;

/// An arrow that transposes the lattice by one step of its prime, down or up. Its label counts the net
/// steps while they go in the arrow's direction. While the step is not possible, the arrow is invisible.
class TransposeButton : public QToolButton
{
    Q_OBJECT

public:
    /// `step`: the prime, negative for down. The label is not owned.
    TransposeButton(int step, QLabel* label, QWidget* parent);

public slots:
    void onTransposeClicked();
    void onTransposeChanged();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    struct Look
    {
        QColor background;
        QColor foreground;
        QColor outline;
        bool rectangle = false;
    };
    Look currentLook() const;
    void showHint();

    const int mStep;
    int mCount = 0; // net steps of the prime, with their sign
    QLabel* const mLabel;
    const OrloEvent mEvent;
};
