#pragma once

#include "model/OrloRatio.h"
#include "sound/OrloNodeRemoveEvent.h"
#include "sound/OrloNodeResetEvent.h"
#include "sound/OrloNodeSelectToggleEvent.h"
#include "sound/OrloNoteEvent.h"
#include "ui/lattice/BallCircles.h"

#include <QGraphicsItemGroup>
#include <QObject>

class NodeStackWidget;

/// The ball of a pitch that has none in the lattice. There is no model behind it: it keeps its
/// flags itself, as the stack sets them. A press is a command to the player and changes nothing
/// here.
class FreeBallWidget : public QObject, public QGraphicsItemGroup
{
    Q_OBJECT

public:
    enum { Type = UserType + 4 };

    /// Copies the ratio, which is absolute. Hidden until the stack has placed it.
    FreeBallWidget(NodeStackWidget* stack, const OrloRatio* ratio, int diameter, QGraphicsItem* parent);

    /// Draws the ball anew from its flags, in the colour of the highest prime on its way, by the
    /// option `absRelView`.
    void updateBall();
    void updateColor(const QColor& color, bool unity);

    /// Radius with the outline of a playing ball, in scene units.
    double playingRadius() const { return mCircles.playingRadius(); }
    double glowRadius() const { return mCircles.glowRadius(); }

    void setPlayingState(bool playing);
    void togglePlayingState();
    void setSelected(bool selected);
    void setHold(bool hold);
    void setAltered(bool altered);
    /// False when the stack had to move it away from the height of its pitch.
    void setAtPitch(bool atPitch) { mAtPitch = atPitch; }

    bool isPlaying() const { return mPlaying; }
    bool isSelected() const { return mSelected; }
    bool isHold() const { return mHold; }
    bool isAltered() const { return mAltered; }
    bool isAtPitch() const { return mAtPitch; }
    /// Absolute.
    const OrloRatio& ratio() const { return mRatio; }

    /// Asks the player to stop the note and to have this node taken out.
    void removeThyself();

    QRectF boundingRect() const override { return mCircles.rectWithRings(); }
    /// What is seen of the ball, but for its glow.
    QPainterPath shape() const override { return mCircles.shapeWithRings(); }
    int type() const override { return Type; }

protected:
    /// The middle button goes its own way; mousePressEvent knows the others.
    bool sceneEvent(QEvent* event) override;
    void mousePressEvent(QGraphicsSceneMouseEvent* event) override;
    /// Empty: the second press of a quick double click must not toggle the note back.
    void mouseDoubleClickEvent(QGraphicsSceneMouseEvent* event) override;
    void hoverEnterEvent(QGraphicsSceneHoverEvent* event) override;

private:
    void queuePress(Qt::KeyboardModifiers modifiers) const;

    NodeStackWidget* const mStack;
    const OrloRatio mRatio;
    BallCircles mCircles;
    bool mPlaying = false;
    bool mSelected = false;
    bool mHold = false;
    bool mAltered = false;
    bool mAtPitch = true;

    // Ready-made, so that a press allocates nothing.
    const OrloNoteEvent mNoteEvent;
    const OrloNodeRemoveEvent mRemoveEvent;
    const OrloNodeSelectToggleEvent mSelectEvent;
    const OrloNodeResetEvent mResetEvent;
    const OrloNodeResetEvent mResetDeselectEvent;
};
