#pragma once

#include <QList>
#include <QWidget>

class CardStackTwoWidget;
class FreeBallWidget;
class NodeStackWidget;
class OrloView;

/// The dotted lines of the sounding free balls: to their cards and, where the lattice has an axis
/// of pitch, to the lattice. Lies over the page and lets every press through.
class FreeConnectorOverlay : public QWidget
{
    Q_OBJECT

public:
    explicit FreeConnectorOverlay(QWidget* parent = nullptr);

    /// All three stand on the same page and outlive every connector.
    void init(const OrloView* view, const CardStackTwoWidget* cardStackTwo, const NodeStackWidget* nodeStack);
    /// The ball has to be taken out before it is deleted. A ball already there stays once.
    void addConnector(const FreeBallWidget* ball);
    void removeConnector(const FreeBallWidget* ball);

    const QList<const FreeBallWidget*>& balls() const { return mBalls; }
    /// The lines of a ball as they are drawn, in this widget's coordinates: one to the cards, and
    /// a second one to the lattice if the ball lies at its pitch; none while it is not to be seen.
    QList<QLine> linesOf(const FreeBallWidget* ball) const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QList<const FreeBallWidget*> mBalls; // not owned
    const OrloView* mView = nullptr;
    const CardStackTwoWidget* mCardStackTwo = nullptr;
    const NodeStackWidget* mNodeStack = nullptr;
};
