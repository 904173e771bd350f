#include "ui/lattice/PitchAxis.h"
#include "ui/stacks/NodeStackFixture.h"

namespace {

struct Ball
{
    int pitchHeight;
    QPoint point;
    bool atPitch;
};

/// A pass over these balls in a stack of 800 pixels. A ball has the cell 16.2 and keeps 10 from the edges.
void expectPass(FreeBallLayout& layout, const QList<Ball>& balls)
{
    layout.begin(800);
    int more = static_cast<int>(balls.size());
    for (const Ball& ball : balls) {
        const FreeBallLayout::Place place = layout.place(ball.pitchHeight, 6.0, 10.0, --more);
        EXPECT_EQ(place.point, ball.point) << ball.pitchHeight;
        EXPECT_EQ(place.isAtPitch, ball.atPitch) << ball.pitchHeight;
    }
}

using NodeStackPlaces = NodeStackFixture;

TEST_F(NodeStackPlaces, ABallStandsAtTheHeightOfItsPitchOnTheAxisFromNinthToNine)
{
    const PitchAxis axis{800, 800.0, 400};
    const std::pair<OrloRatio, int> heights[] = {
        {{9, 1}, 5},   // half the scene above
        {{5, 4}, 364}, // 400 * 0.22314 / 2.19722 = 40.6, so 405.5 - 41
        {{1, 1}, 405}, {{1, 3}, 605}, {{1, 9}, 805}, {{319, 40}, 27}, {{1317, 10000}, 774}};
    for (const auto& [ratio, height] : heights) {
        EXPECT_EQ(axis.freeBallHeight(ratio), height);
        EXPECT_EQ(static_cast<int>(axis.cardHeight(ratio)), height);
    }
    // Of the relative ratio: 2/1 as 400 * 0.69315 / 2.19722 = 126.2.
    transposeBy({3});
    add({OrloRatio(3, 2), OrloRatio(3, 1), OrloRatio(1, 6)});
    stack->updatePositions();
    EXPECT_EQ(pointOf(OrloRatio(3, 2)), QPoint(10, 405));
    EXPECT_EQ(pointOf(OrloRatio(3, 1)), QPoint(10, 279));
    EXPECT_EQ(pointOf(OrloRatio(1, 6)), QPoint(74, 790)) << "the last cell of the bottom grid";
    EXPECT_TRUE(ball(OrloRatio(3, 1))->isAtPitch() && !ball(OrloRatio(1, 6))->isAtPitch());
}

TEST(FreeBallLayoutTest, NeighboursGiveWayWithinFiveCellsAndTheSixthBeginsAgain)
{
    FreeBallLayout layout;
    expectPass(layout, {{404, {10, 404}, true},
                        {404, {26, 404}, true},
                        {404, {42, 404}, true},
                        {404, {58, 404}, true},
                        {405, {74, 405}, true},
                        {405, {10, 405}, true},
                        {405, {26, 405}, true}});
    // Further apart than a cell: 405 - 389 = 16 is not, 405 - 388 = 17 is.
    expectPass(layout, {{389, {10, 389}, true}, {405, {26, 405}, true}});
    expectPass(layout, {{388, {10, 388}, true}, {405, {10, 405}, true}});
    // The edges of the two rules: at the top below 26.2, at the bottom over 773.8.
    expectPass(layout, {{27, {10, 27}, true}});
    expectPass(layout, {{26, {10, 10}, false}});
    expectPass(layout, {{773, {10, 773}, true}});
    expectPass(layout, {{774, {74, 790}, false}});
}

TEST(FreeBallLayoutTest, AboveTheTopLineRowsOfFivePushTheLineDown)
{
    FreeBallLayout layout;
    // The last but one lies under the first line and over the second.
    expectPass(layout, {{-99, {10, 10}, false},
                        {-87, {26, 10}, false},
                        {-75, {42, 10}, false},
                        {-61, {58, 10}, false},
                        {-47, {74, 10}, false},
                        {-31, {10, 26}, false},
                        {-14, {26, 26}, false},
                        {38, {42, 26}, false},
                        {51, {10, 51}, true}});
}

TEST(FreeBallLayoutTest, TheStartOfTheLastRowCarriesOverFromThePassBefore)
{
    FreeBallLayout layout;
    // Three jump, since five or more follow: over 757.6. Four follow the next, so it stays at its pitch.
    // Nothing in the first pass began a row; then its own former place counts, and the three push it aside.
    for (const int x : {10, 58, 58}) {
        expectPass(layout, {{763, {42, 773}, false},
                            {764, {58, 773}, false},
                            {766, {74, 773}, false},
                            {767, {x, 767}, true},
                            {805, {26, 790}, false},
                            {824, {42, 790}, false},
                            {842, {58, 790}, false},
                            {857, {74, 790}, false}});
    }
}

TEST_F(NodeStackPlaces, SixtySoundingPitchesStayInTheStackAndFollowAResize)
{
    for (unsigned row = 0; row < 60; ++row)
        add({OrloRatio(11 + 14 * row, 98)});
    stack->showNodes();
    view->resize(VIEW_WIDTH, 500);
    stack->resize(STACK_WIDTH, 500);
    for (const FreeBallWidget* each : stack->balls())
        EXPECT_TRUE(stack->rect().contains(QRect(each->pos().toPoint() - QPoint(9, 9), QSize(18, 18))));
}

TEST_F(NodeStackPlaces, PitchesWithoutAHeightAndViewsWithoutOneBreakNothing)
{
    constexpr unsigned long long most = ~0ULL;
    add({OrloRatio(most, 1), OrloRatio(1, 1), OrloRatio(1, most), OrloRatio(0, 1)});
    stack->updatePositions();
    EXPECT_EQ(pointOf(OrloRatio(most, 1)), QPoint(10, 10));
    EXPECT_EQ(pointOf(OrloRatio(1, most)), QPoint(58, 790));
    EXPECT_EQ(pointOf(OrloRatio(0, 1)), QPoint(74, 790)) << "below everything";
    view->scene()->setSceneRect(0, 0, 0, 0);
    stack->resize(STACK_WIDTH, 0);
    stack->updatePositions();
    for (const FreeBallWidget* item : stack->balls())
        EXPECT_LE(qAbs(item->x()) + qAbs(item->y()), 1000.0);

    NodeStackWidget alone; // its first resize comes before init
    alone.resize(100, 100);
    alone.addNodeForRatio(OrloRatio(1, 1));
    alone.toggleNodeForRatio(OrloRatio(1, 1), true);
    alone.updateNodes();
}

} // namespace
