#include "ui/stacks/BallScene.h"

#include "model/Note.h"
#include "ui/cards/CardContents.h"
#include "ui/lattice/OrloBallWidget.h"
#include "ui/stacks/FreeBallWidget.h"

#include <QApplication>
#include <QGraphicsSceneHelpEvent>
#include <QGraphicsView>
#include <QHelpEvent>
#include <QToolTip>
#include <QWindow>

#include <optional>

namespace {

/// Nothing for an item that is no ball.
std::optional<CardContents> contentsOf(const QGraphicsItem* item)
{
    if (const auto* ball = qgraphicsitem_cast<const OrloBallWidget*>(item))
        return CardContents::ofBall(*ball->ball());
    if (const auto* ball = qgraphicsitem_cast<const FreeBallWidget*>(item))
        return CardContents::ofRatio(ball->ratio());
    return std::nullopt;
}

QString textOf(const CardContents& contents)
{
    const QString note = Note::getNoteForPath(&contents.path, contents.frequency).noteSpelling();
    return QStringLiteral("%1\n%2 %3 cents\n%4").arg(contents.ratio, note, contents.cents, contents.hertz);
}

/// The text may lie over the ball that is pressed next.
void letPressesThroughToolTip()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (const QWidget* window : windows) {
        QWindow* const handle = window->inherits("QTipLabel") ? window->windowHandle() : nullptr;
        if (handle && !handle->flags().testFlag(Qt::WindowTransparentForInput))
            handle->setFlag(Qt::WindowTransparentForInput);
    }
}

} // namespace

void BallScene::helpEvent(QGraphicsSceneHelpEvent* event)
{
    const QWidget* viewport = event->widget();
    const auto* view = viewport ? qobject_cast<QGraphicsView*>(viewport->parentWidget()) : nullptr;
    const QList<QGraphicsItem*> under = view ? items(event->scenePos()) : QList<QGraphicsItem*>();
    for (const QGraphicsItem* item : under) {
        const std::optional<CardContents> contents = contentsOf(item);
        if (!contents)
            continue;
        mShown = textOf(*contents);
        mAskedAt = event->screenPos();
        const QRect ball = view->mapFromScene(item->sceneBoundingRect()).boundingRect();
        QToolTip::showText(event->screenPos(), mShown, event->widget(), ball);
        letPressesThroughToolTip();
        event->accept();
        return;
    }
    QGraphicsScene::helpEvent(event);
}

void BallScene::updateToolTip()
{
    if (mShown.isEmpty() || !QToolTip::isVisible() || QToolTip::text() != mShown)
        return;
    const QList<QGraphicsView*> shownIn = views();
    for (QGraphicsView* view : shownIn) {
        QHelpEvent again(QEvent::ToolTip, view->viewport()->mapFromGlobal(mAskedAt), mAskedAt);
        QCoreApplication::sendEvent(view->viewport(), &again);
    }
}
