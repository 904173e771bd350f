#include "support/LogCatcher.h"
#include "ui/CardConnectorOverlay.h"
#include "ui/CardFixture.h"
#include "ui/NodeStackWidget.h"
#include "ui/OrloBallWidget.h"
#include "ui/OrloWidget.h"

#include <QGraphicsSceneHoverEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QTest>
#include <QWindow>

#include <cmath>
#include <memory>

namespace {

class CardStack : public CardFixture
{
protected:
    const OrloBallWidget* ball(const char* path) const { return scene::ballAt(*page.orloView(), path); }
    QPoint ballCentre(const char* path) const { return scene::centreOf(*page.orloView(), path); }

    /// A card in the order of its stack's children: the last lies on top.
    static bool liesOver(const QWidget* upper, const QWidget* lower)
    {
        const QObjectList& children = upper->parentWidget()->children();
        return children.indexOf(upper) > children.indexOf(lower);
    }
    static void enter(CardWidget* card)
    {
        QEnterEvent event(QPointF(5, 5), QPointF(5, 5), card->mapToGlobal(QPointF(5, 5)));
        QCoreApplication::sendEvent(card, &event);
    }
    static void hover(const OrloBallWidget* ball)
    {
        QGraphicsSceneHoverEvent event(QEvent::GraphicsSceneHoverEnter);
        const_cast<OrloBallWidget*>(ball)->scene()->sendEvent(const_cast<OrloBallWidget*>(ball), &event);
    }
    /// How many notes' cards there are, spare ones included.
    static qsizetype built(const QWidget* stack) { return stack->findChildren<CardWidget*>().size(); }

