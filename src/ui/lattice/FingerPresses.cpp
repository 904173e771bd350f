#include "ui/lattice/FingerPresses.h"

#include "ui/lattice/OrloBallWidget.h"
#include "ui/stacks/FreeBallWidget.h"

#include <QCoreApplication>
#include <QGraphicsSceneMouseEvent>
#include <QGraphicsView>
#include <QLineF>
#include <QMouseEvent>
#include <QPointingDevice>
#include <QTouchEvent>

#include <algorithm>

namespace {

/// In pixels. Fingers that hold balls do not lie quite still.
constexpr double PINCH_FROM = 24.0;

} // namespace

FingerPresses::FingerPresses(QGraphicsView* view)
    : QObject(view)
    , mView(view)
{
    view->viewport()->setAttribute(Qt::WA_AcceptTouchEvents);
    view->viewport()->installEventFilter(this);
}

bool FingerPresses::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd: followTouch(static_cast<QTouchEvent&>(*event)); break;
    case QEvent::TouchCancel:
        mHeld.clear();
        releaseMouse();
        break;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::MouseButtonRelease: return followMouse(static_cast<QMouseEvent&>(*event));
    default: break;
    }
    return QObject::eventFilter(watched, event);
}

void FingerPresses::followTouch(QTouchEvent& touch)
{
    if (touch.type() == QEvent::TouchBegin)
        mMouseFinger = -1;
    forgetLostFingers(touch);
    if (touch.pointCount() == 2)
        followPinch(touch); // before a finger that goes is forgotten
    if (touch.pointCount() == 1 && touch.points().at(0).state() == QEventPoint::Pressed) {
        beginAlone(touch);
        return;
    }
    if (touch.pointCount() > 1)
        releaseMouse(); // or it would hold the ball, or drag the ground, until some later click
    for (const QEventPoint& finger : touch.points()) {
        if (finger.state() == QEventPoint::Pressed) {
            press(finger, touch.modifiers());
        } else if (finger.state() == QEventPoint::Released) {
            mHeld.remove(finger.id());
            if (finger.id() == mMouseFinger) {
                mMouseFinger = -1;
                touch.ignore(); // so that Qt ends its mouse too
            }
        }
    }
}

/// A touch tells of all fingers that are down; the end of one may go elsewhere.
void FingerPresses::forgetLostFingers(const QTouchEvent& touch)
{
    const QList<QEventPoint>& fingers = touch.points();
    mHeld.removeIf([&fingers](const auto& held) {
        return std::none_of(fingers.begin(), fingers.end(),
                            [&held](const QEventPoint& finger) { return finger.id() == held.key(); });
    });
}

void FingerPresses::followPinch(const QTouchEvent& touch)
{
    const QEventPoint& first = touch.points().at(0);
    const QEventPoint& second = touch.points().at(1);
    const double moved = QLineF(first.position(), second.position()).length()
                         - QLineF(first.pressPosition(), second.pressPosition()).length();
    const auto isOnBall = [this](const QEventPoint& finger) {
        return finger.state() == QEventPoint::Pressed ? ballAt(finger.position().toPoint()) != nullptr
                                                      : mHeld.value(finger.id()) != nullptr;
    };
    const bool wasZooming = mZooming && !touch.touchPointStates().testFlag(QEventPoint::Pressed);
    mZooming = wasZooming || qAbs(moved) > PINCH_FROM || !(isOnBall(first) || isOnBall(second));
}

/// True: the event goes no further, since its finger has pressed already.
bool FingerPresses::followMouse(const QMouseEvent& mouse)
{
    const bool isPress = mouse.button() == Qt::LeftButton && mouse.type() != QEvent::MouseButtonRelease;
    const bool isFinger = mouse.source() != Qt::MouseEventNotSynthesized;
    if (isPress && isFinger && mMouseFinger < 0 && !mHeld.isEmpty())
        return true;
    mMouseAt = mouse.position().toPoint();
    if (mouse.button() == Qt::LeftButton)
        mMouseDown = isPress;
    if (isPress)
        mAwaited = -1;
    return false;
}

/// A finger that is alone on this view is a mouse, unless another finger, on some other control, is it.
/// Qt sends the mouse right after the touch; a system that makes its own may be late.
void FingerPresses::beginAlone(const QTouchEvent& touch)
{
    const QEventPoint finger = touch.points().at(0);
    mMouseFinger = finger.id();
    mAwaited = finger.id();
    mHeld.insert(finger.id(), ballAt(finger.position().toPoint()));
    if (touch.pointingDevice()->capabilities().testFlag(QInputDevice::Capability::MouseEmulation))
        return;
    const auto pressAfterAll = [this, finger, modifiers = touch.modifiers()] {
        if (mAwaited != finger.id())
            return;
        mAwaited = -1;
        mMouseFinger = -1;
        const bool isDown = mHeld.remove(finger.id());
        press(finger, modifiers);
        if (!isDown)
            mHeld.remove(finger.id());
    };
    QMetaObject::invokeMethod(this, pressAfterAll, Qt::QueuedConnection);
}

/// Not by a mouse event to the view, which would go to the ball that holds the mouse.
void FingerPresses::press(const QEventPoint& finger, Qt::KeyboardModifiers modifiers)
{
    const QPoint point = finger.position().toPoint();
    QGraphicsItem* ball = ballAt(point);
    const bool isTaken = ball && mHeld.values().contains(ball);
    mHeld.insert(finger.id(), ball);
    if (!ball || isTaken)
        return;
    QGraphicsSceneMouseEvent event(QEvent::GraphicsSceneMousePress);
    event.setWidget(mView->viewport());
    event.setButton(Qt::LeftButton);
    event.setButtons(Qt::LeftButton);
    event.setModifiers(modifiers);
    event.setScenePos(mView->mapToScene(point));
    event.setPos(ball->mapFromScene(event.scenePos()));
    event.setScreenPos(finger.globalPosition().toPoint());
    mView->scene()->sendEvent(ball, &event);
}

void FingerPresses::releaseMouse()
{
    if (!mMouseDown)
        return;
    QMouseEvent release(QEvent::MouseButtonRelease, mMouseAt, mView->viewport()->mapToGlobal(mMouseAt),
                        Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(mView->viewport(), &release);
}

QGraphicsItem* FingerPresses::ballAt(QPoint point) const
{
    const QList<QGraphicsItem*> under = mView->items(point);
    for (QGraphicsItem* item : under) {
        if (item->type() == OrloBallWidget::Type || item->type() == FreeBallWidget::Type)
            return item;
    }
    return nullptr;
}
