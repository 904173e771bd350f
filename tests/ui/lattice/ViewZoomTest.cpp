#include "ui/UiFixture.h"
#include "ui/lattice/LatticeEdge.h"
#include "ui/lattice/LatticeZoom.h"

#include <QNativeGestureEvent>
#include <QSignalSpy>
#include <QTest>

#include <limits>

namespace {

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
    {
        static QPointingDevice* const screen = QTest::createTouchDevice(); // which Qt never lets go
        device = screen;
        view.init(OrloLeavesWidget::Circles, &orlo);
        view.resize(800, 600);
        view.show();
        centre = view.viewport()->rect().center();
    }

    double shown() const { return view.transform().m11(); }
    QTest::QTouchEventWidgetSequence touch() { return QTest::touchEvent(&view, device); }
    QPoint left(int distance) const { return centre - QPoint(distance / 2, 0); }
    QPoint right(int distance) const { return centre + QPoint(distance / 2, 0); }
    void begin(int distance) { touch().press(0, left(distance)).press(1, right(distance)); }
    void move(int distance) { touch().move(0, left(distance)).move(1, right(distance)); }
    void end(int distance) { touch().release(0, left(distance)).release(1, right(distance)); }
    void pinch(int from, int to)
    {
        begin(from);
        move(to);
        end(to);
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

    // Squeezed to nothing and opened again.
    view.resize(500, 0);
    view.resize(800, 600);
    EXPECT_NEAR(shown(), 2 * fit, 1e-9);
}

TEST_F(ViewZoom, OnlyTwoFingersThatMoveApartZoomAsTheOptionAllows)
{
    const double fit = view.fitScale();
    pinch(0, 200); // from one spot, whose distance says nothing
    touch().press(0, left(100)).press(1, right(100)).press(2, centre);
    touch().release(0, left(400)).release(1, right(400)).release(2, centre);
    EXPECT_TRUE(drain().isEmpty());
    const QPoint ball = view.viewport()->mapTo(&view, scene::centreOf(view, "/3"));
    touch().press(0, ball);
    touch().release(0, ball);
    EXPECT_EQ(said(), "0 1 /3") << "one finger plays";
    EXPECT_DOUBLE_EQ(shown(), fit);

    touch().press(0, left(100)); // and the second finger later
    touch().stationary(0).press(1, right(100));
    move(200);
    end(200);
    EXPECT_DOUBLE_EQ(shown(), 2 * fit);

    view.setTestingVariables(0);
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

TEST(LatticeEdgeTest, ASideIsCutWhereTheLatticeGoesOnBehindIt)
{
    constexpr QRect viewport(0, 0, 400, 300);
    const std::pair<QRectF, Qt::Edges> rows[] = {
        {{0, 0, 400, 300}, {}},
        {{-1.5, 20, 403, 260}, {}}, // the fit, rounded
        {{-100, 0, 500, 300}, Qt::LeftEdge},
        {{0, -50, 450, 350}, Qt::TopEdge | Qt::RightEdge},
        {{-9, -9, 418, 318}, Qt::LeftEdge | Qt::TopEdge | Qt::RightEdge | Qt::BottomEdge},
    };
    for (const auto& [lattice, cut] : rows)
        EXPECT_EQ(latticeedge::cutEdges(lattice, viewport), cut) << lattice.x() << ' ' << lattice.y();
}

TEST_F(ViewZoom, ADragMovesTheCentreThatAResizeKeeps)
{
    pinch(100, 400);
    const QPointF before = view.mapToScene(centre);
    const QPoint from = view.mapFromScene(QPointF(25, 25)); // a spot between the balls
    const QPoint way(60, 30);
    scene::mouse(view, QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
    scene::mouse(view, QEvent::MouseMove, from + way, Qt::NoButton, Qt::LeftButton);
    EXPECT_EQ(view.viewport()->cursor().shape(), Qt::ClosedHandCursor);
    scene::mouse(view, QEvent::MouseButtonRelease, from + way, Qt::LeftButton, Qt::NoButton);
    EXPECT_EQ(view.viewport()->cursor().shape(), Qt::ArrowCursor);
    EXPECT_TRUE(drain().isEmpty());

    const QPointF dragged = view.mapToScene(centre);
    EXPECT_LT(QLineF(before - way / shown(), dragged).length(), 2.0);
    view.resize(900, 600);
    EXPECT_LT(QLineF(view.mapToScene(view.viewport()->rect().center()), dragged).length(), 2.0);
}

TEST_F(ViewZoom, TheWheelZoomsWithCtrlAroundThePointerAndScrollsWithout)
{
    const double fit = view.fitScale();
    const QPoint pointer = view.mapFromScene(view.scene()->sceneRect().center()) + QPoint(80, -60);
    const QPointF kept = view.mapToScene(pointer);
    scene::wheel(view, pointer, 480, Qt::ControlModifier);
    EXPECT_NEAR(shown(), 2 * fit, 1e-9);
    scene::wheel(view, pointer, 960, Qt::ControlModifier);
    // To whole pixels each time, of which the first are four of the last.
    EXPECT_LT(QLineF(view.mapToScene(pointer), kept).length(), 4 / shown());
    const double before = view.mapToScene(centre).y();
    scene::wheel(view, pointer, -120);
    const double scrolled = view.mapToScene(centre).y();
    EXPECT_GT(scrolled, before);
    view.resize(900, 600);
    EXPECT_NEAR(view.mapToScene(view.viewport()->rect().center()).y(), scrolled, 2 / shown()) << "kept";

    // By wheel or trackpad: not without end, not below the fit, and not at all when zoom is off.
    const auto expectZoom = [this](double times) { EXPECT_NEAR(shown(), times * view.fitScale(), 1e-9); };
    scene::wheel(view, centre, 4800, Qt::ControlModifier);
    expectZoom(16);
    scene::wheel(view, centre, -9600, Qt::ControlModifier);
    expectZoom(1);
    pinchOnTrackpad(centre, 0.5);
    pinchOnTrackpad(centre, 0.2);
    expectZoom(1.8);
    view.setTestingVariables(0);
    scene::wheel(view, centre, 480, Qt::ControlModifier);
    pinchOnTrackpad(centre, 0.5);
    expectZoom(1);
}

} // namespace