    /// Where the second stack has a pitch: by the lattice's height and the logarithm to base 9.
    int heightOf(double relative, int cardHeight) const
    {
        const OrloView* view = page.orloView();
        const int h = static_cast<int>(view->viewportTransform().mapRect(view->sceneRect()).height());
        const double centre =
            view->mapFromScene(view->sceneRect().center()).y() + h * 5.5 / view->sceneRect().height();
        const int y = static_cast<int>(centre + std::round(std::log(relative) / 2.1972246 * -h * 0.5)) - cardHeight / 2;
        return qBound(0, y, page.cardStackTwo()->height() - cardHeight);
    }
};

TEST_F(CardStack, ASoundingBallHasACardOnBothPagesLevelWithIt)
{
    OrloLayer other;
    other.init(OrloLeavesWidget::Circles, &orlo);
    for (const char* path : {"/3", "/-2/5"}) {
        scene::click(*page.orloView(), ballCentre(path));
        EXPECT_EQ(page.cardStack()->cards().size(), 0) << "a press changes nothing by itself";
        drain();
        report();
        CardWidget* card = cardOf(path);
        ASSERT_TRUE(card) << path;
        EXPECT_TRUE(card->isVisible());
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

        scene::click(*page.orloView(), ballCentre(path));
        drain();
        report();
        EXPECT_FALSE(cardOf(path));
        EXPECT_TRUE(page.cardConnectors()->connectors().isEmpty());
        EXPECT_TRUE(other.cardStack()->cards().isEmpty());
    }
}

TEST_F(CardStack, ASwitchedOffBallHasNoCardUntilItIsOnAgain)
{
    sound(OrloRatio(7, 4));
    ASSERT_TRUE(cardOf("/7"));
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
        Qt::MouseButton button;
        Qt::KeyboardModifiers modifiers;
        int type; // -1: no command
    } rows[] = {
        {Qt::RightButton, Qt::NoModifier, 34},
        {Qt::RightButton, Qt::ShiftModifier | Qt::AltModifier, 34},
        {Qt::LeftButton, Qt::ControlModifier, 34},
        {Qt::LeftButton, Qt::ShiftModifier, 36},
        {Qt::LeftButton, Qt::NoModifier, -1},
        {Qt::LeftButton, Qt::AltModifier, -1},
        {Qt::LeftButton, Qt::ControlModifier | Qt::ShiftModifier, -1},
        {Qt::LeftButton, Qt::MetaModifier, -1},
        {Qt::MiddleButton, Qt::NoModifier, -1},
    };
    for (const OrloRatio& absolute : {OrloRatio(9, 8), OrloRatio(25, 16)}) {
        OrloRatio relative(absolute);
        relative *= OrloRatio(2, 3);
        const auto card = [&] { return cardFor(absolute.numerator(), absolute.denominator()); };
        EXPECT_EQ(card()->isAtStackTwo(), absolute == OrloRatio(25, 16));
        EXPECT_EQ(card()->relativeRatio(), relative);
        for (const auto& row : rows) {
            SCOPED_TRACE(static_cast<int>(row.button) * 1000 + row.modifiers.toInt());
            // On a text, so that the card's parts are seen to let the press through.
            card()->raise();
            QTest::mouseClick(page.windowHandle(), row.button, row.modifiers,
                              label(card(), "noteLabel")->mapTo(&page, QPoint(4, 8)));
            const QList<PdMessageBuffer::Chunk> commands = drain();
            report();
            ASSERT_EQ(commands.size(), row.type < 0 ? 0 : 1);
            if (row.type < 0)
                continue;
            EXPECT_EQ(commands[0].type, row.type);
            EXPECT_EQ(commands[0].ratio.ratio(), (row.type == 34 ? absolute : relative).ratio());
            orlo.onTransposed(OrloRatio(3, 2), Orlo::FREE_TRANSPOSITION); // wherever the player is now
            updatePage();
        }
        QMouseEvent twice(QEvent::MouseButtonDblClick, QPointF(5, 5), card()->mapToGlobal(QPointF(5, 5)),
                          Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(card(), &twice);
        const QList<PdMessageBuffer::Chunk> commands = drain();
        ASSERT_EQ(commands.size(), 1);
        EXPECT_EQ(commands[0].type, 34);
        EXPECT_EQ(commands[0].ratio.ratio(), absolute.ratio());
        report();
    }
}

TEST_F(CardStack, ThePointerRaisesCards)
{
    // The leaves of one ball: their cards overlap.
    CardWidget* five = cardFor(5, 4);
    CardWidget* seven = cardFor(7, 4);
    CardWidget* one = cardFor(1, 1);
    EXPECT_TRUE(liesOver(one, seven));
    enter(five);
    EXPECT_TRUE(liesOver(five, one));

    seven->setCardHirarchy(4);
    seven->decreaseCardHirarchy();
    EXPECT_EQ(seven->cardHirarchy(), 5);
    hover(ball("/7"));
    EXPECT_TRUE(liesOver(seven, five));
    EXPECT_EQ(seven->cardHirarchy(), 0);

    // A ball of the tree waits, and gives up when the pointer has gone on.
    QCursor::setPos(page.mapToGlobal(QPoint(1, 1)));
    QElapsedTimer waited;
    waited.start();
    hover(ball("/"));
    EXPECT_GE(waited.elapsed(), 95);
    EXPECT_TRUE(liesOver(seven, one));
    QCursor::setPos(page.orloView()->viewport()->mapToGlobal(ballCentre("/")));
    hover(ball("/"));
    EXPECT_TRUE(liesOver(one, seven));

    // Back from a leaf to its ball.
    enter(five);
    QGraphicsSceneHoverEvent leave(QEvent::GraphicsSceneHoverLeave);
    page.orloView()->scene()->sendEvent(const_cast<OrloBallWidget*>(ball("/5")), &leave);
    EXPECT_TRUE(liesOver(one, five));

    CardWidget* free = cardFor(25, 16);
    CardWidget* other = cardFor(25, 17);
    EXPECT_TRUE(liesOver(other, free));
    page.cardStackTwo()->raiseCardForRatio(OrloRatio(25, 16));
    EXPECT_TRUE(liesOver(free, other));

    waited.restart();
    sound(OrloRatio(1, 1), false);
    hover(ball("/"));
    EXPECT_LT(waited.elapsed(), 90) << "a silent ball does not hold the thread up";
}

TEST_F(CardStack, PitchesWithoutABallStandByTheirHeight)
{
    CardStackTwoWidget* stack = page.cardStackTwo();
    for (const auto& [n, d] : {std::pair(25ULL, 16ULL), std::pair(25ULL, 18ULL), std::pair(625ULL, 256ULL),
                               std::pair(16ULL, 125ULL), std::pair(9ULL * 25, 25ULL * 16)}) {
        const CardWidget* card = stack->showCardForRatio(OrloRatio(n, d));
        EXPECT_EQ(card->pos(), QPoint(0, heightOf(static_cast<double>(n) / static_cast<double>(d), card->height())));
        EXPECT_EQ(stack->showCardForRatio(OrloRatio(n, d)), card) << "one card for a ratio";
        EXPECT_EQ(stack->getCardForRatio(OrloRatio(n, d)), card);
        EXPECT_EQ(card->objectName(), QStringLiteral("CardAtStack2"));
    }
    // The transposition is the middle of the scale.
    const CardWidget* card = stack->getCardForRatio(OrloRatio(25, 16));
    transposeBy({5});
    updatePage();
    EXPECT_FALSE(stack->getCardForRatio(OrloRatio(25, 16)) && orlo.playingRatios().contains(OrloRatio(25, 16)));
    EXPECT_EQ(card->y(), heightOf(5.0 / 4, card->height()));

    // Far pitches end at the edges, after a resize too.
    const CardWidget* high = stack->showCardForRatio(OrloRatio(1000, 1));
    const CardWidget* low = stack->showCardForRatio(OrloRatio(1, 1000));
    for (const QSize& size : {QSize(1200, 800), QSize(1000, 560), QSize(1300, 900)}) {
        page.resize(size);
        report();
        EXPECT_EQ(high->y(), 0);
        EXPECT_EQ(low->y(), stack->height() - low->height());
        EXPECT_EQ(card->y(), heightOf(5.0 / 4, card->height()));
    }
    const int hierarchy = 7;
    EXPECT_EQ(stack->showCardForRatio(OrloRatio(1000, 1), hierarchy)->cardHirarchy(), hierarchy);
    stack->hideCardForRatio(OrloRatio(1000, 1));
    stack->hideCardForRatio(OrloRatio(1000, 1));
    EXPECT_FALSE(stack->getCardForRatio(OrloRatio(1000, 1)));
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
    sound(nothing, false);
    EXPECT_FALSE(page.cardStackTwo()->getCardForRatio(nothing));
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
    } rows[] = {{1, true, false, false}, {2, false, false, false}, {2, true, true, false}, {4, false, true, false},
                {5, false, true, false}, {5, true, true, true},    {3, false, false, false}, {3, true, true, true},
                {6, false, true, true}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.policy * 10 + (row.final ? 1 : 0));
        view->setTestingVariables(row.policy); // back to the fit, and everything to its place
        const int before[] = {first->y(), second->y()};
        view->scale(1.5, 1.5);
        view->centerOn(view->sceneRect().center() - QPointF(0, 60));
        EXPECT_EQ(first->y(), before[0]);
        view->updateStacksWhenZoom(row.final);
        EXPECT_EQ(first->y() != before[0], row.firstMoves);
        EXPECT_EQ(second->y() != before[1], row.secondMoves);
        if (row.firstMoves) {
            EXPECT_EQ(first->y(), ballCentre("/").y() - first->height() / 2);
        }
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
    page.cardStack()->setBottomSpace(40);
    page.cardStack()->updatePositions();
    EXPECT_EQ(card->y(), view->height() - 40 - card->height());

