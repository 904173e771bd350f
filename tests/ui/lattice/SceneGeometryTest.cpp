#include "support/LogCatcher.h"
#include "ui/UiFixture.h"
#include "ui/lattice/GeometryConstants.h"

#include <QScopedValueRollback>

namespace {

constexpr OrloLeavesWidget::View CIRCLES = OrloLeavesWidget::Circles;
constexpr OrloLeavesWidget::View GRAPES = OrloLeavesWidget::Grapes;

using SceneGeometry = UiFixture;

void expectAt(const QPointF& point, double x, double y, const char* what)
{
    EXPECT_NEAR(point.x(), x, 0.001) << what;
    EXPECT_NEAR(point.y(), y, 0.001) << what;
}

TEST_F(SceneGeometry, TheTreeLiesByItsStepsAndLeavesFormAFlowerInOneViewAndAColumnInTheOther)
{
    // 113 and 66 times the sine of 45 degrees are 79.9031 and 46.6690.
    const std::tuple<const char*, double, double> tree[] = {{"/", 0.0, 0.0},
                                                            {"/-2/-2", 159.8061, 159.8061},
                                                            {"/3/3", 93.3381, -93.3381},
                                                            {"/2/-3/-3", -173.2412, 13.4350},
                                                            {"/-2/3", 126.5721, 33.2340}};
    // From the ball, of which every one has the same.
    const std::tuple<OrloLeavesWidget::View, const char*, double, double> leaves[] = {
        {CIRCLES, "/5", 10.725, -26.001}, {CIRCLES, "/-7", 10.725, 43.999}, // 320 degrees: right and down
        {CIRCLES, "/-19", 8.999, 24.275},                                   // 50 degrees: right and up
        {CIRCLES, "/-31", 1.220, 48.947},                                   // 275 degrees
        {CIRCLES, "/-23", 0.0, 35.0},     {GRAPES, "/-5", -8.0, 25.733},    {GRAPES, "/-29", 8.0, 69.133},
        {GRAPES, "/31", 8.0, -76.667},    {GRAPES, "/11", -8.0, -36.733},
    };
    for (const OrloLeavesWidget::View kind : {CIRCLES, GRAPES}) {
        OrloView view;
        view.init(kind, &orlo);
        EXPECT_EQ(view.orloWidget()->balls().size(), 361);
        for (const auto& [path, x, y] : tree)
            expectAt(scene::ballAt(view, path)->scenePos(), x, y, path);
        const QPointF ball = scene::ballAt(view, "/2/-3")->scenePos();
        for (const auto& [itsView, leaf, x, y] : leaves) {
            const QByteArray path = QByteArray("/2/-3") + leaf;
            if (itsView == kind)
                expectAt(scene::ballAt(view, path.constData())->scenePos() - ball, x, y, leaf);
        }
    }
}

TEST_F(SceneGeometry, StrutsJoinTheTreeAndLinksItsOctaves)
{
    OrloView view;
    view.init(GRAPES, &orlo);
    EXPECT_EQ(scene::struts(view).size(), 18 + 10);

    const OrloStrutWidget* step = scene::strutBetween(view, "/", "/3");
    ASSERT_NE(step, nullptr);
    EXPECT_EQ(step->pen().color(), QColor(0x51, 0x73, 0xb6).darker(115));
    expectAt(step->line().p2(), 46.6690, -46.6690, "to the fifth");

    const OrloStrutWidget* link = scene::strutBetween(view, "/3", "/2/3");
    ASSERT_NE(link, nullptr);
    EXPECT_EQ(link->pen().color(), QColor(0x5b, 0x5b, 0x5b).darker(115))
        << "its own colour, not the ball's blue";
}

TEST_F(SceneGeometry, AStepWithoutAnAngleLeadsToALeaf)
{
    const QScopedValueRollback<int> withoutAngle(ANGLE_2_PLUS, -1);
    LogCatcher log;
    OrloView view;
    view.init(CIRCLES, &orlo);
    // The six balls up from /2 with their leaves make 114; one leaf without children is left.
    EXPECT_EQ(view.orloWidget()->balls().size(), 361 - 114 + 1);
    const OrloBallWidget* leaf = scene::ballAt(view, "/2");
    EXPECT_EQ(leaf->diameter(), 10);
    expectAt(leaf->scenePos(), 0.0, -35.0, "a prime without a place lies on the origin of its side");

    // The five links up to that row find no ball of the tree: no strut, one line for each.
    EXPECT_EQ(scene::struts(view).size(), 12 + 5);
    EXPECT_EQ(log.count(QtWarningMsg, QStringLiteral("OrloWidget: the link")), 5);
}

TEST_F(SceneGeometry, ALeafFromAFileMayHaveChildren)
{
    OrloBall* leaf = ballAt("/5");
    OrloPath path(leaf->path());
    path.addLeaf(3);
    leaf->addChild(3, new OrloBall(path, Qt::white, leaf));
    OrloView view;
    view.init(GRAPES, &orlo);
    EXPECT_EQ(view.orloWidget()->balls().size(), 361);
    EXPECT_EQ(scene::ballAt(view, "/5/3"), nullptr);
}

TEST_F(SceneGeometry, ANewSceneDrawsTheModelAsItStands)
{
    orlo.onPrimeEnabledToggled(3, false);
    ballAt("/-2/5")->setPlaying(true);
    ballAt("/-2/5")->setHold(true);
    OrloView view;
    view.init(CIRCLES, &orlo);
    view.resize(700, 500);
    view.show();
    EXPECT_FALSE(scene::ballAt(view, "/2/3/7")->isVisible());
    EXPECT_FALSE(scene::strutBetween(view, "/", "/3")->isVisible());
    const scene::Circles marks = scene::circlesOf(scene::ballAt(view, "/-2/5"));
    EXPECT_TRUE(marks.glow->isVisible() && marks.hold->isVisible());

    // Rebuilt while the pointer holds a ball; the model goes on reporting to the new items alone.
    const QPoint point = scene::centreOf(view, "/");
    scene::mouse(view, QEvent::MouseMove, point, Qt::NoButton, Qt::NoButton);
    scene::mouse(view, QEvent::MouseButtonPress, point, Qt::LeftButton, Qt::LeftButton);
    view.buildScene(CIRCLES);
    scene::mouse(view, QEvent::MouseMove, point + QPoint(1, 1), Qt::NoButton, Qt::LeftButton);
    scene::mouse(view, QEvent::MouseButtonRelease, point, Qt::LeftButton, Qt::NoButton);
    orlo.onPrimeEnabledToggled(3, true);
    EXPECT_TRUE(scene::ballAt(view, "/2/3/7")->isVisible());
    EXPECT_TRUE(scene::strutBetween(view, "/", "/3")->isVisible());
}

} // namespace
