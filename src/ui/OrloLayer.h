#pragma once

#include "ui/OrloLeavesWidget.h"

#include <QWidget>

class Orlo;
class OrloView;

/// One page of the window: the lattice on the left, the three stacks on the right.
class OrloLayer : public QWidget
{
    Q_OBJECT

public:
    explicit OrloLayer(QWidget* parent = nullptr);

    /// Once, before the page is shown.
    void init(OrloLeavesWidget::View view, Orlo* orlo);
    void showStacks(bool show);

    OrloView* orloView() const { return mView; }

private:
    OrloView* mView;
    // The places of the cards, of the free balls and of the free balls' cards.
    QWidget* mCardStack;
    QWidget* mNodeStack;
    QWidget* mCardStackTwo;
};