    // With the stacks out of sight there is nothing to tie the balls to.
    EXPECT_EQ(page.cardConnectors()->linesOf(ball("/")).size(), 2);
    page.showStacks(false);
    EXPECT_TRUE(page.cardConnectors()->linesOf(ball("/")).isEmpty());
    page.showStacks(true);
    EXPECT_EQ(page.cardConnectors()->linesOf(ball("/")).size(), 2);
}

TEST_F(CardStack, ATranspositionTakesTheCardsAlongAndBack)
{
    const OrloRatio lost(7, 32); // a leaf far below: two fifths up it has no ball
    for (const OrloRatio& ratio : {OrloRatio(1, 1), OrloRatio(3, 2), OrloRatio(5, 4), lost})
        sound(ratio);
    EXPECT_EQ(page.cardStack()->cards().size() + page.cardStackTwo()->cards().size(), 4);
    const QString before = text(cardFor(1, 1), "ratioLabel");
    transposeBy({3});
    updatePage();
    EXPECT_EQ(page.cardStack()->cards().size() + page.cardStackTwo()->cards().size(), 4);
    EXPECT_FALSE(cardOf("/-3")->isHidden()) << "1/1 is now a step of 3 below the centre";
    EXPECT_EQ(text(cardOf("/-3"), "ratioLabel"), QStringLiteral("2/3"));
    EXPECT_EQ(text(cardOf("/"), "freqLabel"), QStringLiteral("660.000 Hz"));
    for (const CardWidget* card : page.cardStack()->cards())
        EXPECT_TRUE(page.cardConnectors()->connectors().values().contains(card));

    transposeBy({5, 5, 5});
    updatePage();
    EXPECT_TRUE(page.cardStack()->cards().isEmpty());
    EXPECT_EQ(page.cardStackTwo()->cards().size(), 4);
    EXPECT_TRUE(page.cardConnectors()->connectors().isEmpty());
    EXPECT_EQ(text(page.cardStackTwo()->getCardForRatio(OrloRatio(1, 1)), "freqLabel"), QStringLiteral("440.000 Hz"));

    transposeBy({-5, -5, -5, -3});
    updatePage();
    EXPECT_EQ(page.cardStack()->cards().size() + page.cardStackTwo()->cards().size(), 4);
    EXPECT_EQ(text(cardOf("/"), "ratioLabel"), before);
    orlo.onBaseFrequencyChanged(220.0F);
    updatePage();
    EXPECT_EQ(text(cardOf("/3"), "freqLabel"), QStringLiteral("330.000 Hz"));
}

