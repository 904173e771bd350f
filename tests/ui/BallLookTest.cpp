#include "ui/OrloBallWidget.h"
#include "ui/OrloStrutWidget.h"
#include "ui/OrloView.h"
#include "ui/UiFixture.h"

#include <QGraphicsEllipseItem>
#include <QPen>

namespace {

constexpr const char* CROWDED = "#b7b7b7";
constexpr const char* CENTRE = "#202020";
constexpr const char* OCTAVE = "#5b5b5b";
constexpr const char* FIFTH = "#5173b6";
constexpr const char* RED = "#9c0404";   // 5
constexpr const char* BLUE = "#2838d0";  // 7
constexpr const char* GREY = "#9e9e9e";  // 158 of each

QColor color(const char* name)
{
    return QColor(QLatin1StringView(name));
}

class BallLook : public UiFixture
{
protected:
    BallLook() { view.init(OrloLeavesWidget::Circles, &orlo); }

    scene::Circles circles(const char* path) const { return scene::circlesOf(scene::ballAt(view, path)); }
    /// The colour that a ball at rest is drawn in, before it is dimmed.
    void expectColor(const char* path, const char* name)
    {
        EXPECT_EQ(circles(path).main->brush().color(), color(name).darker(115))
            << path << " in mode " << settings.absRelView;
        EXPECT_EQ(circles(path).altered->pen().color(), color(name)) << path;
    }
    void show(int absRelView)
    {
        settings.absRelView = absRelView;
        view.updateOrloBalls();
    }

