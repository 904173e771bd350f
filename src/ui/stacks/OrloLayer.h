#pragma once

#include "model/OrloRatio.h"
#include "ui/lattice/OrloLeavesWidget.h"

#include <QWidget>

#include <memory>

class CardConnectorOverlay;
class CardStackTwoWidget;
class CardStackWidget;
class FreeConnectorOverlay;
class NodeStackWidget;
class Orlo;
class OrloView;
class QFrame;
class SvgLoader;

/// One page of the window: the lattice on the left, the three stacks on the right, and the two
/// sheets of connectors over all of it.
class OrloLayer : public QWidget
{
    Q_OBJECT

public:
    explicit OrloLayer(QWidget* parent = nullptr);
    ~OrloLayer() override;

    /// Once, before the page is shown.
    void init(OrloLeavesWidget::View view, Orlo* orlo);
    void showStacks(bool show);

    /// Keeps the right end of the page clear for a panel that lies over it: less than this where the lattice
    /// would become too narrow. The page's least size stays as it is.
    void setRightMargin(int pixels);
    /// Whether nothing stands in the two right columns.
    bool isRightEndFree() const;
    /// Whether the whole lattice is shown as large as without such a margin.
    bool canSpare(int pixels) const;
    QSize minimumSizeHint() const override;

    OrloView* orloView() const { return mView; }
    CardStackWidget* cardStack() const { return mCardStack; }
    CardStackTwoWidget* cardStackTwo() const { return mCardStackTwo; }
    NodeStackWidget* nodeStack() const { return mNodeStack; }
    CardConnectorOverlay* cardConnectors() const { return mCardConnectors; }
    FreeConnectorOverlay* freeConnectors() const { return mFreeConnectors; }

public slots:
    // What the lattice asks for where a pitch has no ball; ratios are absolute.
    void cardStackTwoShow(OrloRatio ratio);
    void cardStackTwoHide(OrloRatio ratio);
    void nodeStackAdd(OrloRatio ratio);
    void nodeStackRemove(OrloRatio ratio);
    void nodeStackToggle(OrloRatio ratio, bool on);
    void nodeStackSelect(OrloRatio ratio, bool on);
    void nodeStackHold(OrloRatio ratio, bool on);
    void nodeStackAltered(OrloRatio ratio, bool on);
    void nodeStackShow();
    void nodeStackReset();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void connectLattice(const Orlo* orlo);
    void applyMargin();

    std::unique_ptr<SvgLoader> mLoader;
    OrloView* mView;
    CardStackWidget* mCardStack;       // cards of the balls
    NodeStackWidget* mNodeStack;       // pitches without a ball
    CardStackTwoWidget* mCardStackTwo; // their cards
    CardConnectorOverlay* mCardConnectors;
    FreeConnectorOverlay* mFreeConnectors;
    QFrame* mRightFrame; // of the three stacks
    int mRightMargin = 0;
};
