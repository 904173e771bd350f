#include "ui/CardConnectorOverlay.h"
#include "ui/CardFixture.h"
#include "ui/FreeBallWidget.h"
#include "ui/NodeStackWidget.h"
#include "ui/OrloBallWidget.h"
#include "ui/OrloWidget.h"

#include <QGraphicsSceneHoverEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QTest>
#include <QWindow>

#include <memory>

namespace {

class CardStack : public CardFixture
{
protected:
    OrloBallWidget* ball(const char* path) const { return scene::ballAt(*page.orloView(), path); }
    QPoint ballCentre(const char* path) const { return scene::centreOf(*page.orloView(), path); }
    /// How many pitches have a card.
    qsizetype cards() const { return page.cardStack()->cards().size() + page.cardStackTwo()->cards().size(); }

    /// A card in the order of its stack's children: the last lies on top.
    static bool liesOver(const QWidget* upper, const QWidget* lower)
    {
        const QObjectList& children = upper->parentWidget()->children();
        return children.indexOf(upper) > children.indexOf(lower);
    }
    void hover(const char* path, QEvent::Type type = QEvent::GraphicsSceneHoverEnter) const
    {
        QGraphicsSceneHoverEvent event(type);
        page.orloView()->scene()->sendEvent(ball(path), &event);
    }
};

TEST_F(CardStack, ASoundingBallHasACardOnBothPagesLevelWithIt)
{
    OrloLayer other;
    other.init(OrloLeavesWidget::Circles, &orlo);
    const auto press = [](const OrloView& view, const char* path) {
        scene::click(const_cast<OrloView&>(view), scene::centreOf(view, path));
        report();
    };
    for (const char* path : {"/3", "/-2/5"}) {
        press(*page.orloView(), path);
        EXPECT_EQ(cards(), 0) << "a press changes nothing by itself";
        drain();
        report();
        const CardWidget* card = cardOf(path);
        ASSERT_TRUE(card && card->isVisible()) << path;
        EXPECT_EQ(card->pos(), QPoint(0, ballCentre(path).y() - card->height() / 2));
        ASSERT_EQ(other.cardStack()->cards().size(), 1);
        EXPECT_EQ(other.cardStack()->cards().values().first()->absoluteRatio(), card->absoluteRatio());

        const QList<QLine> lines = page.cardConnectors()->linesOf(ball(path));
        ASSERT_EQ(lines.size(), 2);
        const int y = page.orloView()->viewport()->mapTo(&page, ballCentre(path)).y();
        EXPECT_EQ(lines[0].y1(), y);
        EXPECT_EQ(lines[0].x2(), page.cardStack()->mapTo(&page, QPoint(0, 0)).x());
        EXPECT_EQ(lines[1].x1(), 0);
        const double width = (lines[0].x1() - lines[1].x2()) / page.orloView()->currentScale();
        EXPECT_NEAR(width, 2 * ball(path)->playingRadius(), 2.0);

        press(*other.orloView(), path);
        drain();
        report();
        EXPECT_EQ(cards(), 0);
        EXPECT_TRUE(page.cardConnectors()->connectors().isEmpty());
        EXPECT_TRUE(other.cardStack()->cards().isEmpty());
    }
}

TEST_F(CardStack, ASwitchedOffBallHasNoCardUntilItIsOnAgain)
{
    sound(OrloRatio(7, 4));
    orlo.onPrimeEnabledToggled(7, false);
    EXPECT_FALSE(cardOf("/7"));
    sound(OrloRatio(7, 4), false);
    sound(OrloRatio(7, 4), true);
    EXPECT_FALSE(cardOf("/7"));
    orlo.onPrimeEnabledToggled(7, true);
    EXPECT_TRUE(cardOf("/7"));
}

TEST_F(CardStack, ModifiersAndButtonsOnACardChooseTheCommand)
{
    transposeBy({3});
    drain();
    const struct
    {
        bool twice;
        Qt::MouseButton button;
        Qt::KeyboardModifiers modifiers;
        std::string first;  // of 9/8, a ball's
        std::string second; // of 25/16
    } rows[] = {
        {false, Qt::RightButton, Qt::NoModifier, "34 1 9/8", "34 1 25/16"},
        {false, Qt::RightButton, Qt::ShiftModifier | Qt::AltModifier, "34 1 9/8", "34 1 25/16"},
        {false, Qt::LeftButton, Qt::ControlModifier, "34 1 9/8", "34 1 25/16"},
        {false, Qt::LeftButton, Qt::ShiftModifier, "36 1 3/4", "36 1 25/24"},
        {false, Qt::LeftButton, Qt::NoModifier, "", ""},
        {true, Qt::LeftButton, Qt::NoModifier, "34 1 9/8", "34 1 25/16"},
        {false, Qt::LeftButton, Qt::AltModifier, "", ""},
        {false, Qt::LeftButton, Qt::ControlModifier | Qt::ShiftModifier, "", ""},
        {false, Qt::MiddleButton, Qt::NoModifier, "", ""},
    };
    for (const bool second : {false, true}) {
        for (const auto& row : rows) {
            CardWidget* card = second ? cardFor(25, 16) : cardFor(9, 8);
            EXPECT_EQ(card->isAtStackTwo(), second);
            card->raise();
            // On a text, so that the card's parts are seen to let the press through.
            const QPoint at = label(card, "noteLabel")->mapTo(&page, QPoint(4, 8));
            if (row.twice)
                QTest::mouseDClick(page.windowHandle(), row.button, row.modifiers, at);
            else
                QTest::mouseClick(page.windowHandle(), row.button, row.modifiers, at);
            EXPECT_EQ(said(), second ? row.second : row.first) << row.button << ' ' << row.modifiers.toInt();
            report();
            orlo.onTransposed(OrloRatio(3, 2), Orlo::FREE_TRANSPOSITION); // wherever the player is now
            updatePage();
        }
    }
}

TEST_F(CardStack, ThePointerRaisesCards)
{
    // The leaves of one ball: their cards overlap.
    CardWidget* five = cardFor(5, 4);
    CardWidget* seven = cardFor(7, 4);
    CardWidget* one = cardFor(1, 1);
    EXPECT_TRUE(liesOver(one, seven));
    QEnterEvent enter(QPointF(5, 5), QPointF(5, 5), five->mapToGlobal(QPointF(5, 5)));
    QCoreApplication::sendEvent(five, &enter);
    EXPECT_TRUE(liesOver(five, one));
    hover("/7");
    EXPECT_TRUE(liesOver(seven, five));

    // A ball of the tree waits, and gives up when the pointer has gone on.
    QCursor::setPos(page.mapToGlobal(QPoint(1, 1)));
    QElapsedTimer waited;
    waited.start();
    hover("/");
    EXPECT_GE(waited.elapsed(), 95);
    EXPECT_TRUE(liesOver(seven, one));
    QCursor::setPos(page.orloView()->viewport()->mapToGlobal(ballCentre("/")));
    hover("/");
    EXPECT_TRUE(liesOver(one, seven));

    // Back from a leaf to its ball.
    five->raise();
    hover("/5", QEvent::GraphicsSceneHoverLeave);
    EXPECT_TRUE(liesOver(one, five));

    sound(OrloRatio(1, 1), false);
    waited.restart();
    hover("/");
    EXPECT_LT(waited.elapsed(), 90) << "a silent ball does not hold the thread up";
}

TEST_F(CardStack, PitchesWithoutABallStandLevelWithTheirSmallBall)
{
    auto* nodes = page.findChild<NodeStackWidget*>();
    const auto expectLevel = [&](const OrloRatio& ratio) {
        const CardWidget* card = cardFor(ratio.numerator(), ratio.denominator());
        nodes->showNodes();
        EXPECT_NEAR(card->y() + card->height() / 2, nodes->ballForRatio(ratio)->y(), 1) << ratio.numerator();
    };
    for (const QSize& size : {QSize(1200, 800), QSize(1000, 560)}) {
        page.resize(size);
        for (const OrloRatio& ratio : {OrloRatio(49, 32), OrloRatio(25, 36), OrloRatio(625, 256)})
            expectLevel(ratio);
    }
    // The transposition is the middle of the scale.
    transposeBy({17});
    updatePage();
    expectLevel(OrloRatio(49, 32));

    // Far pitches end at the edges.
    EXPECT_EQ(cardFor(1000, 1)->y(), 0);
    const CardWidget* low = cardFor(1, 1000);
    EXPECT_EQ(low->y(), page.cardStackTwo()->height() - low->height());
}

TEST_F(CardStack, ARatioWithoutAPitchShowsACardThatSaysSo)
{
    const OrloRatio nothing;
    sound(nothing);
    const CardWidget* card = page.cardStackTwo()->getCardForRatio(nothing);
    ASSERT_TRUE(card);
    EXPECT_EQ(text(card, "ratioLabel"), QStringLiteral("out of\nbounds"));
    EXPECT_EQ(card->y(), page.cardStackTwo()->height() - card->height());
    for (const int notation : {1, 2}) {
        settings.soundGrapeNotation = notation;
        settings.absRelView = notation;
        transposeBy({3});
        updatePage();
    }
    // A product that wraps to a denominator of 0: two to the 40th and to the 24th.
    orlo.onTransposed(OrloRatio(1ULL << 24, 14348907), Orlo::FREE_TRANSPOSITION);
    sound(OrloRatio(1, 1ULL << 40));
    EXPECT_TRUE(page.cardStackTwo()->getCardForRatio(OrloRatio(1, 1ULL << 40)));
}

TEST_F(CardStack, TheStacksFollowTheViewByThePolicy)
{
    OrloView* view = page.orloView();
    const CardWidget* first = cardFor(1, 1);
    const CardWidget* second = cardFor(25, 16);
    const struct
    {
        int policy;
        bool final;
        bool firstMoves;
        bool secondMoves;
    } rows[] = {
        {1, true, false, false}, {2, false, false, false}, {2, true, true, false}, {3, false, false, false},
        {3, true, true, true},   {4, false, true, false},  {4, true, true, false}, {5, false, true, false},
        {5, true, true, true},   {6, false, true, true},   {6, true, true, true},  {7, true, false, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.policy * 10 + (row.final ? 1 : 0));
        view->setTestingVariables(row.policy); // back to the fit, and everything to its place
        const int before[] = {first->y(), second->y()};
        view->scale(1.5, 1.5);
        view->centerOn(view->sceneRect().center() - QPointF(0, 60));
        view->updateStacksWhenZoom(row.final);
        EXPECT_EQ(first->y(), row.firstMoves ? ballCentre("/").y() - first->height() / 2 : before[0]);
        EXPECT_NE(ballCentre("/").y() - first->height() / 2, before[0]);
        EXPECT_EQ(second->y() != before[1], row.secondMoves);
    }
}

TEST_F(CardStack, CardsStayWithinTheView)
{
    OrloView* view = page.orloView();
    const CardWidget* card = cardFor(1, 1);
    view->scale(4.0, 4.0);
    view->centerOn(view->mapToScene(QPoint(0, 2000)));
    page.cardStack()->updatePositions();
    EXPECT_EQ(card->y(), 0);
    view->centerOn(QPointF(0, view->sceneRect().top()));
    page.cardStack()->updatePositions();
    EXPECT_EQ(card->y(), view->height() - card->height());

    // With the stacks out of sight there is nothing to tie the balls to.
    for (const bool shown : {false, true}) {
        page.showStacks(shown);
        EXPECT_EQ(page.cardConnectors()->linesOf(ball("/")).size(), shown ? 2 : 0);
    }
}

TEST_F(CardStack, ATranspositionTakesTheCardsAlongAndBack)
{
    const OrloRatio lost(7, 32); // a leaf far below: two fifths up it has no ball
    for (const OrloRatio& ratio : {OrloRatio(1, 1), OrloRatio(3, 2), OrloRatio(5, 4), lost})
        sound(ratio);
    const auto shift = [this](const QList<int>& steps) {
        transposeBy(steps);
        updatePage();
        EXPECT_EQ(cards(), 4);
        EXPECT_EQ(page.cardConnectors()->connectors().size(), page.cardStack()->cards().size());
    };
    shift({3});
    EXPECT_FALSE(cardOf("/-3")->isHidden()) << "1/1 is now a step of 3 below the centre";
    EXPECT_EQ(text(cardOf("/-3"), "ratioLabel"), QStringLiteral("2/3"));
    EXPECT_EQ(text(cardOf("/"), "freqLabel"), QStringLiteral("660.000 Hz"));
    shift({5, 5, 5});
    EXPECT_TRUE(page.cardStack()->cards().isEmpty());
    EXPECT_EQ(text(page.cardStackTwo()->getCardForRatio(OrloRatio(1, 1)), "freqLabel"),
              QStringLiteral("440.000 Hz"));
    shift({-5, -5, -5, -3});
    EXPECT_EQ(text(cardOf("/"), "ratioLabel"), QStringLiteral("1/1"));
    orlo.onBaseFrequencyChanged(220.0F);
    updatePage();
    EXPECT_EQ(text(cardOf("/3"), "freqLabel"), QStringLiteral("330.000 Hz"));
}

// ---------------------------------------------------------------- ends

TEST_F(CardStack, ANewSceneTakesItsCardsAndOpensThoseOfSoundingBalls)
{
    for (const OrloRatio& ratio : {OrloRatio(1, 1), OrloRatio(3, 2), OrloRatio(9, 8)})
        sound(ratio);
    page.orloView()->buildScene(OrloLeavesWidget::Circles);
    EXPECT_EQ(page.cardStack()->cards().size(), 3);
    EXPECT_EQ(page.cardConnectors()->connectors().size(), 3);
    for (const char* path : {"/", "/3", "/-2/3/3"}) {
        EXPECT_TRUE(cardOf(path)) << path;
        EXPECT_EQ(page.cardConnectors()->connectors().value(ball(path)), cardOf(path));
    }
    page.grab(); // paints the connectors
    sound(OrloRatio(3, 2), false);
    EXPECT_EQ(page.cardStack()->cards().size(), 2);
}

TEST_F(CardStack, ACardMayGoWhileItIsPressedOrWaitedFor)
{
    for (const OrloRatio& ratio : {OrloRatio(5, 4), OrloRatio(25, 16)}) {
        QPointer<CardWidget> card = cardFor(ratio.numerator(), ratio.denominator());
        const QPoint at = card->mapTo(&page, QPoint(20, 20));
        QCursor::setPos(page.mapToGlobal(at));
        QTest::mouseMove(page.windowHandle(), at);
        QTest::mousePress(page.windowHandle(), Qt::RightButton, Qt::NoModifier, at);
        EXPECT_EQ(drain().size(), 1) << "it was the card that was pressed";
        // An event on its way to the card, while its note ends and another takes its place.
        QCoreApplication::postEvent(card, new QEvent(QEvent::Leave));
        orlo.onNoteToggled(ratio, false);
        orlo.onNoteToggled(OrloRatio(3, 2), true);
        page.orloView()->buildScene(OrloLeavesWidget::Circles);
        report();
        QTest::mouseRelease(page.windowHandle(), Qt::RightButton, Qt::NoModifier, at);
        sound(OrloRatio(3, 2), false);
        sound(ratio, false); // the press has reached the player
        page.grab();
    }
    // A scene that goes while the pointer rests on a ball, and a page with notes sounding.
    sound(OrloRatio(1, 1));
    QCursor::setPos(page.orloView()->viewport()->mapToGlobal(ballCentre("/")));
    QTest::mouseMove(page.orloView()->viewport(), ballCentre("/"));
    page.orloView()->buildScene(OrloLeavesWidget::Grapes);
    QTest::mouseMove(page.orloView()->viewport(), ballCentre("/") + QPoint(1, 1));
    auto second = std::make_unique<OrloLayer>();
    second->init(OrloLeavesWidget::Circles, &orlo);
    second->show();
    report();
    EXPECT_EQ(second->cardStack()->cards().size(), 1) << "of a ball that sounds already";
    sound(OrloRatio(25, 16));
    second.reset();
    sound(OrloRatio(1, 1), false);
}

TEST_F(CardStack, AThousandChordsLeaveNothingBehind)
{
    const QList<OrloBallWidget*> balls = page.orloView()->orloWidget()->balls();
    const auto play = [&](qsizetype count, bool on) {
        for (qsizetype i = 0; i < count; ++i) {
            orlo.onNoteToggled(OrloRatio(balls[i]->ball()->path()), on);
            orlo.onNoteToggled(OrloRatio(1000 + static_cast<unsigned>(i), 997), on);
        }
        if (!on) {
            emit orlo.resetNodeStack();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    };
    const auto objects = [this] { return page.findChildren<QObject*>().size(); };
    play(30, true);
    play(30, false);
    const qsizetype before = objects();
    for (int i = 0; i < 1000; ++i) {
        play(30, true);
        if (i % 100 == 0)
            updatePage();
        play(30, false);
    }
    EXPECT_EQ(objects(), before);
    EXPECT_EQ(cards(), 0);
    EXPECT_TRUE(page.cardConnectors()->connectors().isEmpty());

    // Of a larger chord not all cards are kept.
    play(balls.size(), true);
    play(balls.size(), false);
    EXPECT_EQ(page.cardStack()->findChildren<CardWidget*>().size(), SpareCards::LIMIT);
}

} // namespace
