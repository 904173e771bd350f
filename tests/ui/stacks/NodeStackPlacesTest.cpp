#include "ui/PageFixture.h"
#include "ui/lattice/PitchAxis.h"

namespace {

using NodeStackPlaces = MeasuredPage;

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

/// A pass in a stack of 800 pixels over balls at these heights: "x,y" of each, with a mark if it is not
/// at its pitch.
std::string pass(FreeBallLayout& layout, const QList<int>& heights)
{
    layout.begin(800);
    QStringList places;
    for (qsizetype i = 0; i < heights.size(); ++i) {
        const int more = static_cast<int>(heights.size() - i) - 1;
        const FreeBallLayout::Place place = layout.place(heights[i], 6.0, 10.0, more);
        places.append(QStringLiteral("%1,%2").arg(place.point.x()).arg(place.point.y()));
        if (!place.isAtPitch)
            places.last() += u'!';
    }
    return places.join(u' ').toStdString();
}

TEST(FreeBallLayoutTest, NeighboursGiveWayAndTheEdgesCollectRowsOfFive)
{
    const std::pair<QList<int>, const char*> rows[] = {
        // The sixth begins again.
        {{404, 404, 404, 404, 405, 405, 405}, "10,404 26,404 42,404 58,404 74,405 10,405 26,405"},
        // Further apart than a cell: 405 - 389 = 16 is not, 405 - 388 = 17 is.
        {{389, 405}, "10,389 26,405"},
        {{388, 405}, "10,388 10,405"},
        // The edges of the two rules: at the top below 26.2, at the bottom over 773.8.
        {{27}, "10,27"},
        {{26}, "10,10!"},
        {{773}, "10,773"},
        {{774}, "74,790!"},
        // A row pushes the top line down: the last but one lies under the first line and over the second.
        {{-99, -87, -75, -61, -47, -31, -14, 38, 51},
         "10,10! 26,10! 42,10! 58,10! 74,10! 10,26! 26,26! 42,26! 10,51"},
    };
    FreeBallLayout layout;
    for (const auto& [heights, places] : rows)
        EXPECT_EQ(pass(layout, heights), places);
}

TEST(FreeBallLayoutTest, TheStartOfTheLastRowCarriesOverFromThePassBefore)
{
    FreeBallLayout layout;
    // Three jump, since five or more follow: over 757.6. Four follow the next, so it stays at its pitch.
    // Nothing in the first pass began a row; then its own former place counts, and the three push it aside.
    for (const char* x : {"10", "58", "58"}) {
        EXPECT_EQ(pass(layout, {763, 764, 766, 767, 805, 824, 842, 857}),
                  std::string("42,773! 58,773! 74,773! ") + x + ",767 26,790! 42,790! 58,790! 74,790!");
    }
}

TEST_F(NodeStackPlaces, ManyPitchesAndThoseWithoutAHeightStayInTheStack)
{
    constexpr unsigned long long most = ~0ULL;
    add({OrloRatio(most, 1), OrloRatio(1, 1), OrloRatio(1, most), OrloRatio(0, 1)});
    stack->updatePositions();
    EXPECT_EQ(pointOf(OrloRatio(most, 1)), QPoint(10, 10));
    EXPECT_EQ(pointOf(OrloRatio(1, most)), QPoint(58, 790));
    EXPECT_EQ(pointOf(OrloRatio(0, 1)), QPoint(74, 790)) << "below everything";
    for (unsigned row = 0; row < 60; ++row)
        add({OrloRatio(11 + 14 * row, 98)});
    view->resize(900, 500);
    stack->resize(92, 500);
    for (const FreeBallWidget* each : stack->balls())
        EXPECT_TRUE(stack->rect().contains(QRect(each->pos().toPoint() - QPoint(9, 9), QSize(18, 18))));
    // A view without a height.
    view->scene()->setSceneRect(0, 0, 0, 0);
    stack->resize(92, 0);
    for (const FreeBallWidget* each : stack->balls())
        EXPECT_LE(qAbs(each->x()) + qAbs(each->y()), 2000.0);

    NodeStackWidget alone; // its first resize comes before init
    alone.resize(100, 100);
    alone.addNodeForRatio(OrloRatio(1, 1));
    alone.toggleNodeForRatio(OrloRatio(1, 1), true);
    alone.updateNodes();
}

} // namespace
