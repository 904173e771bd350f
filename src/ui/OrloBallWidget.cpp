#include "ui/OrloBallWidget.h"

#include "app/Accessors.h"
#include "app/Settings.h"
#include "model/Orlo.h"
#include "model/OrloBall.h"
#include "sound/PdPlayer.h"
#include "ui/GeometryConstants.h"
#include "ui/OrloStrutWidget.h"
#include "ui/OrloWidget.h"

#include <QDebug>
#include <QGraphicsSceneMouseEvent>
#include <QPainterPath>
#include <QPen>
#include <QRadialGradient>

#include <algorithm>

namespace {

// Compared with the literal on purpose: a ball of another size takes a leaf's proportions.
constexpr int TREE_BALL_DIAMETER = 28;
constexpr double TREE_RING_FACTOR = 1.25;
constexpr double LEAF_RING_FACTOR = 1.6;
constexpr double HOLD_DOT_FACTOR = 0.3;

constexpr double MAIN_Z = 20;
constexpr double RING_Z = 10;
constexpr double ALTERED_Z = -10;
constexpr double HOLD_Z = 100;
constexpr double GLOW_Z = 10;

constexpr int UNITY_FILL_FACTOR = 100;
constexpr int UNITY_OUTLINE_FACTOR = 200;
constexpr int CROWDED_KEY = 0; // of the prime colours
constexpr int UNITY_KEY = 1;

constexpr QColor TRANSPOSED_CENTRE(158, 158, 158);

QPen alteredPen(const QColor& color)
{
    return QPen(color, 1.0, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin);
}

/// Transposed by two or more leaf steps: one colour for all would say nothing any more.
bool isCrowded(const QList<int>& transposeSteps)
{
    return std::count_if(transposeSteps.begin(), transposeSteps.end(), [](int step) { return qAbs(step) > 3; }) >= 2;
}

bool isTreeStep(int step)
{
    return step < 4;
}

} // namespace

OrloBallWidget::OrloBallWidget(const OrloBall* ball, OrloWidget* orloWidget, int diameter, QGraphicsItem* parent)
    : QGraphicsItemGroup(parent)
    , mBall(ball)
    , mOrloWidget(orloWidget)
    , mDiameter(diameter)
    , mNoteEvent(ball->path())
    , mTransposeEvent(OrloRatio(ball->path()))
    , mSelectEvent(OrloRatio(ball->path()))
    , mResetEvent(OrloRatio(ball->path()), 0.0F)
    , mResetDeselectEvent(OrloRatio(ball->path()), 1.0F)
{
    const double ringDiameter = diameter * (diameter == TREE_BALL_DIAMETER ? TREE_RING_FACTOR : LEAF_RING_FACTOR);
    mMain = addEllipse(diameter, MAIN_Z);
    mSelectedRing = addEllipse(ringDiameter, RING_Z);
    mSelectedRing->setBrush(Qt::gray);
    mAlteredRing = addEllipse(ringDiameter, ALTERED_Z);
    mAlteredRing->setBrush(Qt::transparent);
    mAlteredRing->setPen(alteredPen(Qt::black));
    mHoldDot = addEllipse(HOLD_DOT_FACTOR * diameter, HOLD_Z);
    mHoldDot->setBrush(Qt::gray);

    const double glowDiameter = diameter * BALL_GLOW_SIZE_FACTOR / 100.0;
    mGlow = addEllipse(glowDiameter, GLOW_Z);
    mGlow->setPen(Qt::NoPen);
    QRadialGradient gradient(QPointF(0.0, 0.0), glowDiameter / 2);
    gradient.setColorAt(0.0, QColor(255, 255, 255, qBound(0, GLOW_ALPHA_START, 255)));
    gradient.setColorAt(1.0, QColor(255, 255, 255, 0));
    mGlow->setBrush(gradient);
    for (QGraphicsEllipseItem* item : {mSelectedRing, mAlteredRing, mHoldDot, mGlow})
        item->setVisible(false);

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
    connect(mBall, &OrloBall::selectedChanged, this, &OrloBallWidget::onSelectedChanged, Qt::DirectConnection);
    connect(mBall, &OrloBall::holdChanged, this, &OrloBallWidget::onHoldChanged, Qt::DirectConnection);
    connect(mBall, &OrloBall::alteredChanged, this, &OrloBallWidget::onAlteredChanged, Qt::DirectConnection);
}

/// Centred on the ball. Decoration takes no presses: they fall through to the group.
QGraphicsEllipseItem* OrloBallWidget::addEllipse(double diameter, double z)
{
    auto* item = new QGraphicsEllipseItem(-diameter / 2, -diameter / 2, diameter, diameter, this);
    item->setZValue(z);
    item->setAcceptedMouseButtons(Qt::NoButton);
    return item;
}