    OrloView view;
};

TEST_F(BallLook, ColoursWithoutTransposition)
{
    for (const int mode : {0, 1, 2}) {
        show(mode);
        expectColor("/", CENTRE);
        expectColor("/-2/-2", OCTAVE);
        expectColor("/-2/3", FIFTH);
        expectColor("/2/5", RED);
        expectColor("/-7", BLUE);
    }
}

TEST_F(BallLook, RelativeColoursStayAndTheCentreTurnsGrey)
{
    transposeBy({3});
    show(0);
    expectColor("/", GREY);
    expectColor("/3", FIFTH);
    expectColor("/-3", FIFTH);
    settings.centralNodeColourRelativeMode = false;
    view.updateOrloBalls();
    expectColor("/", CENTRE);
}

TEST_F(BallLook, AbsoluteColoursFollowTheTransposition)
{
    struct Row
    {
        QList<int> steps;
        const char* path;
        const char* lastStep; // mode 1
        const char* highest;  // mode 2
    };
    const Row rows[] = {
        {{3}, "/", FIFTH, FIFTH},
        {{3}, "/-3", CENTRE, CENTRE}, // the steps cancel: this is the absolute origin
        {{3}, "/2/-3", OCTAVE, OCTAVE},
        {{3}, "/5", RED, RED}, // a leaf keeps its own colour
        {{5}, "/", RED, RED},
        {{5}, "/2", OCTAVE, RED},
        {{5}, "/-5", CENTRE, CENTRE},
        {{5}, "/7", BLUE, BLUE},
        {{5, 7}, "/", CROWDED, BLUE},
        {{5, 7}, "/3", FIFTH, BLUE}, // crowded counts only where no 2 or 3 colours the ball
        {{5, 7}, "/5", RED, RED},
        {{5, 5}, "/", CROWDED, RED},
        {{5, 3}, "/-3", RED, RED}, // one leaf step is no crowd
    };
    for (const Row& row : rows) {
        orlo.onTransposed(OrloRatio(1, 1), 0);
        transposeBy(row.steps);
        show(1);
        expectColor(row.path, row.lastStep);
        show(2);
        expectColor(row.path, row.highest);
    }
}

TEST_F(BallLook, APlayingBallIsBrighterWithAGlow)
{
    const scene::Circles tree = circles("/3");
    EXPECT_EQ(tree.main->pen().width(), 0);
    EXPECT_EQ(tree.main->pen().color(), QColor(0, 0, 0, 128));
    EXPECT_FALSE(tree.glow->isVisibleTo(scene::ballAt(view, "/3")));

    ballAt("/3")->setPlaying(true);
    EXPECT_EQ(tree.main->brush().color(), color(FIFTH).lighter(130));
    EXPECT_EQ(tree.main->pen().color(), color(FIFTH).lighter(145));
    EXPECT_EQ(tree.main->pen().width(), 2); // 28 / 10, cut
    EXPECT_TRUE(tree.glow->isVisible());
    EXPECT_DOUBLE_EQ(tree.glow->rect().width(), 56.0);
    EXPECT_EQ(tree.glow->brush().gradient()->stops().first().second, QColor(255, 255, 255, 180));
    EXPECT_EQ(tree.glow->brush().gradient()->stops().last().second.alpha(), 0);
    EXPECT_DOUBLE_EQ(scene::ballAt(view, "/3")->playingRadius(), 16.8);
    EXPECT_TRUE(scene::ballAt(view, "/3")->boundingRect().contains(QRectF(-15, -15, 30, 30)));

    ballAt("/3/5")->setPlaying(true);
    EXPECT_EQ(circles("/3/5").main->pen().width(), 1);

    // The central pitch keeps its colour; so does whichever ball has it in the absolute modes.
    ballAt("/")->setPlaying(true);
    EXPECT_EQ(circles("/").main->brush().color(), color(CENTRE));
    EXPECT_EQ(circles("/").main->pen().color(), color(CENTRE).lighter(200));

    ballAt("/3")->setPlaying(false);
    EXPECT_EQ(tree.main->brush().color(), color(FIFTH).darker(115));
    EXPECT_FALSE(tree.glow->isVisible());
}

TEST_F(BallLook, MarksShowTogetherAndGoOneByOne)
{
    const scene::Circles leaf = circles("/2/-11");
    EXPECT_DOUBLE_EQ(leaf.selected->rect().width(), 16.0);
    EXPECT_DOUBLE_EQ(circles("/2").selected->rect().width(), 35.0);
    EXPECT_DOUBLE_EQ(circles("/2").altered->rect().width(), 35.0);
    EXPECT_DOUBLE_EQ(leaf.hold->rect().width(), 3.0);

    OrloBall* ball = ballAt("/2/-11");
    ball->setSelected(true);
    ball->setHold(true);
    ball->setAltered(true);
    EXPECT_TRUE(leaf.selected->isVisible() && leaf.hold->isVisible() && leaf.altered->isVisible());
    view.updateOrloBalls();
    EXPECT_TRUE(leaf.selected->isVisible() && leaf.hold->isVisible() && leaf.altered->isVisible());
    ball->setHold(false);
    EXPECT_TRUE(leaf.selected->isVisible() && !leaf.hold->isVisible() && leaf.altered->isVisible());
    EXPECT_EQ(leaf.altered->pen().widthF(), 1.0);
    EXPECT_EQ(leaf.altered->pen().color(), color("#b46110"));
}

TEST_F(BallLook, ASwitchedOffBallTakesItsStrutsAlong)
{
    orlo.onPrimeEnabledToggled(5, false);
    EXPECT_FALSE(scene::ballAt(view, "/2/5")->isVisible());
    EXPECT_TRUE(scene::ballAt(view, "/2/7")->isVisible());
    ballAt("/2")->setEnabled(false);
    EXPECT_FALSE(scene::strutBetween(view, "/", "/2")->isVisible());
    EXPECT_FALSE(scene::strutBetween(view, "/3", "/2/3")->isVisible());
    ballAt("/2")->setEnabled(true);
    EXPECT_TRUE(scene::strutBetween(view, "/", "/2")->isVisible());
    EXPECT_TRUE(scene::ballAt(view, "/2/5")->isVisible()) << "the last call wins, whatever else is off";
}

TEST_F(BallLook, TheThickOctaveStrutsMoveWithTheOrigin)
{
    const auto width = [&](const char* from, const char* to) {
        return scene::strutBetween(view, from, to)->pen().width();
    };
    show(1);
    EXPECT_EQ(width("/", "/2"), 4);
    EXPECT_EQ(width("/-3", "/2/-3"), 2);
    EXPECT_EQ(width("/", "/3"), 4);

    // Up a fifth, the origin lies on the ball of -3: its octave is the one without a 3.
    transposeBy({3});
    show(1);
    EXPECT_EQ(width("/", "/2"), 2);
    EXPECT_EQ(width("/-3", "/2/-3"), 4);
    EXPECT_EQ(width("/", "/3"), 4) << "rising struts keep their width";

    show(0);
    EXPECT_EQ(width("/", "/2"), 4);
    EXPECT_EQ(width("/-3", "/2/-3"), 2);
}

} // namespace

// The glow is drawn from a shared picture; a view paints into its window, at an offset.
TEST_F(UiFixture, AGlowLiesUnderItsBallWhereverTheViewIs)
{
    QWidget window;
    window.resize(900, 800);
    OrloView view(&window);
    view.init(OrloLeavesWidget::Grapes, &orlo);
    view.setGeometry(120, 70, 700, 700);
    view.setBackgroundBrush(QColor(88, 109, 97));
    ballAt("/")->setPlaying(true);
    window.show();
    const QRect around(scene::centreOf(view, "/") - QPoint(40, 40), QSize(80, 80));
    const QImage alone = view.viewport()->grab(around).toImage();
    const QPoint offset = view.viewport()->mapTo(&window, QPoint());
    const QImage inWindow = window.grab(around.translated(offset)).toImage();
    EXPECT_EQ(alone.convertToFormat(QImage::Format_RGB32), inWindow.convertToFormat(QImage::Format_RGB32));

    const QRgb glowing = inWindow.pixel(40 + 22, 40);
    ballAt("/")->setPlaying(false);
    const QRgb dark = window.grab(around.translated(offset)).toImage().pixel(40 + 22, 40);
    EXPECT_GT(qGray(glowing), qGray(dark) + 20);
}
