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
constexpr const char* RED = "#9c0404";  // 5
constexpr const char* BLUE = "#2838d0"; // 7
constexpr const char* GREY = "#9e9e9e"; // 158 of each

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

TEST_F(BallLook, ColoursFollowTheTransposition)
{
    struct Row
    {
        QList<int> steps;
        const char* path;
        const char* own;      // mode 0
        const char* lastStep; // mode 1
        const char* highest;  // mode 2
    };
    const Row rows[] = {
        {{}, "/", CENTRE, CENTRE, CENTRE},
        {{}, "/-2/-2", OCTAVE, OCTAVE, OCTAVE},
        {{}, "/-2/3", FIFTH, FIFTH, FIFTH},
        {{}, "/2/5", RED, RED, RED},
        {{3}, "/", GREY, FIFTH, FIFTH},
        {{3}, "/-3", FIFTH, CENTRE, CENTRE}, // the steps cancel: this is the absolute origin
        {{3}, "/2/-3", FIFTH, OCTAVE, OCTAVE},
        {{3}, "/5", RED, RED, RED}, // a leaf keeps its own colour
        {{5}, "/", GREY, RED, RED},
        {{5}, "/2", OCTAVE, OCTAVE, RED},
        {{5}, "/-5", RED, CENTRE, CENTRE},
        {{5}, "/7", BLUE, BLUE, BLUE},
        {{5, 7}, "/", GREY, CROWDED, BLUE},
        {{5, 7}, "/3", FIFTH, FIFTH, BLUE}, // crowded counts only where no 2 or 3 colours the ball
        {{5, 7}, "/5", RED, RED, RED},
        {{5, 5}, "/", GREY, CROWDED, RED},
        {{5, 3}, "/-3", FIFTH, RED, RED}, // one leaf step is no crowd
    };
    for (const Row& row : rows) {
        orlo.onTransposed(OrloRatio(1, 1), 0);
        transposeBy(row.steps);
        const char* const colors[] = {row.own, row.lastStep, row.highest};
        for (const int mode : {0, 1, 2}) {
            show(mode);
            expectColor(row.path, colors[mode]);
        }
    }
    settings.centralNodeColourRelativeMode = false;
    show(0);
    expectColor("/", CENTRE);
}

TEST_F(BallLook, APlayingBallIsBrighterWithAGlow)
{
    const scene::Circles tree = circles("/3");
    ballAt("/3")->setPlaying(true);
    EXPECT_EQ(tree.main->brush().color(), color(FIFTH).lighter(130));
    EXPECT_EQ(tree.main->pen().width(), 2); // 28 / 10, cut
    EXPECT_TRUE(tree.glow->isVisible());
    EXPECT_TRUE(scene::ballAt(view, "/3")->boundingRect().contains(QRectF(-15, -15, 30, 30)));
    ballAt("/")->setPlaying(true);
    EXPECT_EQ(circles("/").main->brush().color(), color(CENTRE)) << "the central pitch keeps its colour";

    ballAt("/3")->setPlaying(false);
    EXPECT_EQ(tree.main->brush().color(), color(FIFTH).darker(115));
    EXPECT_FALSE(tree.glow->isVisible());
}

TEST_F(BallLook, MarksShowTogetherAndGoOneByOne)
{
    const scene::Circles leaf = circles("/2/-11");
    OrloBall* ball = ballAt("/2/-11");
    for (int flags = 7; flags >= 0; --flags) {
        ball->setSelected(flags & 1);
        ball->setHold(flags & 2);
        ball->setAltered(flags & 4);
        for (const bool drawnAnew : {false, true}) {
            if (drawnAnew)
                view.updateOrloBalls();
            EXPECT_EQ(leaf.selected->isVisible(), (flags & 1) != 0) << flags;
            EXPECT_EQ(leaf.hold->isVisible(), (flags & 2) != 0) << flags;
            EXPECT_EQ(leaf.altered->isVisible(), (flags & 4) != 0) << flags;
        }
    }
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
    const auto expectWidths = [this](int mode, int octave, int octaveOfFifth) {
        show(mode);
        EXPECT_EQ(scene::strutBetween(view, "/", "/2")->pen().width(), octave);
        EXPECT_EQ(scene::strutBetween(view, "/-3", "/2/-3")->pen().width(), octaveOfFifth);
        EXPECT_EQ(scene::strutBetween(view, "/", "/3")->pen().width(), 4) << "rising struts keep their width";
    };
    expectWidths(1, 4, 2);
    // Up a fifth, the origin lies on the ball of -3: its octave is the one without a 3.
    transposeBy({3});
    expectWidths(1, 2, 4);
    expectWidths(0, 4, 2);
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
