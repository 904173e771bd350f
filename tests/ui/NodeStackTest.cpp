#include "support/LogCatcher.h"
#include "ui/CardWidget.h"
#include "ui/NodeStackFixture.h"

#include <QGraphicsEllipseItem>
#include <QPen>
#include <QPointer>

#include <algorithm>

namespace {

using NodeStack = NodeStackFixture;

// ---------------------------------------------------------------- coming and going

TEST_F(NodeStack, ABallComesOnceAndGoesForGood)
{
    const OrloRatio ratio(25, 16);
    add({ratio});
    EXPECT_FALSE(ball(ratio)->isVisible()) << "without a place yet";
    stack->toggleNodeForRatio(ratio, true);
    stack->showNodes();
    const QPointer<FreeBallWidget> first = ball(ratio);
    add({ratio});
    EXPECT_EQ(ball(ratio), first.data());
    EXPECT_TRUE(ball(ratio)->isPlaying());

    stack->removeNodeForRatio(ratio);
    EXPECT_TRUE(overlay->balls().isEmpty());
    EXPECT_TRUE(stack->scene()->items().isEmpty());
    deleteLater();
    EXPECT_TRUE(first.isNull());

    // No ball, no change.
    stack->removeNodeForRatio(ratio);
    stack->toggleNodeForRatio(ratio, true);
    stack->selectNodeForRatio(ratio, true);
    stack->setHoldNodeForRatio(ratio, true);
    stack->setAlteredNodeForRatio(ratio, true);
    stack->raiseNodeForRatio(ratio);
    EXPECT_TRUE(stack->balls().isEmpty() && overlay->balls().isEmpty());
}

TEST_F(NodeStack, AThousandChordsLeaveNothingBehind)
{
    QList<QPointer<FreeBallWidget>> former;
    for (unsigned chord = 0; chord < 1000; ++chord) {
        for (unsigned note = 0; note < 6; ++note) {
            const OrloRatio ratio(97 + chord % 7 + 5 * note, 89);
            add({ratio});
            stack->toggleNodeForRatio(ratio, true);
            former.append(ball(ratio));
        }
        stack->showNodes();
        if (chord % 3 == 0)
            stack->updateNodes();
        if (chord % 2 == 0)
            stack->reset();
        for (const OrloRatio& ratio : stack->balls().keys())
            stack->removeNodeForRatio(ratio);
        deleteLater();
    }
    EXPECT_TRUE(std::all_of(former.begin(), former.end(), [](const auto& ball) { return ball.isNull(); }));
    EXPECT_TRUE(stack->scene()->items().isEmpty());
    EXPECT_TRUE(overlay->balls().isEmpty());
    EXPECT_TRUE(stack->findChildren<FreeBallWidget*>().isEmpty());
}

TEST_F(NodeStack, ABallThatGoesUnderThePointerHurtsNobody)
{
    const OrloRatio ratio(25, 16);
    // Cleared or made anew, hovered or pressed.
    for (const bool pressed : {false, true}) {
        add({ratio});
        stack->toggleNodeForRatio(ratio, true);
        stack->showNodes();
        const QPoint point = pointOf(ratio);
        hover(point + QPoint(30, 0));
        hover(point);
        if (pressed)
            scene::mouse(*stack, QEvent::MouseButtonPress, point, Qt::LeftButton, Qt::LeftButton);
        stack->updateNodes();
        deleteLater();
        hover(point);
        stack->reset();
        scene::mouse(*stack, QEvent::MouseButtonRelease, point, Qt::LeftButton, Qt::NoButton);
        hover(point + QPoint(1, 0));
        deleteLater();
        hover(point);
        scene::mouse(*stack, QEvent::MouseButtonDblClick, point, Qt::LeftButton, Qt::LeftButton);
        page.grab();
    }
    // The stack goes first, with a ball that still sounds and one that is about to be deleted.
    add({ratio, OrloRatio(35, 32)});
    stack->toggleNodeForRatio(ratio, true);
    stack->removeNodeForRatio(OrloRatio(35, 32));
    delete stack;
    EXPECT_TRUE(overlay->balls().isEmpty());
    stack = new NodeStackWidget(&page);
}

TEST_F(NodeStack, UpdateNodesKeepsEveryFlagAndTakesTheColourOfTheMode)
{
    transposeBy({7});
    const OrloRatio ratio(35, 16); // 5/4 as seen from the root
    add({ratio});
    const QColor red(QStringLiteral("#9c0404"));
    const QColor blue(QStringLiteral("#2838d0"));
    for (int flags = 0; flags < 16; ++flags) {
        SCOPED_TRACE(flags);
        const bool playing = flags & 1;
        const bool selected = flags & 2;
        const bool hold = flags & 4;
        const bool altered = flags & 8;
        stack->toggleNodeForRatio(ratio, playing);
        stack->selectNodeForRatio(ratio, selected);
        stack->setHoldNodeForRatio(ratio, hold);
        stack->setAlteredNodeForRatio(ratio, altered);
        for (const int mode : {0, 1, 2}) {
            settings.absRelView = mode;
            stack->updateNodes();
            const scene::Circles circles = scene::circlesOf(ball(ratio));
            const QColor color = mode == 0 ? red : blue;
            EXPECT_EQ(circles.main->brush().color(), playing ? color.lighter(130) : color.darker(115));
            EXPECT_EQ(circles.altered->pen().color(), color);
            EXPECT_EQ(circles.glow->isVisible(), playing);
            EXPECT_EQ(circles.selected->isVisible(), selected);
            EXPECT_EQ(circles.hold->isVisible(), hold);
            EXPECT_EQ(circles.altered->isVisible(), altered);
            EXPECT_EQ(overlay->balls().size(), playing ? 1 : 0);
        }
    }
}

// ---------------------------------------------------------------- the pointer

TEST_F(NodeStack, ModifiersChooseTheCommand)
{
    const Qt::KeyboardModifiers shift = Qt::ShiftModifier;
    const Qt::KeyboardModifiers alt = Qt::AltModifier;
    const Qt::KeyboardModifiers control = Qt::ControlModifier;
    constexpr int nothing = -1;
    const OrloRatio absolute(25, 16);
    const OrloRatio relative(25, 24);
    const struct
    {
        Qt::MouseButton button;
        Qt::KeyboardModifiers modifiers;
        int type;
        float value;
        OrloRatio ratio;
    } rows[] = {
        {Qt::LeftButton, Qt::NoModifier, 34, 2.0F, absolute},
        {Qt::LeftButton, shift, 36, 1.0F, relative},
        {Qt::LeftButton, alt, 37, 1.0F, relative},
        {Qt::LeftButton, control, 38, 0.0F, relative},
        {Qt::LeftButton, alt | control, 38, 1.0F, relative},
        {Qt::LeftButton, shift | alt, nothing, 0.0F, relative},
        {Qt::RightButton, Qt::NoModifier, 35, 1.0F, absolute},
        {Qt::RightButton, alt | control, 35, 1.0F, absolute},
        {Qt::MiddleButton, Qt::NoModifier, nothing, 0.0F, absolute},
    };
    transposeBy({3});
    add({absolute});
    stack->showNodes();
    for (const auto& row : rows) {
        SCOPED_TRACE(row.modifiers.toInt());
        scene::click(*stack, pointOf(absolute), row.modifiers, row.button);
        const QList<PdMessageBuffer::Chunk> commands = drain();
        ASSERT_EQ(commands.size(), row.type == nothing ? 0 : 1);
        if (row.type == nothing)
            continue;
        EXPECT_EQ(commands[0].type, row.type);
        EXPECT_EQ(commands[0].value, row.value);
        EXPECT_EQ(commands[0].ratio.ratio(), row.ratio.ratio());
    }
    EXPECT_FALSE(ball(absolute)->isPlaying()) << "a press changes nothing by itself";
}

TEST_F(NodeStack, APressHitsTheBallThroughItsMarksAndWithinWhatIsSeenOfIt)
{
    const OrloRatio ratio(25, 16);
    add({ratio});
    stack->toggleNodeForRatio(ratio, true);
    stack->setHoldNodeForRatio(ratio, true);
    stack->setAlteredNodeForRatio(ratio, true);
    stack->showNodes();
    const QPoint centre = pointOf(ratio);
    const OrloRatio nothing;
    EXPECT_EQ(playedAt(centre), ratio);
    EXPECT_EQ(playedAt(centre + QPoint(6, 0)), ratio) << "on the altered ring";
    EXPECT_EQ(playedAt(centre + QPoint(8, 0)), nothing) << "in the glow alone";
    stack->setAlteredNodeForRatio(ratio, false);
    EXPECT_EQ(playedAt(centre + QPoint(6, 0)), nothing);
}

TEST_F(NodeStack, AQuickDoubleClickPlaysOneToggle)
{
    const OrloRatio ratio(25, 16);
    add({ratio});
    stack->showNodes();
    const QPoint point = pointOf(ratio);
    scene::click(*stack, point);
    stack->toggleNodeForRatio(ratio, true); // held at once, which puts the dot under the pointer
    stack->setHoldNodeForRatio(ratio, true);
    scene::mouse(*stack, QEvent::MouseButtonDblClick, point, Qt::LeftButton, Qt::LeftButton);
    scene::mouse(*stack, QEvent::MouseButtonRelease, point, Qt::LeftButton, Qt::NoButton);
    EXPECT_EQ(drain().size(), 1);
    scene::click(*stack, point);
    EXPECT_EQ(drain().size(), 1);
}

TEST_F(NodeStack, ThePointerRaisesABallAndTheCardOfASoundingOne)
{
    const OrloRatio lower(25, 16);
    const OrloRatio upper(35, 32);
    const OrloRatio silent(49, 32);
    add({lower, upper, silent});
    stack->toggleNodeForRatio(lower, true);
    stack->toggleNodeForRatio(upper, true);
    stack->showNodes();
    // Overlapping by four pixels, as a crowded stack has them.
    ball(lower)->setPos(30, 300);
    ball(upper)->setPos(36, 300);
    ball(silent)->setPos(30, 500);
    const LogCatcher log;
    for (const OrloRatio& ratio : {lower, upper, silent})
        cards->showCardForRatio(ratio);
    const auto topCard = [this] { return cards->children().last(); };
    const QPoint shared(33, 300);

    EXPECT_EQ(playedAt(shared), upper);
    hover({27, 300});
    EXPECT_EQ(playedAt(shared), lower);
    EXPECT_EQ(topCard(), cards->getCardForRatio(lower));
    hover({80, 300});
    hover({39, 300});
    EXPECT_EQ(playedAt(shared), upper);
    EXPECT_EQ(topCard(), cards->getCardForRatio(upper));
    hover({30, 500});
    EXPECT_EQ(topCard(), cards->getCardForRatio(upper)) << "a ball that does not sound has no say";
    EXPECT_EQ(log.count(QtWarningMsg, QString()), 0);
}

// ---------------------------------------------------------------- lines

TEST_F(NodeStack, LinesRunLevelToTheCardsAndToAnAxisOfPitch)
{
    const OrloRatio high(16, 1);
    const OrloRatio atPitch(1, 1);
    const OrloRatio aside(999, 1000); // pushed by the one before, still at its height
    const OrloRatio low(1, 9);
    for (const OrloRatio& ratio : {high, atPitch, aside, low}) {
        add({ratio});
        stack->toggleNodeForRatio(ratio, true);
        EXPECT_TRUE(overlay->linesOf(ball(ratio)).isEmpty()) << "without a place yet";
    }
    stack->showNodes();
    using Lines = QList<QLine>;
    EXPECT_EQ(overlay->linesOf(ball(atPitch)), (Lines{{916, 405, 992, 405}, {0, 406, 904, 406}}));
    EXPECT_EQ(overlay->linesOf(ball(aside)), (Lines{{932, 405, 992, 405}, {0, 406, 920, 406}}));
    EXPECT_EQ(overlay->linesOf(ball(high)), (Lines{{916, 10, 992, 10}}));
    EXPECT_EQ(overlay->linesOf(ball(low)), (Lines{{980, 790, 992, 790}}));

    stack->toggleNodeForRatio(low, false);
    stack->updatePositions();
    EXPECT_EQ(overlay->balls().size(), 3) << "each once, however many passes there were";

    stack->hide();
    EXPECT_TRUE(overlay->linesOf(ball(atPitch)).isEmpty()) << "the stacks are switched off";
    stack->show();
    view->buildScene(OrloLeavesWidget::Circles);
    EXPECT_EQ(overlay->linesOf(ball(atPitch)).size(), 1) << "no axis of pitch in this view";
}

TEST_F(NodeStack, LinesAreDottedAndGrey)
{
    add({OrloRatio(1, 1)});
    stack->toggleNodeForRatio(OrloRatio(1, 1), true);
    stack->showNodes();
    QImage image(overlay->size(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    overlay->render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
    const auto painted = [&image](int y, int from, int to) {
        int count = 0;
        for (int x = from; x < to; ++x)
            count += qAlpha(image.pixel(x, y)) > 0;
        return count;
    };
    // Of three pixels one: 77 from edge to edge, and 905.
    EXPECT_NEAR(painted(405, 916, 993), 26, 1);
    EXPECT_NEAR(painted(406, 0, 905), 302, 1);
    EXPECT_EQ(painted(405, 0, 904), 0);
    EXPECT_EQ(painted(404, 0, 1200), 0);
    const QColor first = image.pixelColor(916, 405);
    EXPECT_EQ(first.alpha(), 64);
    EXPECT_NEAR(first.red(), 142, 3); // premultiplied on the way
    EXPECT_EQ(first.red(), first.blue());
}

} // namespace
