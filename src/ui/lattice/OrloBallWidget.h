#pragma once

#include "sound/OrloNodeResetEvent.h"
#include "sound/OrloNodeSelectToggleEvent.h"
#include "sound/OrloNoteEvent.h"
#include "sound/OrloTransposeEvent.h"
#include "ui/lattice/BallCircles.h"

#include <QGraphicsItemGroup>
#include <QList>
#include <QObject>
#include <QPointer>

class CardStackWidget;
class OrloBall;
class OrloStrutWidget;
class OrloWidget;

/// One ball of the lattice on one page: draws what its model says, and turns a press into a
/// command to the player. A press changes nothing here; the ball lights when the model reports.
class OrloBallWidget : public QObject, public QGraphicsItemGroup
{
    Q_OBJECT

public:
    enum { Type = UserType + 1 };

    /// `ball` outlives this item. `diameter` is in scene units.
    OrloBallWidget(const OrloBall* ball, OrloWidget* orloWidget, int diameter, QGraphicsItem* parent);
    /// Takes the ball's card along.
    ~OrloBallWidget() override;

    /// Draws the ball anew from its model, in the colour of the option `absRelView`.
    void updateBall();
    /// In the ball's own colour.
    void updateColor();
    /// `unity`: the ball of the central pitch, which keeps its own colour when it plays.
    void updateColor(const QColor& color, bool unity);
    /// Thick or thin, by the ball's last step as it stands or as seen from the absolute origin.
    void updateStruts(bool abs);

    /// Radius of the ball with its outline when it plays, in scene units.
    double playingRadius() const { return mCircles.playingRadius(); }

    const OrloBall* ball() const { return mBall; }
    int diameter() const { return mDiameter; }
    const QList<OrloStrutWidget*>& struts() const { return mStruts; }
    void addStrut(OrloStrutWidget* strut) { mStruts.append(strut); }

    QRectF boundingRect() const override { return mCircles.boundingRect(); }
    /// The round ball, so that close neighbours do not catch each other's presses.
    QPainterPath shape() const override { return mCircles.shape(); }
    int type() const override { return Type; }

    /// Opens the ball's card, or closes it, as the model has it; for a ball that was just made.
    void updateCard();

public slots:
    void onPlayingChanged();
    void onEnabledChanged(bool enabled);
    void onSelectedChanged(bool selected);
    void onHoldChanged(bool hold);
    void onAlteredChanged(bool altered);

protected:
    /// The middle button goes its own way; mousePressEvent knows the others.
    bool sceneEvent(QEvent* event) override;
    void mousePressEvent(QGraphicsSceneMouseEvent* event) override;
    /// Empty: the second press of a quick double click must not toggle the note back.
    void mouseDoubleClickEvent(QGraphicsSceneMouseEvent* event) override;
    /// Raises the card. A tree ball waits on this thread for as long as a pointer takes to pass over it,
    /// since the pointer often crosses it on the way to another place.
    void hoverEnterEvent(QGraphicsSceneHoverEvent* event) override;
    /// For a pointer that comes back to the ball from one of its leaves.
    bool sceneEventFilter(QGraphicsItem* watched, QEvent* event) override;

private:
    const OrloEvent* eventFor(Qt::KeyboardModifiers modifiers) const;
    void raiseCard() const;

    const OrloBall* const mBall;
    OrloWidget* const mOrloWidget;
    const QPointer<CardStackWidget> mCardStack; // may be deleted before the scene; null: no cards
    const int mDiameter;
    BallCircles mCircles;
    QList<OrloStrutWidget*> mStruts; // at either end; not owned

    // Ready-made, so that a press allocates nothing.
    const OrloNoteEvent mNoteEvent;
    const OrloTransposeEvent mTransposeEvent;
    const OrloNodeSelectToggleEvent mSelectEvent;
    const OrloNodeResetEvent mResetEvent;
    const OrloNodeResetEvent mResetDeselectEvent;
};
