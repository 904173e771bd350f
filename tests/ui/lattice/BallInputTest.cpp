// Balls of the lattice and of the node stack, by real presses.

#include "ui/PageFixture.h"

#include <QHelpEvent>
#include <QToolTip>

namespace {

using BallInput = MeasuredPage;

TEST_F(BallInput, ModifiersAndButtonsChooseTheCommand)
{
    constexpr auto shift = Qt::ShiftModifier;
    constexpr auto alt = Qt::AltModifier;
    constexpr auto control = Qt::ControlModifier;
    // Of the lattice's ball the note by its path, all else by the relative ratio: 1/2 of 3/2. Of the
    // stack's 25/16, which is 25/24 a fifth up.
    const std::tuple<Qt::MouseButton, Qt::KeyboardModifiers, const char*, const char*> rows[] = {
        {Qt::LeftButton, Qt::NoModifier, "0 1 /-2/3", "34 2 25/16"},
        {Qt::LeftButton, shift, "36 1 3/4", "36 1 25/24"},
        {Qt::LeftButton, alt, "37 1 3/4", "37 1 25/24"},
        {Qt::LeftButton, control, "38 0 3/4", "38 0 25/24"},
        {Qt::LeftButton, alt | control | shift, "38 1 3/4", "38 1 25/24"},
        {Qt::LeftButton, shift | alt, "", ""},
        {Qt::LeftButton, Qt::MetaModifier, "", ""},
        {Qt::RightButton, alt | control, "", "35 1 25/16"},
        {Qt::MiddleButton, Qt::NoModifier, "37 1 3/4", "37 1 25/24"},
        {Qt::MiddleButton, alt, "", ""},
    };
    const OrloRatio small(25, 16);
    transposeBy({3});
    add({small});
    stack->showNodes();
    for (const auto& [button, modifiers, ofLattice, ofStack] : rows) {
        scene::click(*view, scene::centreOf(*view, "/-2/3"), modifiers, button);
        EXPECT_EQ(said(), ofLattice) << button << ' ' << modifiers.toInt();
        scene::click(*stack, pointOf(small), modifiers, button);
        EXPECT_EQ(said(), ofStack) << button << ' ' << modifiers.toInt();
    }
}

TEST_F(BallInput, AQuickDoubleClickPlaysOneToggle)
{
    const OrloRatio small(25, 16);
    add({small});
    stack->showNodes();
    const std::pair<QGraphicsView*, QPoint> balls[] = {{view, scene::centreOf(*view, "/2")},
                                                       {stack, pointOf(small)}};
    for (const auto& [where, point] : balls) {
        scene::click(*where, point);
        stack->setHoldNodeForRatio(small, true); // at once, which puts the dot under the pointer
        scene::mouse(*where, QEvent::MouseButtonDblClick, point, Qt::LeftButton, Qt::LeftButton);
        scene::mouse(*where, QEvent::MouseButtonRelease, point, Qt::LeftButton, Qt::NoButton);
        EXPECT_EQ(drain().size(), 1);
        scene::click(*where, point);
        EXPECT_EQ(drain().size(), 1) << "the third press plays again";
    }
}

TEST_F(BallInput, AToolTipTellsThePitchOfEachKindOfBallAsItIsNow)
{
    settings.absRelView = 0;
    settings.centsShowDecimals = 0;
    settings.soundGrapeNotation = 0;
    view->buildScene(OrloLeavesWidget::Circles); // where no ball covers the centre of another
    const OrloRatio small(25, 16);
    add({small});
    stack->showNodes();
    const auto told = [](QGraphicsView& where, QPoint point) {
        QHelpEvent event(QEvent::ToolTip, point, where.viewport()->mapToGlobal(point));
        QCoreApplication::sendEvent(where.viewport(), &event);
        return QToolTip::text().toStdString();
    };
    const auto tellsOf = [&](const char* path) { return told(*view, scene::centreOf(*view, path)); };

    EXPECT_EQ(tellsOf("/"), "1/1\nA4 +0 cents\n440.000 Hz");
    EXPECT_EQ(tellsOf("/3"), "3/2\nE5 +2 cents\n660.000 Hz");
    EXPECT_EQ(tellsOf("/5"), "5/4\nC#5 -14 cents\n550.000 Hz");
    EXPECT_EQ(told(*stack, pointOf(small)), "25/16\nE#5 -27 cents\n687.500 Hz");
    EXPECT_EQ(tellsOf("/"), "1/1\nA4 +0 cents\n440.000 Hz");
    transposeBy({3});
    updatePage();
    EXPECT_EQ(QToolTip::text().toStdString(), "1/1\nE5 +2 cents\n660.000 Hz")
        << "what is shown is written anew";
    updatePage(&Settings::absRelView, 1);
    EXPECT_EQ(QToolTip::text().toStdString(), "3/2\nE5 +2 cents\n660.000 Hz");
    told(*view, QPoint(1, 1));
    EXPECT_TRUE(QTest::qWaitFor([] { return !QToolTip::isVisible(); })) << "no ball, no text";
}

TEST_F(BallInput, EveryBallIsHitThroughItsMarksAndOnlyWithinItsCircle)
{
    view->buildScene(OrloLeavesWidget::Circles); // where no ball covers the centre of another
    for (const OrloBallWidget* item : view->orloWidget()->balls()) {
        const QString path = item->ball()->path().toString();
        OrloBall* ball = ballAt(qPrintable(path));
        ball->setPlaying(true);
        ball->setSelected(true);
        ball->setHold(true);
        ball->setAltered(true);
        scene::click(*view, view->mapFromScene(item->scenePos()));
        EXPECT_EQ(said(), "0 1 " + path.toStdString());
        report();
    }
    // Just outside the circle, but still in its square and its rings.
    const double corner = 14 * 0.75;
    scene::click(*view, view->mapFromScene(QPointF(corner, corner)));
    orlo.onPrimeEnabledToggled(7, false);
    scene::click(*view, scene::centreOf(*view, "/7"));
    EXPECT_TRUE(drain().isEmpty()) << "a hidden ball does not play";
}

} // namespace
