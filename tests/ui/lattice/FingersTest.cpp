// Fingers on a touch screen, on the balls of the lattice and of the node stack.

#include "ui/PageFixture.h"

#include <QTouchEvent>

namespace {

class Fingers : public MeasuredPage
{
protected:
    Fingers()
    {
        static QPointingDevice* const screen = QTest::createTouchDevice(); // which Qt never lets go
        device = screen;
    }

    QTest::QTouchEventWidgetSequence touch() { return QTest::touchEvent(view, device); }
    QPoint at(const char* path) const
    {
        return view->viewport()->mapTo(static_cast<QWidget*>(view), scene::centreOf(*view, path));
    }
    /// Where fingers are that are down.
    using Others = QList<std::pair<int, QPoint>>;
    /// A finger comes down while others lie still, and goes up again.
    std::string tap(int finger, QPoint point, const Others& others = {})
    {
        const auto withOthers = [&](QTest::QTouchEventWidgetSequence&& event) {
            for (const auto& [other, place] : others)
                event.move(other, place);
        };
        withOthers(std::move(touch().press(finger, point)));
        withOthers(std::move(touch().release(finger, point)));
        report();
        return said();
    }

    QPointingDevice* device;
    const QPoint ground{5, 5};
};

TEST_F(Fingers, EachPressesABallOfItsOwn)
{
    const QPoint first = at("/3");
    const QPoint second = at("/2");
    touch().press(0, first);
    EXPECT_EQ(said(), "0 1 /3");
    touch().move(0, first).press(1, second);
    EXPECT_EQ(said(), "0 1 /2");
    const Others others{{0, first}, {1, second}};
    EXPECT_EQ(tap(2, second, others), "") << "which the second finger holds";
    EXPECT_EQ(tap(3, at("/-3"), others), "0 1 /-3");
    EXPECT_EQ(tap(4, ground, others), "");
    // One slides off its ball over another, one leaves.
    touch().move(0, at("/-3")).release(1, at("/2"));
    touch().release(0, at("/-3"));
    report();
    EXPECT_EQ(said(), "");

    touch().press(5, at("/3")).press(6, at("/-3"));
    EXPECT_EQ(said(), "0 1 /3; 0 1 /-3") << "at once";
    touch().release(5, at("/3")).release(6, at("/-3"));
    view->setTestingVariables(0); // zoom off, so that Qt makes a mouse of the first one
    touch().press(7, at("/3")).press(8, at("/-3"));
    EXPECT_EQ(said(), "0 1 /3; 0 1 /-3");
    touch().release(7, at("/3")).release(8, at("/-3"));
    EXPECT_EQ(said(), "");
}

TEST_F(Fingers, NothingSticksWhenTheyGoInAnyOrderOrAreCancelled)
{
    // Which of two fingers goes first; the next one alone is a mouse again, on another ball.
    int finger = 0;
    const QPoint ball = at("/2");
    for (const bool firstGoesFirst : {true, false}) {
        for (const QPoint begin : {at("/3"), ground}) {
            const int first = finger++;
            const int second = finger++;
            touch().press(first, begin);
            touch().move(first, begin).press(second, ball);
            if (firstGoesFirst) {
                touch().release(first, begin).move(second, ball);
                touch().release(second, ball);
            } else {
                touch().move(first, begin).release(second, ball);
                touch().release(first, begin);
            }
            said();
            EXPECT_EQ(view->scene()->mouseGrabberItem(), nullptr);
            EXPECT_EQ(view->viewport()->cursor().shape(), Qt::ArrowCursor) << "no drag";
            EXPECT_EQ(tap(finger++, at("/-3")), "0 1 /-3");
        }
    }
    touch().press(40, ground);
    for (int again = 0; again < 3; ++again)
        EXPECT_EQ(tap(41 + again, ball, {{40, ground}}), "0 1 /2");
    touch().release(40, ground);
    touch().press(50, at("/3"));
    QTouchEvent cancel(QEvent::TouchCancel, device);
    QCoreApplication::sendEvent(view->viewport(), &cancel);
    EXPECT_EQ(view->scene()->mouseGrabberItem(), nullptr);
    touch().release(50, at("/3"));
    said();
    EXPECT_EQ(tap(51, at("/2")), "0 1 /2");
}

TEST_F(Fingers, OneOnAnotherControlLeavesTheOthersTheirBalls)
{
    const OrloRatio small(25, 16);
    add({small});
    stack->showNodes();
    stack->move(700, 0); // onto the screen
    const QPoint free = stack->viewport()->mapTo(static_cast<QWidget*>(stack), pointOf(small));
    touch().press(0, free, stack);
    EXPECT_EQ(said(), "34 2 25/16");
    touch().move(0, free, stack).press(1, at("/3"));
    report();
    EXPECT_EQ(said(), "0 1 /3") << "no mouse comes for this one";
    touch().move(0, free, stack).move(1, at("/3")).press(2, at("/2"));
    EXPECT_EQ(said(), "0 1 /2");
    touch().move(0, free, stack).release(1, at("/3")).release(2, at("/2"));
    touch().release(0, free, stack);
    report();
    EXPECT_EQ(said(), "");
}

TEST_F(Fingers, KeysThatAreHeldChooseTheCommandOfEach)
{
    struct Keys : QObject
    {
        bool eventFilter(QObject*, QEvent* event) override
        {
            if (event->type() == QEvent::TouchUpdate)
                static_cast<QTouchEvent*>(event)->setModifiers(Qt::AltModifier);
            return false;
        }
    } keys;
    view->viewport()->installEventFilter(&keys);
    touch().press(0, ground);
    EXPECT_EQ(tap(1, at("/3"), {{0, ground}}), "37 1 3/2");
    touch().release(0, ground);
}

TEST_F(Fingers, TwoOnBallsZoomOnlyWhenTheyClearlyMove)
{
    const double fit = view->fitScale();
    const QPoint left = at("/-3");
    const QPoint right = at("/3");
    const double apart = QLineF(left, right).length();
    const auto moveApart = [&](int pixels) {
        const QPoint way(right.x() < left.x() ? -pixels : pixels, 0);
        touch().move(0, left).move(1, right + way);
        touch().release(0, left).release(1, right + way);
        return QLineF(left, right + way).length() / apart;
    };
    view->setTestingVariables(-1); // every update is a step
    touch().press(0, left).press(1, right);
    moveApart(8);
    EXPECT_DOUBLE_EQ(view->transform().m11(), fit);
    touch().press(0, left).press(1, right);
    const double times = moveApart(200);
    EXPECT_NEAR(view->transform().m11(), times * fit, 1e-9);
}

} // namespace
