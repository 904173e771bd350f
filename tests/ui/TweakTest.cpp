#include "support/LogCatcher.h"
#include "ui/CardStackWidget.h"
#include "ui/DiagnosticsDialog.h"
#include "ui/FreeBallWidget.h"
#include "ui/GeometryConstants.h"
#include "ui/NodeStackWidget.h"
#include "ui/OrloBallWidget.h"
#include "ui/OrloLayer.h"
#include "ui/OrloView.h"
#include "ui/OrloWidget.h"
#include "ui/TweakDialog.h"
#include "ui/WindowFixture.h"

#include <QImage>
#include <QLabel>
#include <QLayout>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>

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

TEST_F(Tweaks, TheDialogHasARowForEachValueAndStaysHidden)
{
    ASSERT_EQ(dialog->layout()->count(), 23);
    QString rows;
    for (int i = 0; i < 22; ++i) {
        QLayout* row = dialog->layout()->itemAt(i)->layout();
        rows += qobject_cast<QLabel*>(row->itemAt(0)->widget())->text() + u' '
                + qobject_cast<QSpinBox*>(row->itemAt(1)->widget())->text() + u' ';
    }
    EXPECT_EQ(rows.toStdString(),
              "ANGLE_2_PLUS 135 ANGLE_3_PLUS 45 ANGLE_FRONT_OFFSET 12 ANGLE_FRONT_ROTATE_OFFSET 45 "
              "STRUT_2_LENGTH 113 STRUT_3_LENGTH 66 STRUT_WIDTH 4 LINK_WIDTH 2 LEAVES_PLUS_OFFSET_X 0 "
              "LEAVES_PLUS_OFFSET_Y -35 GRAPE_LEAVES_WIDTH 32 GRAPE_LEAVES_HEIGHT 80 BALL_DIAMETER 28 "
              "LEAF_DIAMETER 10 LEAVES_RADIUS 14 LEAVES_START_ANGLE 50 BALL_DIM_FACTOR 115 "
              "BALL_BRIGHTEN_FACTOR 130 OUTLINE_BRIGHTEN_FACTOR 145 BALL_GLOW_SIZE_FACTOR 200 "
              "GLOW_ALPHA_START 180 PRIME_DISABLED_DIM_FACTOR 300 ");
    EXPECT_EQ(qobject_cast<QPushButton*>(dialog->layout()->itemAt(22)->widget())->text(),
              QStringLiteral("Update"));
    EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Tweak Dialog"));
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_FALSE(window->findChild<DiagnosticsDialog*>()->isVisible());

    dialog->show();
    EXPECT_LE(dialog->height(), 740) << "a title bar and a panel must fit on 800 lines too";
    box("LINK_WIDTH")->selectAll();
    QTest::keyClicks(box("LINK_WIDTH"), QStringLiteral("1001"));
    EXPECT_EQ(LINK_WIDTH, 100);
    box("LINK_WIDTH")->setValue(-1001);
    EXPECT_EQ(LINK_WIDTH, -1000);
}

TEST_F(Tweaks, AnEditIsDrawnWithUpdateAndOnThePageShownAlone)
{
    const QImage before = picture();
    box("ANGLE_FRONT_OFFSET")->setValue(99);
    dialog->updateTweaks();
    EXPECT_EQ(picture(), before) << "a value that nothing reads";
    EXPECT_EQ(commands(), (QList<Command>{{OrloEvent::AllNotesOff, 1.0F}}));

    const OrloWidget* other = circles()->orloWidget();
    box("GRAPE_LEAVES_HEIGHT")->setValue(40);
    EXPECT_EQ(GRAPE_LEAVES_HEIGHT, 40);
    EXPECT_EQ(picture(), before);
    // Clicks that come while the window handles events have nothing to add.
    QMetaObject::invokeMethod(dialog, &TweakDialog::updateTweaks, Qt::QueuedConnection);
    dialog->updateTweaks();
    EXPECT_EQ(commands().size(), 1);
    EXPECT_NE(picture(), before);
    EXPECT_NEAR(scene::ballAt(*grapes(), "/-5")->pos().y(), 12.867, 0.001); // 40 x 3.86 / 12
    EXPECT_EQ(circles()->orloWidget(), other);
}

TEST_F(Tweaks, WhatTheModelKnowsComesThroughTheNewTree)
{
    const OrloRatio held(5, 4);
    const OrloRatio withoutBall(25, 16);
    dialog->updateTweaks();
    orlo.onPrimeEnabledToggled(7, false);
    orlo.onNoteToggled(held, true);
    orlo.onNodeSelected(withoutBall, true);
    click("circlesViewButton");
    dialog->updateTweaks();
    EXPECT_FALSE(ballAt("/7")->isEnabled());
    EXPECT_FALSE(ballAt("/2/-7")->isEnabled());
    EXPECT_TRUE(ballAt("/2")->isEnabled());
    EXPECT_TRUE(scene::circlesOf(scene::ballAt(*circles(), "/5")).glow->isVisible());
    EXPECT_EQ(find<OrloLayer>("circleLayer")->cardStack()->cards().size(), 1);
    EXPECT_TRUE(find<OrloLayer>("circleLayer")->nodeStack()->ballForRatio(withoutBall)->isVisible());
    // The other page hears no more of its tree, so nothing may stay lit there.
    EXPECT_FALSE(scene::circlesOf(scene::ballAt(*grapes(), "/5")).glow->isVisible());
    EXPECT_TRUE(find<OrloLayer>("grapeLayer")->cardStack()->cards().isEmpty());
}

TEST_F(Tweaks, ATreeLivesAsLongAsAPageDrawsIt)
{
    EXPECT_EQ(trees(), 2) << "the pages', and the one of the file";
    for (int i = 0; i < 3; ++i) {
        dialog->updateTweaks();
        EXPECT_EQ(trees(), 2);
    }
    // On the page that still draws the first one.
    click("circlesViewButton");
    settle();
    EXPECT_EQ(trees(), 2);
    EXPECT_NE(scene::ballAt(*circles(), "/3")->ball(), ballAt("/3"));
    const QPoint point = scene::centreOf(*circles(), "/3");
    scene::mouse(*circles(), QEvent::MouseMove, point, Qt::NoButton, Qt::NoButton);
    scene::click(*circles(), point);
    EXPECT_EQ(commands(), (QList<Command>{{OrloEvent::NoteToggleByPath, 1.0F}}));
    transposeBy({3});
    orlo.onNoteToggled(OrloRatio(3, 2), true);
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
    EXPECT_EQ(trees(), 2);
    window.reset();
    EXPECT_EQ(trees(), 1);
}

TEST_F(Tweaks, AnyValueDrawsSomethingOrNothing)
{
    orlo.onNoteToggled(OrloRatio(1, 1), true);
    orlo.onNoteToggled(OrloRatio(5, 4), true);
    orlo.onNoteToggled(OrloRatio(25, 16), true);
    orlo.onNodeAltered(OrloRatio(5, 4), true);
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
    for (const GeometryConstant& constant : GEOMETRY_CONSTANTS) {
        const int normal = *constant.value;
        for (const int value : {-1000, -1, 0, 1, 1000}) {
            *constant.value = value;
            draw();
        }
        *constant.value = normal;
    }
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
