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
    const struct
    {
        Qt::KeyboardModifiers modifiers;
        int type; // -1: no command
        float value;
    } rows[] = {
        {Qt::NoModifier, 0, 1.0F},
        {shift, 36, 1.0F},
        {alt, 37, 1.0F},
        {control, 38, 0.0F},
        {alt | control, 38, 1.0F},
        {alt | control | shift, 38, 1.0F},
        {alt | control | meta, 38, 1.0F},
        {shift | alt, -1, 0.0F},
        {shift | control, -1, 0.0F},
        {meta, -1, 0.0F},
        {alt | meta, -1, 0.0F},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.modifiers.toInt());
        scene::click(view, scene::centreOf(view, "/-2/3"), row.modifiers);
        const QList<PdMessageBuffer::Chunk> commands = drain();
        ASSERT_EQ(commands.size(), row.type < 0 ? 0 : 1);
        if (row.type < 0)
            continue;
        EXPECT_EQ(commands[0].type, row.type);
        EXPECT_EQ(commands[0].value, row.value);
        // The note goes by its path, all else by the relative ratio: 1/2 of 3/2.
        if (row.type == 0)
            EXPECT_EQ(commands[0].path.toString(), QStringLiteral("/-2/3"));
        else
            EXPECT_EQ(commands[0].ratio.ratio(), OrloRatio(3, 4).ratio());
    }
    for (const Qt::MouseButton button : {Qt::RightButton, Qt::MiddleButton})
        scene::click(view, scene::centreOf(view, "/"), Qt::NoModifier, button);
    EXPECT_TRUE(drain().isEmpty()) << "only the left button plays";
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
        const QList<PdMessageBuffer::Chunk> commands = drain();
        ASSERT_EQ(commands.size(), 1) << qPrintable(path);
        EXPECT_EQ(commands[0].path.toString(), path);
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