QRectF OrloBallWidget::boundingRect() const
{
    return mMain->boundingRect();
}

QPainterPath OrloBallWidget::shape() const
{
    QPainterPath path;
    path.addEllipse(mMain->rect());
    return path;
}

double OrloBallWidget::playingRadius() const
{
    const double width = mMain->rect().width();
    return width * 0.5 + width / 10;
}

// ---------------------------------------------------------------- look

void OrloBallWidget::updateColor()
{
    updateColor(mBall->color(), false);
}

void OrloBallWidget::updateColor(const QColor& color, bool unity)
{
    QColor fill = color.darker(BALL_DIM_FACTOR);
    QPen outline(QColor(0, 0, 0, 128), 0);
    const bool playing = mBall->isPlaying();
    if (playing) {
        fill = color.lighter(unity ? UNITY_FILL_FACTOR : BALL_BRIGHTEN_FACTOR);
        outline = QPen(color.lighter(unity ? UNITY_OUTLINE_FACTOR : OUTLINE_BRIGHTEN_FACTOR),
                       static_cast<int>(mMain->rect().width() / 10));
    }
    prepareGeometryChange(); // a playing ball's outline is wider
    mMain->setPen(outline);
    mMain->setBrush(fill);
    mGlow->setVisible(playing);
    mAlteredRing->setPen(alteredPen(color));
}

OrloBallWidget::Paint OrloBallWidget::relativePaint() const
{
    const Orlo* orlo = mOrloWidget->orlo();
    Paint paint{mBall->color(), false, isTreeStep(mBall->lastStep())};
    if (mBall->path() == OrloPath()) {
        const bool grey = !orlo->transposeSteps().isEmpty() && app::settings()->centralNodeColourRelativeMode;
        paint.color = grey ? TRANSPOSED_CENTRE : orlo->lookupColor(UNITY_KEY);
        paint.unity = true;
    }
    return paint;
}

OrloBallWidget::Paint OrloBallWidget::absolutePaint() const
{
    const int step = mBall->lastAbsStep();
    if (step == OrloBall::LEAF_STEP)
        return {mBall->color(), false, false};
    const Orlo* orlo = mOrloWidget->orlo();
    if (step > 3 && isCrowded(orlo->transposeSteps()))
        return {orlo->lookupColor(CROWDED_KEY), false, false};
    return {orlo->lookupColor(step), step == 1, isTreeStep(step)};
}

OrloBallWidget::Paint OrloBallWidget::highestStepPaint() const
{
    const int step = mBall->highestAbsStep();
    if (step == OrloBall::LEAF_STEP)
        return {mBall->color(), false, false};
    return {mOrloWidget->orlo()->lookupColor(step), step == 1, isTreeStep(step)};
}

void OrloBallWidget::updateBall()
{
    const int absRelView = app::settings()->absRelView;
    const Paint paint = absRelView == 1 ? absolutePaint() : absRelView == 2 ? highestStepPaint() : relativePaint();
    updateColor(paint.color, paint.unity);
    if (paint.adjustStruts)
        updateStruts(absRelView == 1 || absRelView == 2);

    mSelectedRing->setVisible(mBall->isSelected());
    mHoldDot->setVisible(mBall->isHold());
    mAlteredRing->setVisible(mBall->isAltered());
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

void OrloBallWidget::onPlayingChanged()
{
    updateBall();
}

void OrloBallWidget::onEnabledChanged(bool enabled)
{
    setVisible(enabled);
    for (OrloStrutWidget* strut : std::as_const(mStruts))
        strut->setVisible(enabled);
}

void OrloBallWidget::onSelectedChanged(bool selected)
{
    mSelectedRing->setVisible(selected);
}

void OrloBallWidget::onHoldChanged(bool hold)
{
    mHoldDot->setVisible(hold);
}

void OrloBallWidget::onAlteredChanged(bool altered)
{
    mAlteredRing->setVisible(altered);
}

// ---------------------------------------------------------------- what the player does

const OrloEvent* OrloBallWidget::eventFor(Qt::KeyboardModifiers modifiers) const
{
    constexpr Qt::KeyboardModifiers altAndControl = Qt::AltModifier | Qt::ControlModifier;
    if ((modifiers & altAndControl) == altAndControl) {
        qDebug() << "OrloBall: Alt + Ctrl + mouse click.";
        return &mResetDeselectEvent;
    }
    const struct
    {
        Qt::KeyboardModifiers modifiers;
        const OrloEvent* event;
    } rows[] = {
        {Qt::ShiftModifier, &mTransposeEvent},
        {Qt::AltModifier, &mSelectEvent},
        {Qt::ControlModifier, &mResetEvent},
        {Qt::NoModifier, &mNoteEvent},
    };
    for (const auto& row : rows) {
        if (modifiers == row.modifiers)
            return row.event;
    }
    return nullptr;
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
