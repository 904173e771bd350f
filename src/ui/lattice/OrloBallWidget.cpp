#include "ui/lattice/OrloBallWidget.h"

#include "app/Accessors.h"
#include "app/Settings.h"
#include "model/OrloBall.h"
#include "sound/PdPlayer.h"
#include "ui/lattice/BallColor.h"
#include "ui/lattice/BallPress.h"
#include "ui/lattice/GeometryConstants.h"
#include "ui/lattice/OrloStrutWidget.h"
#include "ui/lattice/OrloWidget.h"
#include "ui/stacks/CardStackWidget.h"

#include <QDebug>
#include <QGraphicsSceneMouseEvent>
#include <QThread>

namespace {

// Compared with the literal on purpose: a ball of another size takes a leaf's proportions.
constexpr int TREE_BALL_DIAMETER = 28;
constexpr BallCircles::Proportions TREE_PROPORTIONS{1.25, 1.25, 10};
constexpr BallCircles::Proportions LEAF_PROPORTIONS{1.6, 1.6, 10};

constexpr unsigned long HOVER_WAIT_MS = 100;

} // namespace

OrloBallWidget::OrloBallWidget(const OrloBall* ball, OrloWidget* orloWidget, int diameter,
                               QGraphicsItem* parent)
    : QGraphicsItemGroup(parent)
    , mBall(ball)
    , mOrloWidget(orloWidget)
    , mCardStack(orloWidget->cardStack())
    , mDiameter(diameter)
    , mCircles(this, diameter, diameter == TREE_BALL_DIAMETER ? TREE_PROPORTIONS : LEAF_PROPORTIONS)
    , mNoteEvent(ball->path())
    , mTransposeEvent(OrloRatio(ball->path()))
    , mSelectEvent(OrloRatio(ball->path()))
    , mResetEvent(OrloRatio(ball->path()), 0.0F)
    , mResetDeselectEvent(OrloRatio(ball->path()), 1.0F)
{
    // A group would take its members' presses; here each ball takes its own.
    setHandlesChildEvents(false);
    if (parent)
        parent->setHandlesChildEvents(false);
    setAcceptHoverEvents(true);
    updateBall();
    setFlag(ItemClipsToShape);
    setFlag(ItemHasNoContents);

    connect(mBall, &OrloBall::playingChanged, this, &OrloBallWidget::onPlayingChanged, Qt::DirectConnection);
    connect(mBall, &OrloBall::enabledChanged, this, &OrloBallWidget::onEnabledChanged, Qt::DirectConnection);
    connect(mBall, &OrloBall::selectedChanged, this, &OrloBallWidget::onSelectedChanged,
            Qt::DirectConnection);
    connect(mBall, &OrloBall::holdChanged, this, &OrloBallWidget::onHoldChanged, Qt::DirectConnection);
    connect(mBall, &OrloBall::alteredChanged, this, &OrloBallWidget::onAlteredChanged, Qt::DirectConnection);
    setFiltersChildEvents(true);
}

OrloBallWidget::~OrloBallWidget()
{
    if (mCardStack)
        mCardStack->hideCardForBall(this);
}

// ---------------------------------------------------------------- look

void OrloBallWidget::updateColor()
{
    updateColor(mBall->color(), false);
}

void OrloBallWidget::updateColor(const QColor& color, bool unity)
{
    prepareGeometryChange(); // a playing ball's outline is wider
    mCircles.draw(color, unity, mBall->isPlaying());
}

void OrloBallWidget::updateBall()
{
    const int absRelView = app::settings()->absRelView;
    const BallColor paint = BallColor::of(*mBall, *mOrloWidget->orlo(), absRelView);
    updateColor(paint.color, paint.unity);
    if (paint.adjustsStruts)
        updateStruts(absRelView == 1 || absRelView == 2);

    mCircles.show(BallCircles::Mark::Selected, mBall->isSelected());
    mCircles.show(BallCircles::Mark::Hold, mBall->isHold());
    mCircles.show(BallCircles::Mark::Altered, mBall->isAltered());
}

void OrloBallWidget::updateStruts(bool abs)
{
    if (mStruts.isEmpty())
        return;
    const int step = abs ? mBall->lastAbsStep() : mBall->lastStep();
    for (OrloStrutWidget* strut : std::as_const(mStruts)) {
        if (strut->isFalling())
            strut->setWidth(step >= 3 ? LINK_WIDTH : STRUT_WIDTH);
    }
}

// ---------------------------------------------------------------- what the model says

void OrloBallWidget::updateCard()
{
    if (!mCardStack)
        return;
    if (mBall->isPlaying() && mBall->isEnabled())
        mCardStack->showCardForBall(this);
    else
        mCardStack->hideCardForBall(this);
}

void OrloBallWidget::onPlayingChanged()
{
    updateBall();
    if (mBall->isEnabled())
        updateCard();
}

void OrloBallWidget::onEnabledChanged(bool enabled)
{
    setVisible(enabled);
    for (OrloStrutWidget* strut : std::as_const(mStruts))
        strut->setVisible(enabled);
    if (mBall->isPlaying())
        updateCard();
}

void OrloBallWidget::onSelectedChanged(bool selected)
{
    mCircles.show(BallCircles::Mark::Selected, selected);
}

void OrloBallWidget::onHoldChanged(bool hold)
{
    mCircles.show(BallCircles::Mark::Hold, hold);
}

void OrloBallWidget::onAlteredChanged(bool altered)
{
    mCircles.show(BallCircles::Mark::Altered, altered);
}

// ---------------------------------------------------------------- what the player does

const OrloEvent* OrloBallWidget::eventFor(Qt::KeyboardModifiers modifiers) const
{
    switch (ballPressFor(modifiers)) {
    case BallPress::None: break;
    case BallPress::Note: return &mNoteEvent;
    case BallPress::Transpose: return &mTransposeEvent;
    case BallPress::SelectToggle: return &mSelectEvent;
    case BallPress::Reset: return &mResetEvent;
    case BallPress::ResetAndDeselect:
        qDebug() << "OrloBall: Alt + Ctrl + mouse click.";
        return &mResetDeselectEvent;
    }
    return nullptr;
}

bool OrloBallWidget::sceneEvent(QEvent* event)
{
    if (!isSelectingPress(*event))
        return QGraphicsItemGroup::sceneEvent(event);
    app::player()->queueEventGui(&mSelectEvent);
    return true;
}

void OrloBallWidget::mousePressEvent(QGraphicsSceneMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    if (const OrloEvent* command = eventFor(event->modifiers()))
        app::player()->queueEventGui(command);
}

void OrloBallWidget::mouseDoubleClickEvent(QGraphicsSceneMouseEvent*) {}

void OrloBallWidget::raiseCard() const
{
    if (mCardStack)
        mCardStack->raiseCardForBall(this);
}

void OrloBallWidget::hoverEnterEvent(QGraphicsSceneHoverEvent*)
{
    if (!mBall->isPlaying() || !mBall->isEnabled())
        return;
    if (mDiameter == TREE_BALL_DIAMETER) {
        QThread::msleep(HOVER_WAIT_MS);
        if (!isUnderMouse())
            return;
    }
    raiseCard();
}

bool OrloBallWidget::sceneEventFilter(QGraphicsItem*, QEvent* event)
{
    if (event->type() == QEvent::GraphicsSceneHoverLeave && mBall->isPlaying() && mBall->isEnabled()
        && isUnderMouse())
        raiseCard();
    return false;
}
