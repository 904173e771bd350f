#include "ui/stacks/NodeStackFixture.h"

namespace {

struct Place
{
    OrloRatio ratio;
    QPoint point;
    bool atPitch;
};

class NodeStackPlaces : public NodeStackFixture
{
protected:
    /// These balls alone, or the same ones as before in one more pass.
    void expectPass(const QList<Place>& places, bool again = false)
    {
        if (!again)
            stack->reset();
        for (const Place& place : places)
            add({place.ratio});
        stack->updatePositions();
        for (const Place& place : places) {
            SCOPED_TRACE(qPrintable(place.ratio.toString()));
            EXPECT_EQ(ball(place.ratio)->pos(), QPointF(place.point));
            EXPECT_EQ(ball(place.ratio)->isAtPitch(), place.atPitch);
        }
    }
};

TEST_F(NodeStackPlaces, ABallStandsAtTheHeightOfItsPitchOnTheAxisFromNinthToNine)
{
    expectPass({
        {OrloRatio(9, 1), {10, 10}, false}, // 5, half the scene above: over the top line
        {OrloRatio(5, 4), {10, 364}, true}, // 400 * 0.22314 / 2.19722 = 40.6, so 405.5 - 41
        {OrloRatio(1, 3), {10, 605}, true},
        {OrloRatio(1, 9), {74, 790}, false}, // 805: the last cell of the bottom grid
    });
    // The edges of the two rules: at the top below 26.2, at the bottom over 773.8.
    expectPass({{OrloRatio(319, 40), {10, 27}, true}});
    expectPass({{OrloRatio(401, 50), {10, 10}, false}}); // 26
    expectPass({{OrloRatio(53, 400), {10, 773}, true}});
    expectPass({{OrloRatio(1317, 10000), {74, 790}, false}}); // 774
    // Of the relative ratio: 2/1 as 400 * 0.69315 / 2.19722 = 126.2.
    transposeBy({3});
    expectPass({{OrloRatio(3, 2), {10, 405}, true}, {OrloRatio(3, 1), {10, 279}, true}});
}

TEST_F(NodeStackPlaces, NeighboursGiveWayWithinFiveCellsAndTheSixthBeginsAgain)
{
    QList<Place> places;
    const int heights[] = {404, 404, 404, 404, 405, 405, 405}; // 405.5 - 1 and 405.5 - 0
    const int columns[] = {10, 26, 42, 58, 74, 10, 26};
    for (int i = 0; i < 7; ++i)
        places.append({OrloRatio(1006 - static_cast<unsigned>(i), 1000), {columns[i], heights[i]}, true});
    expectPass(places);
    // Further apart than a cell: 405 - 389 = 16 is not, 405 - 388 = 17 is.
    expectPass({{OrloRatio(109, 100), {10, 389}, true}, {OrloRatio(1, 1), {26, 405}, true}});
    expectPass({{OrloRatio(11, 10), {10, 388}, true}, {OrloRatio(1, 1), {10, 405}, true}});
}

TEST_F(NodeStackPlaces, AboveTheTopLineRowsOfFivePushTheLineDown)
{
    expectPass({
        {OrloRatio(16, 1), {10, 10}, false},
        {OrloRatio(15, 1), {26, 10}, false},
        {OrloRatio(14, 1), {42, 10}, false},
        {OrloRatio(13, 1), {58, 10}, false},
        {OrloRatio(12, 1), {74, 10}, false},
        {OrloRatio(11, 1), {10, 26}, false},
        {OrloRatio(10, 1), {26, 26}, false},
        {OrloRatio(15, 2), {42, 26}, false}, // 38, under the first line and over the second
        {OrloRatio(7, 1), {10, 51}, true},
    });
}

TEST_F(NodeStackPlaces, TheStartOfTheLastRowCarriesOverFromThePassBefore)
{
    QList<Place> places{
        // Three jump, since five or more follow: over 757.6. From 763, 764 and 766.
        {OrloRatio(140, 1000), {42, 773}, false},
        {OrloRatio(139, 1000), {58, 773}, false},
        {OrloRatio(138, 1000), {74, 773}, false},
        // Four follow, so this one stays at its pitch. Nothing in this pass began a row.
        {OrloRatio(137, 1000), {10, 767}, true},
        {OrloRatio(1, 9), {26, 790}, false},
        {OrloRatio(1, 10), {42, 790}, false},
        {OrloRatio(1, 11), {58, 790}, false},
        {OrloRatio(1, 12), {74, 790}, false},
    };
    expectPass(places);
    // Now its own former place counts, and the three push it aside.
    places[3].point = {58, 767};
    for (int pass = 0; pass < 2; ++pass)
        expectPass(places, true);
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
    expectPass({
        {OrloRatio(most, 1), {10, 10}, false},
        {OrloRatio(1, 1), {10, 405}, true},
        {OrloRatio(1, most), {58, 790}, false},
        {OrloRatio(0, 1), {74, 790}, false}, // below everything
    });
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
