#include "ui/UiFixture.h"
#include "ui/lattice/LatticeZoom.h"

#include <QNativeGestureEvent>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>

#include <limits>

namespace {

/// One for all tests: Qt never lets a device go.
QPointingDevice* touchScreen()
{
    static QPointingDevice* const screen = QTest::createTouchDevice();
    return screen;
}

TEST(LatticeZoomTest, APinchIsDrawnAtEveryFifthUpdateAndAtItsEnd)
{
    LatticeZoom zoom;
    zoom.followFit(2.0);
    // How far the fingers moved apart, whether one is released; whether a step is due, and the scales then.
    const std::tuple<double, bool, bool, double, double> rows[] = {
        {1.0, false, false, 2.0, 2.0}, {1.1, false, false, 2.2, 2.0}, {1.2, false, false, 2.4, 2.0},
        {1.3, false, false, 2.6, 2.0}, {1.4, false, true, 2.8, 2.0},  {1.5, false, false, 3.0, 2.0},
        {1.6, true, true, 3.2, 3.2},   {1.5, true, true, 4.8, 4.8},   {0.25, false, false, 1.2, 4.8},
        {0.25, true, true, 2.0, 2.0}, // back to the fit
    };
    for (const auto& [spread, released, due, current, total] : rows) {
        EXPECT_EQ(zoom.pinch(spread, released), due) << spread;
        EXPECT_DOUBLE_EQ(zoom.current(), current);
        EXPECT_DOUBLE_EQ(zoom.total(), total);
        EXPECT_EQ(zoom.isDrawable(), current >= 2.0);
    }
}

class ViewZoom : public UiFixture
{
protected:
    ViewZoom()
        : device(touchScreen())
    {
        view.init(OrloLeavesWidget::Circles, &orlo);
        view.resize(800, 600);
        view.show();
        centre = view.viewport()->rect().center();
    }

    double shown() const { return view.transform().m11(); }
    QPoint left(int distance) const { return centre - QPoint(distance / 2, 0); }
    QPoint right(int distance) const { return centre + QPoint(distance / 2, 0); }

    void begin(int distance)
    {
        QTest::touchEvent(&view, device).press(0, left(distance), &view).press(1, right(distance), &view);
    }
    void move(int distance)
    {
        QTest::touchEvent(&view, device).move(0, left(distance), &view).move(1, right(distance), &view);
    }
    void end(int distance)
    {
        QTest::touchEvent(&view, device).release(0, left(distance), &view).release(1, right(distance), &view);
    }
    void pinch(int from, int to)
    {
        begin(from);
        move(to);
        end(to);
    }

