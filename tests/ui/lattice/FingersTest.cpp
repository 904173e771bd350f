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
    /// A finger comes down while these lie still, and goes up again.
    std::string tap(int finger, QPoint point, const QList<int>& still = {})
    {
        const auto others = [&](QTest::QTouchEventWidgetSequence&& event) {
            for (const int other : still)
                event.stationary(other);
        };
        others(std::move(touch().press(finger, point)));
        others(std::move(touch().release(finger, point)));
        report();
        return said();
    }

    QPointingDevice* device;
    const QPoint ground{5, 5};
};

TEST_F(Fingers, EachPressesABallOfItsOwn)
{
    touch().press(0, at("/3"));
    EXPECT_EQ(said(), "0 1 /3");
    touch().stationary(0).press(1, at("/2"));
    EXPECT_EQ(said(), "0 1 /2");
    EXPECT_EQ(tap(2, at("/2"), {0, 1}), "") << "which the second finger holds";
    EXPECT_EQ(tap(3, at("/-3"), {0, 1}), "0 1 /-3");
    EXPECT_EQ(tap(4, ground, {0, 1}), "");
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
    for (const bool firstGoesFirst : {true, false}) {
        for (const QPoint begin : {at("/3"), ground}) {
            const int first = finger++;
            const int second = finger++;
            const int goes = firstGoesFirst ? first : second;
            const int stays = firstGoesFirst ? second : first;
            touch().press(first, begin);
            touch().stationary(first).press(second, at("/2"));
            touch().release(goes, goes == first ? begin : at("/2")).stationary(stays);
            touch().release(stays, stays == first ? begin : at("/2"));
            said();
            EXPECT_EQ(view->scene()->mouseGrabberItem(), nullptr);
            EXPECT_EQ(view->viewport()->cursor().shape(), Qt::ArrowCursor) << "no drag";
            EXPECT_EQ(tap(finger++, at("/-3")), "0 1 /-3");
        }
    }
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
    EXPECT_EQ(tap(1, at("/3"), {}), "0 1 /3") << "no mouse comes for this one";
    touch().press(2, at("/3"));
    touch().stationary(2).press(3, at("/2"));
    report();
    EXPECT_EQ(said(), "0 1 /3; 0 1 /2");
    touch().release(2, at("/3")).release(3, at("/2"));
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
    EXPECT_EQ(tap(1, at("/3"), {0}), "37 1 3/2");
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
