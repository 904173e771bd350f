#pragma once

#include <QHash>
#include <QObject>
#include <QPoint>

class QEventPoint;
class QGraphicsItem;
class QGraphicsView;
class QMouseEvent;
class QTouchEvent;

/// Lets every finger on a view press a ball of its own, as the mouse would. Qt turns the first finger of a
/// touch into a mouse; this presses for the others, and lets that mouse go where it would stay down. No two
/// fingers press one ball at a time.
class FingerPresses : public QObject
{
    Q_OBJECT

public:
    /// Follows the view's viewport, which takes touches from here on. The view owns this object.
    explicit FingerPresses(QGraphicsView* view);

    /// Whether the two fingers of the present touch zoom. On the ground they do, those on balls only once
    /// they clearly move together or apart.
    bool areZooming() const { return mZooming; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void followTouch(QTouchEvent& touch);
    void forgetLostFingers(const QTouchEvent& touch);
    void followPinch(const QTouchEvent& touch);
    bool followMouse(const QMouseEvent& mouse);
    void beginAlone(const QTouchEvent& touch);
    void press(const QEventPoint& finger, Qt::KeyboardModifiers modifiers);
    void releaseMouse();
    QGraphicsItem* ballAt(QPoint point) const;

    QGraphicsView* const mView;
    QHash<int, const QGraphicsItem*> mHeld; // by finger; may be gone
    int mMouseFinger = -1;                  // while it is down
    int mAwaited = -1;                      // the mouse finger, until its mouse comes
    bool mMouseDown = false;
    QPoint mMouseAt; // in the viewport
    bool mZooming = false;
};
