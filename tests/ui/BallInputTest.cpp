#include "ui/OrloBallWidget.h"
#include "ui/OrloView.h"
#include "ui/OrloWidget.h"
#include "ui/UiFixture.h"

namespace {

class BallInput : public UiFixture
{
protected:
    BallInput()
    {
        view.init(OrloLeavesWidget::Circles, &orlo);
        view.resize(900, 700);
        view.show();
    }

    OrloView view;
};

TEST_F(BallInput, ModifiersChooseTheCommand)
{
    const Qt::KeyboardModifiers shift = Qt::ShiftModifier;
    const Qt::KeyboardModifiers alt = Qt::AltModifier;
    const Qt::KeyboardModifiers control = Qt::ControlModifier;
    const Qt::KeyboardModifiers meta = Qt::MetaModifier;
    // The note goes by its path, all else by the relative ratio: 1/2 of 3/2.
    const std::pair<Qt::KeyboardModifiers, const char*> rows[] = {
        {Qt::NoModifier, "0 1 /-2/3"},
        {shift, "36 1 3/4"},
        {alt, "37 1 3/4"},
        {control, "38 0 3/4"},
        {alt | control, "38 1 3/4"},
        {alt | control | shift, "38 1 3/4"},
        {alt | control | meta, "38 1 3/4"},
        {shift | alt, ""},
        {shift | control, ""},
        {meta, ""},
        {alt | meta, ""},
    };
    for (const auto& [modifiers, command] : rows) {
        scene::click(view, scene::centreOf(view, "/-2/3"), modifiers);
        EXPECT_EQ(said(), command) << modifiers.toInt();
    }
    for (const Qt::MouseButton button : {Qt::RightButton, Qt::MiddleButton})
        scene::click(view, scene::centreOf(view, "/"), Qt::NoModifier, button);
    EXPECT_EQ(said(), "") << "only the left button plays";
}

TEST_F(BallInput, AQuickDoubleClickPlaysOneToggle)
{
    const QPoint point = scene::centreOf(view, "/2");
    scene::click(view, point);
    scene::mouse(view, QEvent::MouseButtonDblClick, point, Qt::LeftButton, Qt::LeftButton);
    scene::mouse(view, QEvent::MouseButtonRelease, point, Qt::LeftButton, Qt::NoButton);
    EXPECT_EQ(drain().size(), 1);
    scene::click(view, point);
    EXPECT_EQ(drain().size(), 1) << "the third press plays again";

    // Two neighbours pressed so quickly are no double click of either.
    scene::click(view, scene::centreOf(view, "/5"));
    const QPoint next = scene::centreOf(view, "/13");
    scene::mouse(view, QEvent::MouseButtonDblClick, next, Qt::LeftButton, Qt::LeftButton);
    EXPECT_EQ(drain().size(), 2);
}

TEST_F(BallInput, EveryBallIsHitThroughItsMarksAndOnlyWithinItsCircle)
{
    for (const OrloBallWidget* item : view.orloWidget()->balls()) {
        OrloBall* ball = ballAt(qPrintable(item->ball()->path().toString()));
        ball->setPlaying(true);
        ball->setSelected(true);
        ball->setHold(true);
        ball->setAltered(true);
    }
    for (const OrloBallWidget* item : view.orloWidget()->balls()) {
        const QString path = item->ball()->path().toString();
        // In the flowers no ball covers the centre of another.
        scene::click(view, view.mapFromScene(item->scenePos()));
        EXPECT_EQ(said(), "0 1 " + path.toStdString());
        report();
    }
    // Just outside the circle, but still in its square and its rings.
    const double corner = 14 * 0.75;
    scene::click(view, view.mapFromScene(QPointF(corner, corner)));
    EXPECT_TRUE(drain().isEmpty());
    orlo.onPrimeEnabledToggled(7, false);
    scene::click(view, scene::centreOf(view, "/7"));
    EXPECT_TRUE(drain().isEmpty()) << "a hidden ball does not play";
}

} // namespace
