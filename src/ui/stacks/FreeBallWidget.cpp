#include "ui/stacks/FreeBallWidget.h"

#include "app/Accessors.h"
#include "app/Settings.h"
#include "model/AbsoluteRatio.h"
#include "model/Orlo.h"
#include "model/OrloPathUnlimited.h"
#include "sound/OrloTransposeEvent.h"
#include "sound/PdPlayer.h"
#include "ui/lattice/BallPress.h"
#include "ui/stacks/CardStackTwoWidget.h"
#include "ui/stacks/NodeStackWidget.h"

#include <QGraphicsSceneMouseEvent>

#include <memory>

namespace {

constexpr BallCircles::Proportions PROPORTIONS{1.6, 1.4, 5};

} // namespace

FreeBallWidget::FreeBallWidget(NodeStackWidget* stack, const OrloRatio* ratio, int diameter,
                               QGraphicsItem* parent)
    : QGraphicsItemGroup(parent)
    , mStack(stack)
    , mRatio(*ratio)
    , mCircles(this, diameter, PROPORTIONS)
    , mNoteEvent(mRatio, OrloNoteEvent::OVERRIDES_HOLD)
    , mRemoveEvent(mRatio)
    , mSelectEvent(ratios::relativeOf(mRatio))
    , mResetEvent(ratios::relativeOf(mRatio), 0.0F)
    , mResetDeselectEvent(ratios::relativeOf(mRatio), 1.0F)
{
    setVisible(false);
    setAcceptHoverEvents(true);
    setFlag(ItemClipsToShape);
    setFlag(ItemHasNoContents);
    updateBall();
}

// ---------------------------------------------------------------- look

void FreeBallWidget::updateBall()
{
    const OrloRatio shown = app::settings()->absRelView < 1 ? ratios::relativeOf(mRatio) : mRatio;
    const std::unique_ptr<OrloPathUnlimited> path(shown.getUnlimitedPathFromRatio());
    updateColor(app::orlo()->lookupColor(path->getHighestPrime()), false);
    mCircles.show(BallCircles::Mark::Selected, mSelected);
    mCircles.show(BallCircles::Mark::Hold, mHold);
    mCircles.show(BallCircles::Mark::Altered, mAltered);
}

void FreeBallWidget::updateColor(const QColor& color, bool unity)
{
    prepareGeometryChange(); // a playing ball's outline is wider
    mCircles.draw(color, unity, mPlaying);
}

void FreeBallWidget::setPlayingState(bool playing)
{
    mPlaying = playing;
    updateBall();
}

void FreeBallWidget::togglePlayingState()
{
    setPlayingState(!mPlaying);
}

void FreeBallWidget::setSelected(bool selected)
{
    mSelected = selected;
    mCircles.show(BallCircles::Mark::Selected, selected);
}

void FreeBallWidget::setHold(bool hold)
{
    mHold = hold;
    mCircles.show(BallCircles::Mark::Hold, hold);
}

void FreeBallWidget::setAltered(bool altered)
{
    mAltered = altered;
    mCircles.show(BallCircles::Mark::Altered, altered);
}

// ---------------------------------------------------------------- what the player does

void FreeBallWidget::queuePress(Qt::KeyboardModifiers modifiers) const
{
    PdPlayer* player = app::player();
    switch (ballPressFor(modifiers)) {
    case BallPress::None: return;
    case BallPress::Note: return player->queueEventGui(&mNoteEvent);
    case BallPress::SelectToggle: return player->queueEventGui(&mSelectEvent);
    case BallPress::Reset: return player->queueEventGui(&mResetEvent);
    case BallPress::ResetAndDeselect: return player->queueEventGui(&mResetDeselectEvent);
    case BallPress::Transpose:
        const OrloTransposeEvent transpose(ratios::relativeOf(mRatio));
        return player->queueEventGui(&transpose);
    }
}

void FreeBallWidget::removeThyself()
{
    app::player()->queueEventGui(&mRemoveEvent);
}

bool FreeBallWidget::sceneEvent(QEvent* event)
{
    if (!isSelectingPress(*event))
        return QGraphicsItemGroup::sceneEvent(event);
    app::player()->queueEventGui(&mSelectEvent);
    return true;
}

void FreeBallWidget::mousePressEvent(QGraphicsSceneMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        queuePress(event->modifiers());
    else if (event->button() == Qt::RightButton)
        removeThyself();
    else
        event->ignore();
}

void FreeBallWidget::mouseDoubleClickEvent(QGraphicsSceneMouseEvent*) {}

void FreeBallWidget::hoverEnterEvent(QGraphicsSceneHoverEvent*)
{
    mStack->raiseNodeForRatio(mRatio);
    if (mPlaying && mStack->cardStackTwo())
        mStack->cardStackTwo()->raiseCardForRatio(mRatio);
}
