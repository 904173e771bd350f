#include "ui/PageFixture.h"
#include "ui/stacks/CardConnectorOverlay.h"

#include <QGraphicsSceneHoverEvent>
#include <QPointer>

#include <algorithm>
#include <memory>

namespace {

class CardStack : public PageFixture
{
protected:
    OrloBallWidget* ball(const char* path) const { return scene::ballAt(*view, path); }
    QPoint ballCentre(const char* path) const { return scene::centreOf(*view, path); }
    /// How many pitches have a card.
    qsizetype cardCount() const { return page.cardStack()->cards().size() + cards->cards().size(); }

    /// A card in the order of its stack's children: the last lies on top.
    static bool liesOver(const QWidget* upper, const QWidget* lower)
    {
        const QObjectList& children = upper->parentWidget()->children();
        return children.indexOf(upper) > children.indexOf(lower);
    }
    static int darkPixels(const QPixmap& picture)
    {
        const QImage image = picture.toImage().convertToFormat(QImage::Format_Grayscale8);
        int dark = 0;
        for (int y = 0; y < image.height(); ++y)
            dark += static_cast<int>(std::count_if(image.scanLine(y), image.scanLine(y) + image.width(),
                                                   [](uchar gray) { return gray < 96; }));
        return dark;
    }
    void hover(const char* path, QEvent::Type type = QEvent::GraphicsSceneHoverEnter) const
    {
        QGraphicsSceneHoverEvent event(type);
        view->scene()->sendEvent(ball(path), &event);
    }
};

TEST_F(CardStack, ASoundingBallHasACardOnBothPagesLevelWithIt)
{
    OrloLayer other;
    other.init(OrloLeavesWidget::Circles, &orlo);
    const std::pair<const char*, OrloRatio> rows[] = {{"/3", {3, 2}}, {"/-2/5", {5, 8}}};
    for (const auto& [path, ratio] : rows) {
        sound(ratio);
        const CardWidget* card = cardOf(path);
        ASSERT_TRUE(card && card->isVisible()) << path;
        EXPECT_EQ(card->pos(), QPoint(0, ballCentre(path).y() - card->height() / 2));
        EXPECT_EQ(other.cardStack()->cards().size(), 1);

        const QList<QLine> lines = page.cardConnectors()->linesOf(ball(path));
        ASSERT_EQ(lines.size(), 2);
        EXPECT_EQ(lines[0].y1(), view->viewport()->mapTo(&page, ballCentre(path)).y());
        EXPECT_EQ(lines[0].x2(), page.cardStack()->mapTo(&page, QPoint(0, 0)).x());
        const double width = (lines[0].x1() - lines[1].x2()) / view->currentScale();
        EXPECT_NEAR(width, 2 * ball(path)->playingRadius(), 2.0);

        sound(ratio, false);
        EXPECT_EQ(cardCount(), 0);
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
    // Whether twice, button, modifiers and command; 9/8 is 3/4 a fifth up.
    const std::tuple<bool, Qt::MouseButton, Qt::KeyboardModifiers, const char*> rows[] = {
        {false, Qt::RightButton, Qt::ShiftModifier, "34 1 9/8"},
        {false, Qt::LeftButton, Qt::ControlModifier, "34 1 9/8"},
        {false, Qt::LeftButton, Qt::ShiftModifier, "36 1 3/4"},
        {false, Qt::LeftButton, Qt::NoModifier, ""},
        {true, Qt::LeftButton, Qt::NoModifier, "34 1 9/8"},
        {false, Qt::LeftButton, Qt::ControlModifier | Qt::ShiftModifier, ""},
        {false, Qt::MiddleButton, Qt::NoModifier, ""},
    };
    for (const auto& [twice, button, modifiers, command] : rows) {
        CardWidget* card = cardFor({9, 8});
        card->raise();
        // On a text, so that the card's parts are seen to let the press through.
        const QPoint at = label(card, "noteLabel")->mapTo(&page, QPoint(4, 8));
        if (twice)
            QTest::mouseDClick(page.windowHandle(), button, modifiers, at);
        else
            QTest::mouseClick(page.windowHandle(), button, modifiers, at);
        EXPECT_EQ(said(), command) << button << ' ' << modifiers.toInt();
        report();
        orlo.onTransposed(OrloRatio(3, 2), Orlo::FREE_TRANSPOSITION); // wherever the player is now
        updatePage();
    }
}

TEST_F(CardStack, ThePointerRaisesCards)
{
    // The leaves of one ball: their cards overlap.
    CardWidget* five = cardFor({5, 4});
    CardWidget* seven = cardFor({7, 4});
    CardWidget* one = cardFor({1, 1});
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
    QCursor::setPos(view->viewport()->mapToGlobal(ballCentre("/")));
    hover("/");
    EXPECT_TRUE(liesOver(one, seven));

    // Back from a leaf to its ball.
    five->raise();
    hover("/5", QEvent::GraphicsSceneHoverLeave);
    EXPECT_TRUE(liesOver(one, five));
    sound(OrloRatio(5, 4), false);
    EXPECT_TRUE(liesOver(cardFor({3, 2}), one)) << "a card used again";

    sound(OrloRatio(1, 1), false);
    waited.restart();
    hover("/");
    EXPECT_LT(waited.elapsed(), 90) << "a silent ball does not hold the thread up";
}

TEST_F(CardStack, EachCardOfAChordShowsAtLeastALine)
{
    page.resize(1000, 620);
    CardWidget* chord[] = {cardFor({1, 1}), cardFor({5, 4}), cardFor({3, 2}), cardFor({7, 4})};
    for (const qsizetype front : {1, 0, 3, 2}) {
        SCOPED_TRACE(front);
        QEnterEvent enter(QPointF(5, 5), QPointF(5, 5), chord[front]->mapToGlobal(QPointF(5, 5)));
        QCoreApplication::sendEvent(chord[front], &enter);
        report();
        for (qsizetype i = 0; i < 4; ++i) {
            EXPECT_EQ(chord[i]->isShortened(), i != front) << i;
            if (i == front)
                continue;
            const CardWidget* nearer = chord[i + (i < front ? 1 : -1)];
            EXPECT_TRUE(liesOver(nearer, chord[i])) << i;
            // What is left of it holds print.
            const QRect left = (QRegion(chord[i]->geometry()) - nearer->geometry()).boundingRect();
            const QPoint origin = page.cardStack()->mapTo(&page, QPoint(0, 0));
            EXPECT_GT(darkPixels(page.grab(left.adjusted(16, 3, -8, -3).translated(origin))), 60) << i;
        }
    }
    page.resize(4000, 3600); // where they stand apart
    report();
    for (const CardWidget* card : chord) {
        ASSERT_TRUE(card);
        EXPECT_FALSE(card->isShortened());
    }
}

TEST_F(CardStack, PitchesWithoutABallStandLevelWithTheirSmallBall)
{
    const OrloRatio ratios[] = {{49, 32}, {25, 36}};
    for (const OrloRatio& ratio : ratios)
        sound(ratio);
    orlo.afterMemoryRecall();        // which places them
    for (const int step : {0, 17}) { // the transposition is the middle of the scale
        if (step != 0) {
            page.resize(1000, 630);
            transposeBy({step});
            updatePage();
        }
        for (const OrloRatio& ratio : ratios) {
            const CardWidget* card = cards->getCardForRatio(ratio);
            const FreeBallWidget* ball = stack->ballForRatio(ratio);
            EXPECT_TRUE(card->isVisible() && ball->isVisible()) << step;
            EXPECT_NEAR(card->y() + card->height() / 2.0, ball->y(), 1) << step;
        }
    }
    // Far pitches end at the edges.
    EXPECT_EQ(cardFor({1000, 1})->y(), 0);
    const CardWidget* low = cardFor({1, 1000});
    EXPECT_EQ(low->y(), cards->height() - low->height());
}

TEST_F(CardStack, ARatioWithoutAPitchShowsACardThatSaysSo)
{
    const OrloRatio nothing;
    sound(nothing);
    const CardWidget* card = cards->getCardForRatio(nothing);
    ASSERT_TRUE(card);
    EXPECT_EQ(text(card, "ratioLabel"), QStringLiteral("out of\nbounds"));
    for (const int notation : {1, 2}) {
        settings.absRelView = notation;
        transposeBy({3});
        updatePage(&Settings::soundGrapeNotation, notation);
    }
    // A product that wraps to a denominator of 0: two to the 40th and to the 24th.
    orlo.onTransposed(OrloRatio(1ULL << 24, 14348907), Orlo::FREE_TRANSPOSITION);
    sound(OrloRatio(1, 1ULL << 40));
    EXPECT_TRUE(cards->getCardForRatio(OrloRatio(1, 1ULL << 40)));
}

TEST_F(CardStack, TheStacksFollowTheViewByThePolicyAndStayWithinIt)
{
    const CardWidget* first = cardFor({1, 1});
    const CardWidget* second = cardFor({25, 16});
    // Policy, whether the gesture ends, and how many stacks of cards move.
    const std::tuple<int, bool, int> rows[] = {{2, false, 0}, {2, true, 1}, {3, false, 0}, {3, true, 2},
                                               {4, false, 1}, {4, true, 1}, {5, false, 1}, {5, true, 2},
                                               {6, false, 2}, {7, true, 0}};
    for (const auto& [policy, final, moving] : rows) {
        SCOPED_TRACE(policy);
        view->setTestingVariables(policy); // back to the fit, and everything to its place
        const int before[] = {first->y(), second->y()};
        view->scale(1.5, 1.5);
        view->centerOn(view->sceneRect().center() - QPointF(0, 60));
        view->updateStacksWhenZoom(final);
        EXPECT_EQ(first->y(), moving > 0 ? ballCentre("/").y() - first->height() / 2 : before[0]);
        EXPECT_EQ(second->y() != before[1], moving > 1);
    }
    view->setTestingVariables(3);
    view->scale(4.0, 4.0);
    view->centerOn(0, 0);
    scene::wheel(*view, {200, 200}, -30);
    EXPECT_EQ(first->y(), ballCentre("/").y() - first->height() / 2) << "after a scroll";
    for (const bool below : {false, true}) {
        view->centerOn(QPointF(0, below ? view->sceneRect().top() : view->sceneRect().bottom()));
        page.cardStack()->updatePositions();
        EXPECT_EQ(first->y(), below ? view->height() - first->height() : 0);
    }
    // With the stacks out of sight there is nothing to tie the balls to.
    page.showStacks(false);
    EXPECT_TRUE(page.cardConnectors()->linesOf(ball("/")).isEmpty());
}

TEST_F(CardStack, ATranspositionTakesTheCardsAlongAndBack)
{
    // The last is a leaf far below: two fifths up it has no ball.
    for (const OrloRatio& ratio : {OrloRatio(1, 1), OrloRatio(3, 2), OrloRatio(5, 4), OrloRatio(7, 32)})
        sound(ratio);
    const auto shift = [this](const QList<int>& steps) {
        transposeBy(steps);
        updatePage();
        EXPECT_EQ(cardCount(), 4);
    };
    shift({3});
    EXPECT_EQ(text(cardOf("/-3"), "ratioLabel"), QStringLiteral("2/3"));
    EXPECT_EQ(text(cardOf("/"), "freqLabel"), QStringLiteral("660.000 Hz"));
    shift({5, 5, 5});
    EXPECT_TRUE(page.cardStack()->cards().isEmpty());
    shift({-5, -5, -5, -3});
    EXPECT_EQ(text(cardOf("/"), "ratioLabel"), QStringLiteral("1/1"));
}

TEST_F(CardStack, ACardMayGoWhileItIsPressedOrWaitedFor)
{
    for (const OrloRatio& ratio : {OrloRatio(5, 4), OrloRatio(25, 16)}) {
        QPointer<CardWidget> card = cardFor(ratio);
        const QPoint at = card->mapTo(&page, QPoint(20, 20));
        QCursor::setPos(page.mapToGlobal(at));
        QTest::mouseMove(page.windowHandle(), at);
        QTest::mousePress(page.windowHandle(), Qt::RightButton, Qt::NoModifier, at);
        EXPECT_EQ(drain().size(), 1) << "it was the card that was pressed";
        // An event on its way to the card, while its note ends and another takes its place.
        QCoreApplication::postEvent(card, new QEvent(QEvent::Leave));
        orlo.onNoteToggled(ratio, false);
        orlo.onNoteToggled(OrloRatio(3, 2), true);
        view->buildScene(OrloLeavesWidget::Circles);
        report();
        QTest::mouseRelease(page.windowHandle(), Qt::RightButton, Qt::NoModifier, at);
        sound(OrloRatio(3, 2), false);
        sound(ratio, false); // the press has reached the player
        page.grab();
    }
    // A scene that goes while the pointer rests on a ball, and a page with notes sounding.
    sound(OrloRatio(1, 1));
    QTest::mouseMove(view->viewport(), ballCentre("/"));
    view->buildScene(OrloLeavesWidget::Grapes);
    QTest::mouseMove(view->viewport(), ballCentre("/") + QPoint(1, 1));
    EXPECT_TRUE(cardOf("/")) << "it sounds already";
    EXPECT_EQ(page.cardConnectors()->connectors().size(), 1);
    auto second = std::make_unique<OrloLayer>();
    second->init(OrloLeavesWidget::Circles, &orlo);
    second->show();
    for (const OrloRatio& ratio : {OrloRatio(25, 16), OrloRatio(35, 32)})
        sound(ratio);
    emit orlo.removeNodeInStack(OrloRatio(35, 32)); // deleted with the stack, before its time
    second.reset();
    sound(OrloRatio(1, 1), false);
}

TEST_F(CardStack, ManyChordsLeaveNothingBehind)
{
    const QList<OrloBallWidget*> balls = view->orloWidget()->balls();
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
    play(30, true);
    play(30, false);
    const qsizetype objects = page.findChildren<QObject*>().size();
    for (int i = 0; i < 10; ++i)
        play(30, i % 2 == 0);
    EXPECT_EQ(page.findChildren<QObject*>().size(), objects);
    EXPECT_TRUE(page.cardConnectors()->connectors().isEmpty());
    // Of a larger chord not all cards are kept.
    play(balls.size(), true);
    play(balls.size(), false);
    EXPECT_EQ(page.cardStack()->findChildren<CardWidget*>().size(), SpareCards::LIMIT);
}

TEST_F(CardStack, SpareCardsThatNobodyNeededAreGivenUp)
{
    SpareCards spare;
    const OrloBall* const first = view->orloWidget()->balls().first()->ball();
    const auto count = [&] { return page.cardStack()->findChildren<CardWidget*>().size(); };
    for (int i = 0; i < 30; ++i)
        spare.put(new CardWidget(first, page.cardStack()));
    spare.trim(); // all came since
    CardWidget* const sounding = spare.take();
    spare.put(spare.take());
    EXPECT_EQ(count(), 30);
    spare.trim(); // 28 were spare all the time
    EXPECT_EQ(spare.size(), SpareCards::KEPT);
    EXPECT_EQ(count(), SpareCards::KEPT + 1);
    spare.put(sounding);
}

} // namespace