TEST_F(CardStack, OptionsFillTheCardsAnewAndKeepTheirOrder)
{
    CardWidget* cards[] = {cardFor(5, 4), cardFor(7, 4), cardFor(1, 1)};
    page.cardStack()->raiseCardForBall(ball("/7"));
    cards[0]->setCardHirarchy(3);
    transposeBy({11});
    settings.absRelView = 1;
    updatePage();
    transposeBy({-11});
    updatePage();
    for (const auto& [path, ratio] : {std::pair("/5", "5/4"), std::pair("/7", "7/4"), std::pair("/", "1/1")})
        EXPECT_EQ(text(cardOf(path), "ratioLabel"), QLatin1StringView(ratio));
    page.cardStack()->raiseCardForBall(ball("/7"));
    settings.soundGrapeNotation = 1;
    updatePage();
    EXPECT_TRUE(liesOver(cardOf("/7"), cardOf("/5")));
    EXPECT_TRUE(liesOver(cardOf("/7"), cardOf("/")));
    EXPECT_GT(graphics(cardOf("/7")).size(), 2);
}

// ---------------------------------------------------------------- ends

TEST_F(CardStack, ANewSceneTakesItsCardsAndOpensThoseOfSoundingBalls)
{
    for (const OrloRatio& ratio : {OrloRatio(1, 1), OrloRatio(3, 2), OrloRatio(9, 8)})
        sound(ratio);
    page.orloView()->buildScene(OrloLeavesWidget::Circles);
    EXPECT_EQ(page.cardStack()->cards().size(), 3);
    EXPECT_EQ(page.cardConnectors()->connectors().size(), 3);
    for (const OrloBallWidget* each : page.cardStack()->cards().keys()) {
        EXPECT_TRUE(page.orloView()->orloWidget()->balls().contains(const_cast<OrloBallWidget*>(each)));
        EXPECT_EQ(page.cardConnectors()->connectors().value(each), page.cardStack()->cardForBall(each));
    }
    page.grab(); // paints the connectors
    sound(OrloRatio(3, 2), false);
    EXPECT_EQ(page.cardStack()->cards().size(), 2);
}

