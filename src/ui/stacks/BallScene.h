#pragma once

#include <QGraphicsScene>

/// A scene of balls, of the lattice or free, which tells the pitch of one on which the pointer rests: ratio,
/// note and cents, and frequency, written as on its card. The text is made when it is asked for.
class BallScene : public QGraphicsScene
{
    Q_OBJECT

public:
    using QGraphicsScene::QGraphicsScene;

    /// For a change of what the balls mean: writes the text that is shown anew, or takes it away.
    void updateToolTip();

protected:
    void helpEvent(QGraphicsSceneHelpEvent* event) override;

private:
    QString mShown;
    QPoint mAskedAt; // on the screen
};
