#pragma once

#include "model/OrloRatio.h"
#include "ui/stacks/FreeBallLayout.h"

#include <QGraphicsView>
#include <QHash>
#include <QList>
#include <QPointer>

class BallScene;
class CardStackTwoWidget;
class FreeBallWidget;
class FreeConnectorOverlay;
class OrloView;

/// The column of balls for pitches that have none in the lattice, near the height of their pitch
/// (PitchAxis, FreeBallLayout). Balls are known by their absolute ratio.
///
/// Heights are computed in updatePositions() alone, in pixels of this widget, which its scene has
/// as its units. Graphical thread only.
class NodeStackWidget : public QGraphicsView
{
    Q_OBJECT

public:
    explicit NodeStackWidget(QWidget* parent = nullptr);
    ~NodeStackWidget() override;

    /// Once. None of the three is owned; until then nothing is placed.
    void init(FreeConnectorOverlay* overlay, const OrloView* view, CardStackTwoWidget* cardStackTwo);

    /// A ratio that is there already keeps its ball. The new ball shows with the next pass.
    void addNodeForRatio(OrloRatio ratio);
    /// The ball is deleted when control returns to the event loop, since it may be handling one.
    void removeNodeForRatio(OrloRatio ratio);
    // A ratio without a ball changes nothing.
    void toggleNodeForRatio(OrloRatio ratio, bool on);
    void selectNodeForRatio(OrloRatio ratio, bool on);
    void setHoldNodeForRatio(OrloRatio ratio, bool on);
    void setAlteredNodeForRatio(OrloRatio ratio, bool on);
    /// Over all that it collides with.
    void raiseNodeForRatio(OrloRatio ratio);
    /// Takes all balls out.
    void reset();
    /// Makes every ball anew with its flags, which draws it by the present mode and constants.
    void updateNodes();
    void showNodes();
    /// One step of a pass: `rest` are the keys of the balls that follow.
    void updatePosition(OrloRatio ratio, FreeBallWidget* ball, QList<double>* rest);

    /// In pixels, at the bottom of the stack.
    void setBottomSpace(int pixels) { mBottomSpace = pixels; }
    CardStackTwoWidget* cardStackTwo() const { return mCardStackTwo; }
    /// By absolute ratio.
    const QHash<OrloRatio, FreeBallWidget*>& balls() const { return mBalls; }
    /// Null: no such ball.
    FreeBallWidget* ballForRatio(const OrloRatio& ratio) const;

    /// Room for the columns.
    QSize sizeHint() const override;

public slots:
    /// Places all balls, from the highest pitch down.
    void updatePositions();

signals:
    void resized();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void renewConnector(FreeBallWidget* ball);
    void retire(FreeBallWidget* ball);

    BallScene* const mBallScene;              // owned
    QHash<OrloRatio, FreeBallWidget*> mBalls; // owned by the scene
    int mBottomSpace = 0;
    QPointer<FreeConnectorOverlay> mOverlay; // a page may delete it first
    const OrloView* mView = nullptr;
    CardStackTwoWidget* mCardStackTwo = nullptr;
    FreeBallLayout mLayout;
};
