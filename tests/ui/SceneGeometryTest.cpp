#include "support/LogCatcher.h"
#include "ui/GeometryConstants.h"
#include "ui/OrloBallWidget.h"
#include "ui/OrloStrutWidget.h"
#include "ui/OrloView.h"
#include "ui/OrloWidget.h"
#include "ui/UiFixture.h"

#include <QGraphicsEllipseItem>
#include <QGraphicsScene>
#include <QPen>

#include <cmath>

namespace {

constexpr OrloLeavesWidget::View CIRCLES = OrloLeavesWidget::Circles;
constexpr OrloLeavesWidget::View GRAPES = OrloLeavesWidget::Grapes;

using SceneGeometry = UiFixture;

void expectAt(const QPointF& point, double x, double y, const char* what)
{
    EXPECT_NEAR(point.x(), x, 0.001) << what;
    EXPECT_NEAR(point.y(), y, 0.001) << what;
}

TEST_F(SceneGeometry, TreeBallsLieByTheirStepsInBothViews)
{
    // 113 and 66 times the sine of 45 degrees are 79.9031 and 46.6690.
    const struct
    {
        const char* path;
        double x, y;
    } rows[] = {
        {"/", 0.0, 0.0},
        {"/2", -79.9031, -79.9031},
        {"/-2/-2", 159.8061, 159.8061},
        {"/3/3", 93.3381, -93.3381},
        {"/-3", -46.6690, 46.6690},
        {"/2/-3/-3", -173.2412, 13.4350},
        {"/-2/3", 126.5721, 33.2340},
    };
    for (const OrloLeavesWidget::View kind : {CIRCLES, GRAPES}) {
        OrloView view;
        view.init(kind, &orlo);
        EXPECT_EQ(view.orloWidget()->balls().size(), 361);
        for (const auto& row : rows)
            expectAt(scene::ballAt(view, row.path)->scenePos(), row.x, row.y, row.path);
    }
}

TEST_F(SceneGeometry, AnglesAreTurnedWithTheShortPi)
{
    // 315 degrees fall short by 1.75 times 3.590e-9 radians: a point 226 units away moves
    // 1.420e-6 along its circle, which is 1.004e-6 to the left and as much down.
    OrloView view;
    view.init(CIRCLES, &orlo);
    const QPointF point = scene::ballAt(view, "/-2/-2")->pos();
    EXPECT_NEAR(point.y() - point.x(), 2.008e-6, 0.01e-6);
}

TEST_F(SceneGeometry, StrutsJoinTheTreeAndLinksItsOctaves)
{
    OrloView view;
    view.init(GRAPES, &orlo);
    EXPECT_EQ(scene::struts(view).size(), 18 + 10);

    const OrloStrutWidget* step = scene::strutBetween(view, "/", "/3");
    ASSERT_NE(step, nullptr);
    EXPECT_EQ(step->pen().color(), QColor(0x51, 0x73, 0xb6).darker(115));
    expectAt(step->line().p1(), 0.0, 0.0, "from the root");
    expectAt(step->line().p2(), 46.6690, -46.6690, "to the fifth");

    const OrloStrutWidget* link = scene::strutBetween(view, "/3", "/2/3");
    ASSERT_NE(link, nullptr);
    EXPECT_EQ(link->pen().color(), QColor(0x5b, 0x5b, 0x5b).darker(115))
        << "its own colour, not the ball's blue";
    EXPECT_LT(link->zValue(), scene::ballAt(view, "/3")->zValue());
}

TEST_F(SceneGeometry, LeavesFormAFlowerInOneViewAndAColumnInTheOther)
{
    const struct
    {
        OrloLeavesWidget::View kind;
        const char* path; // a leaf of the root
        double x, y;
    } rows[] = {
        {CIRCLES, "/-5", -10.725, 26.001}, {CIRCLES, "/5", 10.725, -26.001},
        {CIRCLES, "/-7", 10.725, 43.999}, // 320 degrees: right and down
        {CIRCLES, "/-19", 8.999, 24.275}, // 50 degrees: right and up
        {CIRCLES, "/-31", 1.220, 48.947}, // 275 degrees
        {CIRCLES, "/-23", 0.0, 35.0},      {CIRCLES, "/23", 0.0, -35.0},
        {GRAPES, "/-5", -8.0, 25.733},     {GRAPES, "/5", 8.0, -25.733},
        {GRAPES, "/-29", 8.0, 69.133},     {GRAPES, "/31", 8.0, -76.667},
        {GRAPES, "/-23", -8.0, 41.867},    {GRAPES, "/11", -8.0, -36.733},
    };
    for (const auto& row : rows) {
        OrloView view;
        view.init(row.kind, &orlo);
        expectAt(scene::ballAt(view, row.path)->scenePos(), row.x, row.y, row.path);
        // The same flower hangs on every ball.
        const QByteArray elsewhere = QByteArray("/2/-3") + row.path;
        const QPointF ball = scene::ballAt(view, "/2/-3")->scenePos();
        expectAt(scene::ballAt(view, elsewhere.constData())->scenePos() - ball, row.x, row.y,
                 elsewhere.constData());
    }
}

TEST_F(SceneGeometry, EditedConstantsTakeEffectInTheNextScene)
{
    const GeometryKeeper keeper;
    OrloView view;
    view.init(CIRCLES, &orlo);
    LEAVES_RADIUS = 28;
    LEAVES_PLUS_OFFSET_X = 7;
    STRUT_2_LENGTH = 200;
    OrloLeavesWidget::clearPositions();
    view.buildScene(CIRCLES);
    expectAt(scene::ballAt(view, "/-5")->scenePos(), -7.0 - 21.449, 35.0 - 17.998, "both offsets");
    expectAt(scene::ballAt(view, "/2")->scenePos(), -141.4214, -141.4214, "/2");
}

TEST_F(SceneGeometry, AStepWithoutAnAngleLeadsToALeaf)
{
    const GeometryKeeper keeper;
    ANGLE_2_PLUS = -1;
    LogCatcher log;
    OrloView view;
    view.init(CIRCLES, &orlo);
    // The six balls up from /2 with their leaves make 114; one leaf without children is left.
    EXPECT_EQ(view.orloWidget()->balls().size(), 361 - 114 + 1);
    const OrloBallWidget* leaf = scene::ballAt(view, "/2");
    EXPECT_EQ(leaf->diameter(), 10);
    expectAt(leaf->scenePos(), 0.0, -35.0, "a prime without a place lies on the origin of its side");
    expectAt(scene::ballAt(view, "/-2")->scenePos(), 113.0 * -0.99985, 113.0 * -0.01745, "179 degrees");

    // The five links up to that row find no ball of the tree: no strut, one line for each.
    EXPECT_EQ(scene::struts(view).size(), 12 + 5);
    EXPECT_EQ(log.lines().size(), 5);
    EXPECT_TRUE(log.has(QtWarningMsg, QStringLiteral("from \"/-3/-3\" to \"/2/-3/-3\"")));
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

TEST_F(SceneGeometry, AnAloneRootIsAScene)
{
    const GeometryKeeper keeper;
    BALL_DIAMETER = 0;
    Orlo bare;
    OrloView view;
    view.resize(300, 200);
    view.show();
    view.init(CIRCLES, &bare);
    view.resize(400, 300);
    EXPECT_EQ(view.orloWidget()->balls().size(), 1);
    EXPECT_TRUE(std::isfinite(view.currentScale()));
    EXPECT_GT(view.currentScale(), 0.0);
}

TEST_F(SceneGeometry, ANewSceneDrawsTheModelAsItStands)
{
    orlo.onPrimeEnabledToggled(3, false);
    ballAt("/-2/5")->setPlaying(true);
    OrloView view;
    view.init(CIRCLES, &orlo);
    view.resize(700, 500);
    view.show();
    EXPECT_FALSE(scene::ballAt(view, "/2/3/7")->isVisible());
    EXPECT_FALSE(scene::strutBetween(view, "/", "/3")->isVisible());
    EXPECT_TRUE(scene::strutBetween(view, "/", "/2")->isVisible());
    EXPECT_TRUE(scene::circlesOf(scene::ballAt(view, "/-2/5")).glow->isVisible());

    // Rebuilt while the pointer holds a ball; the model goes on reporting to the new items alone.
    const QPoint point = scene::centreOf(view, "/");
    scene::mouse(view, QEvent::MouseMove, point, Qt::NoButton, Qt::NoButton);
    scene::mouse(view, QEvent::MouseButtonPress, point, Qt::LeftButton, Qt::LeftButton);
    view.buildScene(CIRCLES);
    scene::mouse(view, QEvent::MouseMove, point + QPoint(1, 1), Qt::NoButton, Qt::LeftButton);
    scene::mouse(view, QEvent::MouseButtonRelease, point, Qt::LeftButton, Qt::NoButton);
    orlo.onPrimeEnabledToggled(3, true);
    ballAt("/")->setPlaying(true);
    EXPECT_TRUE(scene::ballAt(view, "/2/3/7")->isVisible());
    EXPECT_TRUE(scene::strutBetween(view, "/", "/3")->isVisible());
    EXPECT_TRUE(scene::circlesOf(scene::ballAt(view, "/")).glow->isVisible());
}

} // namespace