TEST_F(CardStack, ACardMayGoWhileItIsPressedOrWaitedFor)
{
    for (const auto& [n, d] : {std::pair(5ULL, 4ULL), std::pair(25ULL, 16ULL)}) {
        QPointer<CardWidget> card = cardFor(n, d);
        const QPoint at = card->mapTo(&page, QPoint(20, 20));
        QCursor::setPos(page.mapToGlobal(at));
        QTest::mouseMove(page.windowHandle(), at);
        QTest::mousePress(page.windowHandle(), Qt::RightButton, Qt::NoModifier, at);
        EXPECT_EQ(drain().size(), 1) << "it was the card that was pressed";
        // Events on their way to the card, while its note ends and another takes its place.
        QCoreApplication::postEvent(card, new QEvent(QEvent::Leave));
        QCoreApplication::postEvent(card, new QMouseEvent(QEvent::MouseButtonRelease, QPointF(20, 20), QPointF(20, 20),
                                                          Qt::RightButton, Qt::NoButton, Qt::NoModifier));
        orlo.onNoteToggled(OrloRatio(n, d), false);
        orlo.onNoteToggled(OrloRatio(3, 2), true);
        page.orloView()->buildScene(OrloLeavesWidget::Circles);
        report();
        QTest::mouseRelease(page.windowHandle(), Qt::RightButton, Qt::NoModifier, at);
        orlo.onNoteToggled(OrloRatio(3, 2), false);
        drain();
        report();
        sound(OrloRatio(n, d), false); // the press has reached the player
        page.grab();
    }
    // A scene that goes while a pointer rests on a ball, and the page with notes sounding.
    sound(OrloRatio(1, 1));
    QCursor::setPos(page.orloView()->viewport()->mapToGlobal(ballCentre("/")));
    QTest::mouseMove(page.orloView()->viewport(), ballCentre("/"));
    page.orloView()->buildScene(OrloLeavesWidget::Grapes);
    QTest::mouseMove(page.orloView()->viewport(), ballCentre("/") + QPoint(1, 1));
    report();
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
    QList<OrloRatio> chord;
    for (const OrloBallWidget* each : page.orloView()->orloWidget()->balls().first(30))
        chord.append(OrloRatio(each->ball()->path()));
    for (unsigned i = 0; i < 30; ++i)
        chord.append(OrloRatio(1000 + i, 997));
    const auto play = [&](bool on) {
        for (const OrloRatio& ratio : std::as_const(chord))
            orlo.onNoteToggled(ratio, on);
    };
    const auto objects = [this] { return page.findChildren<QObject*>().size(); };
    play(true);
    play(false);
    report();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    const qsizetype before = objects();
    for (int i = 0; i < 1000; ++i) {
        play(true);
        if (i % 100 == 0)
            updatePage();
        play(false);
        if (i % 100 == 0)
            report();
    }
    report();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(objects(), before);
    EXPECT_TRUE(page.cardStack()->cards().isEmpty());
    EXPECT_TRUE(page.cardStackTwo()->cards().isEmpty());
    EXPECT_TRUE(page.cardConnectors()->connectors().isEmpty());

    // Of a larger chord not all cards are kept.
    for (const OrloBallWidget* each : page.orloView()->orloWidget()->balls())
        orlo.onNoteToggled(OrloRatio(each->ball()->path()), true);
    for (const OrloBallWidget* each : page.orloView()->orloWidget()->balls())
        orlo.onNoteToggled(OrloRatio(each->ball()->path()), false);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(built(page.cardStack()), SpareCards::LIMIT);
}

} // namespace
