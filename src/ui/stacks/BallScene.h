#pragma once

#include <QGraphicsScene>

/// A scene of balls, of the lattice or free, which tells the pitch of one on which the pointer rests: ratio,
/// note and cents, and frequency, written as on its card. The text is made when it is asked for.
class BallScene : public QGraphicsScene
{
    Q_OBJECT

public:
    using QGraphicsScene::QGraphicsScene;

    /// For a change of what the balls mean: takes away the text that is shown.
    void hideToolTip() const;

protected:
    void helpEvent(QGraphicsSceneHelpEvent* event) override;

private:
    QString mShown;
};
