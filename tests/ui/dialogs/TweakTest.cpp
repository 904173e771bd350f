#include "support/LogCatcher.h"
#include "ui/stacks/CardStackWidget.h"
#include "ui/dialogs/DiagnosticsDialog.h"
#include "ui/stacks/FreeBallWidget.h"
#include "ui/lattice/GeometryConstants.h"
#include "ui/stacks/NodeStackWidget.h"
#include "ui/lattice/OrloBallWidget.h"
#include "ui/stacks/OrloLayer.h"
#include "ui/lattice/OrloView.h"
#include "ui/lattice/OrloWidget.h"
#include "ui/dialogs/TweakDialog.h"
#include "ui/WindowFixture.h"

#include <QImage>
#include <QSpinBox>

#include <random>

namespace {

class Tweaks : public WindowFixture
{
protected:
    Tweaks()
    {
        window->resize(1280, 800);
        window->show();
        click("grapesViewButton");
        // Binds the lattice to its file; the pages go on drawing the tree they were built from.
        EXPECT_TRUE(orlo.init(QStringLiteral("orlo_v2.json")));
        settle();
    }

    QSpinBox* box(const char* name) const { return find<QSpinBox>(name); }
    OrloView* circles() const { return find<OrloLayer>("circleLayer")->orloView(); }
    OrloView* grapes() const { return find<OrloLayer>("grapeLayer")->orloView(); }
    qsizetype trees() const
    {
        return orlo.findChildren<OrloBall*>(QString(), Qt::FindDirectChildrenOnly).size();
    }
    QImage picture() const { return window->orloView()->viewport()->grab().toImage(); }

    const GeometryKeeper keeper;
    TweakDialog* dialog = window->findChild<TweakDialog*>();
};

} // namespace

TEST_F(Tweaks, TheDialogStaysHiddenAndFitsTheScreen)
{
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_FALSE(window->findChild<DiagnosticsDialog*>()->isVisible());
    dialog->show();
    EXPECT_LE(dialog->height(), 740) << "a title bar and a panel must fit on 800 lines too";
}

TEST_F(Tweaks, AnEditIsDrawnWithUpdateAndOnThePageShownAlone)
{
    const QImage before = picture();
    const OrloWidget* other = circles()->orloWidget();
    box("GRAPE_LEAVES_HEIGHT")->setValue(40);
    EXPECT_EQ(picture(), before);
    // Clicks that come while the window handles events have nothing to add.
    QMetaObject::invokeMethod(dialog, &TweakDialog::updateTweaks, Qt::QueuedConnection);
    dialog->updateTweaks();
    EXPECT_EQ(commands(), (QList<Command>{{OrloEvent::AllNotesOff, 1.0F}}));
    EXPECT_NEAR(scene::ballAt(*grapes(), "/-5")->pos().y(), 12.867, 0.001); // 40 x 3.86 / 12
    EXPECT_EQ(circles()->orloWidget(), other);
}

TEST_F(Tweaks, WhatTheModelKnowsComesThroughTheNewTree)
{
    const OrloRatio withoutBall(25, 16);
    dialog->updateTweaks();
    orlo.onPrimeEnabledToggled(7, false);
    orlo.onNoteToggled(OrloRatio(5, 4), true);
    orlo.onNodeSelected(withoutBall, true);
    click("circlesViewButton");
    dialog->updateTweaks();
    EXPECT_FALSE(ballAt("/2/-7")->isEnabled());
    EXPECT_TRUE(scene::circlesOf(scene::ballAt(*circles(), "/5")).glow->isVisible());
    EXPECT_TRUE(find<OrloLayer>("circleLayer")->nodeStack()->ballForRatio(withoutBall)->isVisible());
    // The other page hears no more of its tree, so nothing may stay lit there.
    EXPECT_FALSE(scene::circlesOf(scene::ballAt(*grapes(), "/5")).glow->isVisible());
    EXPECT_TRUE(find<OrloLayer>("grapeLayer")->cardStack()->cards().isEmpty());
}

TEST_F(Tweaks, ATreeLivesAsLongAsAPageDrawsIt)
{
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(trees(), 2) << "the other page's, and the one of the file";
        dialog->updateTweaks();
    }
    // On the page that still draws the first one.
    click("circlesViewButton");
    settle();
    const QPoint point = scene::centreOf(*circles(), "/3");
    scene::mouse(*circles(), QEvent::MouseMove, point, Qt::NoButton, Qt::NoButton);
    scene::click(*circles(), point);
    EXPECT_EQ(commands(), (QList<Command>{{OrloEvent::NoteToggleByPath, 1.0F}}));
    transposeBy({3});
    window->updateOrloView();
    picture();

    // Rebuilt under the pointer, with a button down.
    scene::mouse(*circles(), QEvent::MouseButtonPress, point, Qt::LeftButton, Qt::LeftButton);
    dialog->updateTweaks();
    scene::mouse(*circles(), QEvent::MouseButtonRelease, point, Qt::LeftButton, Qt::NoButton);
    EXPECT_EQ(trees(), 2) << "now the grapes draw one of before";
    click("grapesViewButton");
    dialog->updateTweaks();
    click("circlesViewButton");
    window.reset();
    EXPECT_EQ(trees(), 1);
}

TEST_F(Tweaks, AnyValueDrawsSomethingOrNothing)
{
    for (const OrloRatio& ratio : {OrloRatio(1, 1), OrloRatio(5, 4), OrloRatio(25, 16)})
        orlo.onNoteToggled(ratio, true);
    const QSize size = window->size();
    LogCatcher log;
    int drawn = 0;
    const auto draw = [&] {
        click(++drawn % 2 ? "circlesViewButton" : "grapesViewButton");
        OrloLeavesWidget::clearPositions();
        window->orloView()->buildScene(window->orloView()->view());
        window->updateOrloView();
        find<QWidget>("centralStack")->grab(); // in the scale of the scene before
    };
    std::mt19937 random(20);
    const int edges[] = {-1000, -1, 0, 1, 28, 1000};
    for (int round = 0; round < 40; ++round) {
        for (const GeometryConstant& constant : GEOMETRY_CONSTANTS)
            *constant.value = round % 4 < 2 ? edges[random() % 6] : static_cast<int>(random() % 2001) - 1000;
        draw();
        window->resize(size + QSize(0, 1 + round % 2)); // fits the scene
    }
    EXPECT_EQ(window->size(), size + QSize(0, 2));
    for (const LogCatcher::Line& line : log.lines())
        EXPECT_TRUE(line.type == QtDebugMsg || line.text.startsWith(u"OrloWidget: the link"))
            << line.text.toStdString();
}

TEST_F(Tweaks, TheScaleOfATinyPictureIsNotKeptForAHugeOne)
{
    const auto setAll = [](int length, int diameter) {
        for (int* value : {&STRUT_2_LENGTH, &STRUT_3_LENGTH, &LEAVES_PLUS_OFFSET_Y, &GRAPE_LEAVES_WIDTH,
                           &GRAPE_LEAVES_HEIGHT, &LEAVES_RADIUS, &STRUT_WIDTH, &LINK_WIDTH})
            *value = length;
        BALL_DIAMETER = LEAF_DIAMETER = diameter;
    };
    setAll(0, 1);
    dialog->updateTweaks();
    window->resize(1200, 800);
    EXPECT_GT(grapes()->currentScale(), 100.0);
    setAll(100, 1000);
    dialog->updateTweaks();
    EXPECT_LT(grapes()->currentScale(), 1.0);
}
