#include "support/LogCatcher.h"
#include "ui/WindowFixture.h"
#include "ui/dialogs/DiagnosticsDialog.h"
#include "ui/dialogs/TweakDialog.h"
#include "ui/lattice/GeometryConstants.h"
#include "ui/stacks/CardStackWidget.h"
#include "ui/stacks/OrloLayer.h"

#include <QImage>
#include <QSpinBox>

namespace {

class Tweaks : public WindowFixture
{
protected:
    Tweaks()
    {
        for (const GeometryConstant& constant : GEOMETRY_CONSTANTS)
            values.append(*constant.value);
        window->resize(1280, 800);
        window->show();
        click("grapesViewButton");
        // Binds the lattice to its file; the pages go on drawing the tree they were built from.
        EXPECT_TRUE(orlo.init(QStringLiteral("orlo_v2.json")));
        settle();
    }
    ~Tweaks() override
    {
        for (const GeometryConstant& constant : GEOMETRY_CONSTANTS)
            *constant.value = values.takeFirst();
        OrloLeavesWidget::clearPositions();
    }

    QSpinBox* box(const char* name) const { return find<QSpinBox>(name); }
    OrloView* circles() const { return find<OrloLayer>("circleLayer")->orloView(); }
    OrloView* grapes() const { return find<OrloLayer>("grapeLayer")->orloView(); }
    qsizetype trees() const
    {
        return orlo.findChildren<OrloBall*>(QString(), Qt::FindDirectChildrenOnly).size();
    }
    QImage picture() const { return window->orloView()->viewport()->grab().toImage(); }

    QList<int> values;
    TweakDialog* dialog = window->findChild<TweakDialog*>();
};

} // namespace

TEST_F(Tweaks, AnEditIsDrawnWithUpdateAndOnThePageShownAlone)
{
    const QImage before = picture();
    const OrloWidget* other = circles()->orloWidget();
    EXPECT_FALSE(dialog->isVisible() || window->findChild<DiagnosticsDialog*>()->isVisible());
    box("GRAPE_LEAVES_HEIGHT")->setValue(40);
    EXPECT_EQ(picture(), before);
    // Clicks that come while the window handles events have nothing to add.
    QMetaObject::invokeMethod(dialog, &TweakDialog::updateTweaks, Qt::QueuedConnection);
    dialog->updateTweaks();
    EXPECT_EQ(commands(), (QList<Command>{{OrloEvent::AllNotesOff, 1.0F}}));
    EXPECT_NEAR(scene::ballAt(*grapes(), "/-5")->pos().y(), 12.867, 0.001); // 40 x 3.86 / 12
    EXPECT_EQ(circles()->orloWidget(), other);

    click("circlesViewButton");
    const QPointF leaf = scene::ballAt(*circles(), "/-5")->pos();
    box("LEAVES_RADIUS")->setValue(2 * LEAVES_RADIUS);
    dialog->updateTweaks();
    EXPECT_LT(QLineF(scene::ballAt(*circles(), "/-5")->pos(), 2 * leaf).length(), 0.001);
}

TEST_F(Tweaks, ATreeLivesAsLongAsAPageDrawsIt)
{
    orlo.onPrimeEnabledToggled(7, false);
    orlo.onNoteToggled(OrloRatio(5, 4), true);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(trees(), 2) << "the other page's, and the one of the file";
        dialog->updateTweaks();
    }
    EXPECT_FALSE(ballAt("/2/-7")->isEnabled());
    // The page that still draws the first one.
    click("circlesViewButton");
    dialog->updateTweaks();
    EXPECT_TRUE(scene::circlesOf(scene::ballAt(*circles(), "/5")).glow->isVisible());
    // The other page hears no more of its tree, so nothing may stay lit there.
    EXPECT_FALSE(scene::circlesOf(scene::ballAt(*grapes(), "/5")).glow->isVisible());
    EXPECT_TRUE(find<OrloLayer>("grapeLayer")->cardStack()->cards().isEmpty());
    click("grapesViewButton");
    dialog->updateTweaks();
    window.reset();
    EXPECT_EQ(trees(), 1);
}

TEST_F(Tweaks, AnyValueDrawsSomethingOrNothingInABoundedPicture)
{
    const auto draw = [this](int length, int diameter) {
        for (const GeometryConstant& constant : GEOMETRY_CONSTANTS)
            *constant.value = length;
        BALL_DIAMETER = LEAF_DIAMETER = diameter;
        for (const char* page : {"circlesViewButton", "grapesViewButton"}) {
            click(page);
            dialog->updateTweaks();
            picture();
        }
        return grapes()->currentScale();
    };
    for (const OrloRatio& ratio : {OrloRatio(1, 1), OrloRatio(5, 4), OrloRatio(25, 16)})
        orlo.onNoteToggled(ratio, true);
    draw(0, 1);
    window->resize(1200, 800);
    EXPECT_GT(grapes()->currentScale(), 100.0);
    EXPECT_LT(draw(1000, 1000), 1.0) << "the scale is not kept";
    const LogCatcher quiet;
    for (const int value : {-1000, -1, 0, 28})
        draw(value, value);
}
