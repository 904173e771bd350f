#include "ui/UiFixture.h"

#include <array>

namespace {

constexpr QRgb CROWDED = 0xffb7b7b7;
constexpr QRgb CENTRE = 0xff202020;
constexpr QRgb OCTAVE = 0xff5b5b5b;
constexpr QRgb FIFTH = 0xff5173b6;
constexpr QRgb RED = 0xff9c0404;  // 5
constexpr QRgb BLUE = 0xff2838d0; // 7
constexpr QRgb GREY = 0xff9e9e9e; // 158 of each

class BallLook : public UiFixture
{
protected:
    BallLook() { view.init(OrloLeavesWidget::Circles, &orlo); }

    scene::Circles circles(const char* path) const { return scene::circlesOf(scene::ballAt(view, path)); }
    /// The colour that a ball at rest is drawn in, before it is dimmed.
    void expectColor(const char* path, QRgb color)
    {
        EXPECT_EQ(circles(path).main->brush().color(), QColor(color).darker(115)) << path;
        EXPECT_EQ(circles(path).altered->pen().color(), QColor(color)) << path;
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
    // Steps, ball, and its colour by its own step, by the last step and by the highest one.
    const std::tuple<QList<int>, const char*, std::array<QRgb, 3>> rows[] = {
        {{}, "/", {CENTRE, CENTRE, CENTRE}},
        {{}, "/-2/3", {FIFTH, FIFTH, FIFTH}},
        {{3}, "/", {GREY, FIFTH, FIFTH}},
        {{3}, "/-3", {FIFTH, CENTRE, CENTRE}}, // the steps cancel: this is the absolute origin
        {{3}, "/2/-3", {FIFTH, OCTAVE, OCTAVE}},
        {{3}, "/5", {RED, RED, RED}}, // a leaf keeps its own colour
        {{5}, "/", {GREY, RED, RED}},
        {{5}, "/2", {OCTAVE, OCTAVE, RED}},
        {{5}, "/-5", {RED, CENTRE, CENTRE}},
        {{5, 7}, "/", {GREY, CROWDED, BLUE}},
        {{5, 7}, "/3", {FIFTH, FIFTH, BLUE}}, // crowded counts only where no 2 or 3 colours the ball
        {{5, 7}, "/5", {RED, RED, RED}},
        {{5, 3}, "/-3", {FIFTH, RED, RED}}, // one leaf step is no crowd
    };
    for (const auto& [steps, path, colors] : rows) {
        orlo.onTransposed(OrloRatio(1, 1), 0);
        transposeBy(steps);
        for (const int mode : {0, 1, 2}) {
            SCOPED_TRACE(mode);
            show(mode);
            expectColor(path, colors[static_cast<size_t>(mode)]);
        }
    }
    settings.centralNodeColourRelativeMode = false;
    show(0);
    expectColor("/", CENTRE);
}

TEST_F(BallLook, EachMarkShowsByItselfAndAPlayingBallIsBrighter)
{
    for (const char* path : {"/3", "/2/-11"}) {
        const scene::Circles marks = circles(path);
        OrloBall* ball = ballAt(path);
        for (const int mark : {0, 1, 2, 3}) {
            ball->setPlaying(mark == 0);
            ball->setSelected(mark == 1);
            ball->setHold(mark == 2);
            ball->setAltered(mark == 3);
            EXPECT_EQ(marks.glow->isVisible(), mark == 0) << mark;
            EXPECT_EQ(marks.selected->isVisible(), mark == 1) << mark;
            EXPECT_EQ(marks.hold->isVisible(), mark == 2) << mark;
            EXPECT_EQ(marks.altered->isVisible(), mark == 3) << mark;
            const QColor color = ball->color();
            EXPECT_EQ(marks.main->brush().color(), mark == 0 ? color.lighter(130) : color.darker(115));
        }
    }
    ballAt("/")->setPlaying(true);
    EXPECT_EQ(circles("/").main->brush().color(), QColor(CENTRE)) << "the central pitch keeps its colour";
}

TEST_F(BallLook, TheThickOctaveStrutsMoveWithTheOrigin)
{
    // Up a fifth, the origin lies on the ball of -3: its octave is the one without a 3.
    const std::tuple<int, QList<int>, bool> rows[] = {{1, {}, false}, {1, {3}, true}, {0, {}, false}};
    for (const auto& [mode, steps, moved] : rows) {
        transposeBy(steps);
        show(mode);
        EXPECT_EQ(scene::strutBetween(view, "/", "/2")->pen().width(), moved ? 2 : 4);
        EXPECT_EQ(scene::strutBetween(view, "/-3", "/2/-3")->pen().width(), moved ? 4 : 2);
        EXPECT_EQ(scene::strutBetween(view, "/", "/3")->pen().width(), 4) << "rising struts keep their width";
    }
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

    // Just outside the ball, and at twice the size.
    const auto brightness = [&](int distance, bool playing) {
        ballAt("/")->setPlaying(playing);
        view.centerOn(0.0, 0.0);
        return qGray(
            view.viewport()->grab().toImage().pixel(scene::centreOf(view, "/") + QPoint(distance, 0)));
    };
    for (const int distance : {22, 44}) {
        const int glowing = brightness(distance, true);
        EXPECT_GT(glowing, brightness(distance, false) + 20) << distance;
        view.scale(2.0, 2.0);
    }
}