    void wheel(QPointF at, QPoint turn, Qt::KeyboardModifiers keys = Qt::NoModifier)
    {
        QWheelEvent event(at, view.viewport()->mapToGlobal(at), {}, turn, Qt::NoButton, keys,
                          Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(view.viewport(), &event);
    }
    void pinchOnTrackpad(QPointF at, double value)
    {
        QNativeGestureEvent event(Qt::ZoomNativeGesture, device, 2, at, at, view.viewport()->mapToGlobal(at),
                                  value, {});
        QCoreApplication::sendEvent(view.viewport(), &event);
    }

    OrloView view;
    QPointingDevice* device;
    QPoint centre;
};

TEST_F(ViewZoom, TheSceneFitsIntoTheViewAndTheZoomSurvivesAResize)
{
    const QRectF whole = view.scene()->sceneRect();
    const double fit = qMin(800 / whole.width(), 600 / whole.height());
    EXPECT_DOUBLE_EQ(view.fitScale(), fit);
    EXPECT_DOUBLE_EQ(shown(), fit);
    EXPECT_DOUBLE_EQ(view.transform().m22(), fit);
    begin(100);
    move(150);
    EXPECT_DOUBLE_EQ(shown(), fit) << "no step yet";
    end(200);
    EXPECT_DOUBLE_EQ(shown(), 2 * fit);

    const QSignalSpy resized(&view, &OrloView::resized);
    view.resize(400, 600);
    EXPECT_EQ(resized.count(), 1);
    EXPECT_DOUBLE_EQ(view.fitScale(), 400 / whole.width());
    EXPECT_NEAR(shown(), 2 * view.fitScale(), 1e-9);
    EXPECT_NEAR(view.totalScale(), 2 * view.fitScale(), 1e-9);

    // Squeezed to nothing and opened again.
    view.resize(500, 0);
    view.resize(800, 600);
    EXPECT_NEAR(shown(), 2 * fit, 1e-9);
}

TEST_F(ViewZoom, OnlyTwoFingersThatMoveApartZoom)
{
    const double fit = view.fitScale();
    pinch(0, 200); // from one spot, whose distance says nothing
    EXPECT_DOUBLE_EQ(shown(), fit);
    QTest::touchEvent(&view, device).press(0, left(100)).press(1, right(100)).press(2, centre);
    QTest::touchEvent(&view, device).release(0, left(400)).release(1, right(400)).release(2, centre);
    EXPECT_DOUBLE_EQ(shown(), fit);
    EXPECT_TRUE(drain().isEmpty());

    const QPoint ball = view.viewport()->mapTo(&view, scene::centreOf(view, "/3"));
    QTest::touchEvent(&view, device).press(0, ball, &view);
    QTest::touchEvent(&view, device).release(0, ball, &view);
    EXPECT_DOUBLE_EQ(shown(), fit);
    EXPECT_EQ(said(), "0 1 /3") << "one finger plays";

    // The second finger may come later.
    QTest::touchEvent(&view, device).press(0, left(100), &view);
    QTest::touchEvent(&view, device).stationary(0).press(1, right(100), &view);
    move(200);
    end(200);
    EXPECT_DOUBLE_EQ(shown(), 2 * fit);
}

TEST_F(ViewZoom, TheOptionSetsTouchThresholdAndPolicy)
{
    pinch(100, 200);
    view.setTestingVariables(0);
    const double fit = view.fitScale();
    EXPECT_DOUBLE_EQ(shown(), fit) << "back to the fit";
    pinch(100, 300);
    EXPECT_DOUBLE_EQ(shown(), fit) << "touch zoom is off";

    view.setTestingVariables(-1);
    begin(100);
    move(200);
    EXPECT_DOUBLE_EQ(shown(), 2 * fit) << "every update is a step";
    end(200);

    view.setTestingVariables(std::numeric_limits<int>::min());
    pinch(100, 200);
    EXPECT_DOUBLE_EQ(shown(), 2 * fit) << "the end of a gesture is a step with any threshold";
}

TEST_F(ViewZoom, ADragMovesTheCentreThatAResizeKeeps)
{
    pinch(100, 400);
    const QPointF before = view.mapToScene(centre);
    // From a spot between the balls.
    const QPoint from = view.mapFromScene(QPointF(25, 25));
    scene::mouse(view, QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
    scene::mouse(view, QEvent::MouseMove, from + QPoint(60, 30), Qt::NoButton, Qt::LeftButton);
    EXPECT_EQ(view.viewport()->cursor().shape(), Qt::ClosedHandCursor);
    scene::mouse(view, QEvent::MouseButtonRelease, from + QPoint(60, 30), Qt::LeftButton, Qt::NoButton);
    EXPECT_EQ(view.viewport()->cursor().shape(), Qt::ArrowCursor);
    EXPECT_TRUE(drain().isEmpty());

    const QPointF dragged = view.mapToScene(centre);
    EXPECT_NEAR(before.x() - dragged.x(), 60 / shown(), 1.5);
    EXPECT_NEAR(before.y() - dragged.y(), 30 / shown(), 1.5);
    view.resize(900, 600);
    const QPointF after = view.mapToScene(view.viewport()->rect().center());
    EXPECT_NEAR(after.x(), dragged.x(), 1.5);
    EXPECT_NEAR(after.y(), dragged.y(), 1.5);
}

TEST_F(ViewZoom, TheWheelZoomsWithCtrlAroundThePointerAndScrollsWithout)
{
    const double fit = view.fitScale();
    const QPoint pointer = view.mapFromScene(view.scene()->sceneRect().center()) + QPoint(80, -60);
    const QPointF kept = view.mapToScene(pointer);
    wheel(pointer, {0, 480}, Qt::ControlModifier);
    EXPECT_NEAR(shown(), 2 * fit, 1e-9);
    wheel(pointer, {0, 960}, Qt::ControlModifier);
    // To whole pixels each time, of which the first are four of the last.
    EXPECT_LT(QLineF(view.mapToScene(pointer), kept).length(), 4 / shown());
    const QPointF before = view.mapToScene(centre);
    wheel(pointer, {0, -120});
    const QPointF scrolled = view.mapToScene(centre);
    EXPECT_GT(scrolled.y(), before.y());
    view.resize(900, 600);
    EXPECT_NEAR(view.mapToScene(view.viewport()->rect().center()).y(), scrolled.y(), 2 / shown()) << "kept";

    // By wheel or trackpad: not without end, not below the fit, and not at all when zoom is off.
    const auto expectZoom = [this](double times) { EXPECT_NEAR(shown(), times * view.fitScale(), 1e-9); };
    wheel(centre, {0, 4800}, Qt::ControlModifier);
    expectZoom(16);
    wheel(centre, {0, -9600}, Qt::ControlModifier);
    expectZoom(1);
    pinchOnTrackpad(centre, 0.5);
    pinchOnTrackpad(centre, 0.2);
    expectZoom(1.8);
    view.setTestingVariables(0);
    wheel(centre, {0, 480}, Qt::ControlModifier);
    pinchOnTrackpad(centre, 0.5);
    expectZoom(1);
}

} // namespace
