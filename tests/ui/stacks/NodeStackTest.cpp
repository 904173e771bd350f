#include "ui/PageFixture.h"

#include <QPointer>

namespace {

enum Flag { PLAYING = 1, SELECTED = 2, HOLD = 4, ALTERED = 8 };

class NodeStack : public MeasuredPage
{
protected:
    /// As the lattice tells of a pitch.
    void setFlags(const OrloRatio& ratio, int flags)
    {
        emit orlo.toggleNodeInStack(ratio, flags & PLAYING);
        emit orlo.selectNodeInStack(ratio, flags & SELECTED);
        emit orlo.setHoldNodeInStack(ratio, flags & HOLD);
        emit orlo.setAlteredNodeInStack(ratio, flags & ALTERED);
    }
};

TEST_F(NodeStack, ABallComesOnceAndGoesForGood)
{
    const OrloRatio ratio(25, 16);
    add({ratio}, true);
    emit orlo.showNodesInStack();
    const QPointer<FreeBallWidget> first = ball(ratio);
    add({ratio}, true);
    EXPECT_EQ(ball(ratio), first.data());
    emit orlo.removeNodeInStack(ratio);
    EXPECT_TRUE(overlay->balls().isEmpty());
    EXPECT_TRUE(stack->scene()->items().isEmpty());
    deleteLater();
    EXPECT_TRUE(first.isNull());

    // No ball, no change.
    emit orlo.removeNodeInStack(ratio);
    setFlags(ratio, PLAYING | SELECTED | HOLD | ALTERED);
    stack->raiseNodeForRatio(ratio);
    EXPECT_TRUE(overlay->balls().isEmpty());
}

TEST_F(NodeStack, ABallMayBeDeletedUnderThePointer)
{
    const OrloRatio ratio(25, 16);
    // Cleared or made anew, hovered or pressed.
    for (const bool pressed : {false, true}) {
        add({ratio}, true);
        stack->showNodes();
        const QPoint point = pointOf(ratio);
        hover(point + QPoint(30, 0));
        hover(point);
        if (pressed)
            scene::mouse(*stack, QEvent::MouseButtonPress, point, Qt::LeftButton, Qt::LeftButton);
        stack->updateNodes();
        deleteLater();
        hover(point);
        emit orlo.resetNodeStack();
        EXPECT_TRUE(stack->balls().isEmpty());
        scene::mouse(*stack, QEvent::MouseButtonRelease, point, Qt::LeftButton, Qt::NoButton);
        hover(point + QPoint(1, 0));
        deleteLater();
        hover(point);
        scene::mouse(*stack, QEvent::MouseButtonDblClick, point, Qt::LeftButton, Qt::LeftButton);
        page.grab();
    }
}

TEST_F(NodeStack, UpdateNodesKeepsEveryFlagAndTakesTheColourOfTheMode)
{
    transposeBy({7});
    const OrloRatio ratio(35, 16); // 5/4 as seen from the root
    add({ratio});
    for (int flags = 0; flags < 16; ++flags) {
        SCOPED_TRACE(flags);
        const bool playing = flags & PLAYING;
        setFlags(ratio, flags);
        settings.absRelView = flags % 3;
        stack->updateNodes();
        const scene::Circles circles = scene::circlesOf(ball(ratio));
        const QColor color = QColor::fromRgb(flags % 3 == 0 ? 0x9c0404 : 0x2838d0); // of 5 and of 7
        EXPECT_EQ(circles.main->brush().color(), playing ? color.lighter(130) : color.darker(115));
        EXPECT_EQ(circles.glow->isVisible(), playing);
        EXPECT_EQ(circles.selected->isVisible(), (flags & SELECTED) != 0);
        EXPECT_EQ(circles.hold->isVisible(), (flags & HOLD) != 0);
        EXPECT_EQ(circles.altered->isVisible(), (flags & ALTERED) != 0);
        EXPECT_EQ(overlay->balls().size(), playing ? 1 : 0);
        EXPECT_TRUE(ball(ratio)->isVisible());
        EXPECT_EQ(pointOf(ratio), QPoint(10, 364)); // of 5/4
    }
}

TEST_F(NodeStack, APressHitsTheBallThroughItsMarksAndWithinWhatIsSeenOfIt)
{
    const OrloRatio ratio(25, 16);
    add({ratio});
    setFlags(ratio, PLAYING | HOLD | ALTERED);
    stack->showNodes();
    const QPoint centre = pointOf(ratio);
    EXPECT_EQ(playedAt(centre), ratio);
    EXPECT_EQ(playedAt(centre + QPoint(6, 0)), ratio) << "on the altered ring";
    EXPECT_EQ(playedAt(centre + QPoint(8, 0)), OrloRatio()) << "in the glow alone";
    setFlags(ratio, PLAYING | HOLD);
    EXPECT_EQ(playedAt(centre + QPoint(6, 0)), OrloRatio());
}

TEST_F(NodeStack, ThePointerRaisesABallAndTheCardOfASoundingOne)
{
    const OrloRatio lower(25, 16);
    const OrloRatio upper(35, 32);
    const OrloRatio silent(49, 32);
    add({lower, upper}, true);
    add({silent});
    stack->showNodes();
    // Overlapping by four pixels, as a crowded stack has them.
    ball(lower)->setPos(30, 300);
    ball(upper)->setPos(36, 300);
    ball(silent)->setPos(30, 500);
    for (const OrloRatio& ratio : {lower, upper, silent})
        cards->showCardForRatio(ratio);
    const auto topCard = [this] { return cards->children().last(); };
    const QPoint shared(33, 300);

    EXPECT_EQ(playedAt(shared), upper);
    hover({27, 300});
    EXPECT_EQ(playedAt(shared), lower);
    EXPECT_EQ(topCard(), cards->getCardForRatio(lower));
    hover({30, 500});
    EXPECT_EQ(topCard(), cards->getCardForRatio(lower)) << "a ball that does not sound raises no card";
}

TEST_F(NodeStack, LinesRunLevelToTheCardsAndToAnAxisOfPitch)
{
    const OrloRatio high(16, 1);
    const OrloRatio atPitch(1, 1);
    const OrloRatio aside(999, 1000); // pushed by the one before, still at its height
    const OrloRatio low(1, 9);
    for (const OrloRatio& ratio : {high, atPitch, aside, low}) {
        add({ratio}, true);
        EXPECT_TRUE(overlay->linesOf(ball(ratio)).isEmpty()) << "without a place yet";
    }
    stack->showNodes();
    using Lines = QList<QLine>;
    EXPECT_EQ(overlay->linesOf(ball(atPitch)), (Lines{{916, 405, 992, 405}, {0, 406, 904, 406}}));
    EXPECT_EQ(overlay->linesOf(ball(aside)), (Lines{{932, 405, 992, 405}, {0, 406, 920, 406}}));
    EXPECT_EQ(overlay->linesOf(ball(high)), (Lines{{916, 10, 992, 10}}));
    EXPECT_EQ(overlay->linesOf(ball(low)), (Lines{{980, 790, 992, 790}}));

    setFlags(low, 0);
    stack->updatePositions();
    EXPECT_EQ(overlay->balls().size(), 3) << "each once, however many passes there were";

    stack->hide();
    EXPECT_TRUE(overlay->linesOf(ball(atPitch)).isEmpty()) << "the stacks are switched off";
    stack->show();
    view->buildScene(OrloLeavesWidget::Circles);
    EXPECT_EQ(overlay->linesOf(ball(atPitch)).size(), 1) << "no axis of pitch in this view";
}

} // namespace
