// Fingers on a touch screen.

#include "ui/UiFixture.h"

#include <QTest>
#include <QTouchEvent>
#include <cstdio>

namespace {

class Fingers : public UiFixture
{
protected:
    Fingers()
    {
        static QPointingDevice* const screen = QTest::createTouchDevice(); // which Qt never lets go
        device = screen;
        view.init(OrloLeavesWidget::Grapes, &orlo);
        view.resize(800, 600);
        view.show();
    }
    QTest::QTouchEventWidgetSequence touch() { return QTest::touchEvent(&view, device); }
    QPoint at(const char* path) const { return view.viewport()->mapTo(&view, scene::centreOf(view, path)); }

    OrloView view;
    QPointingDevice* device;
};

struct Spy : QObject {
    bool eventFilter(QObject* o, QEvent* e) override {
        switch (e->type()) {
        case QEvent::TouchBegin: case QEvent::TouchUpdate: case QEvent::TouchEnd: case QEvent::TouchCancel: {
            auto* t = static_cast<QTouchEvent*>(e);
            std::printf("  %s type %d:", o->metaObject()->className(), int(e->type()));
            for (auto& p : t->points()) std::printf(" [%d state %d]", p.id(), int(p.state()));
            std::printf("\n"); break; }
        case QEvent::MouseButtonPress: case QEvent::MouseButtonRelease: case QEvent::MouseMove: case QEvent::MouseButtonDblClick: {
            auto* m = static_cast<QMouseEvent*>(e);
            std::printf("  %s mouse %d at %g %g dev %d\n", o->metaObject()->className(), int(e->type()), m->position().x(), m->position().y(), int(m->source())); break; }
        default: break;
        }
        return false;
    }
};

TEST_F(Fingers, Experiment)
{
    Spy spy;
    qApp->installEventFilter(&spy);
    auto show = [&](const char* what) {
        std::printf("%s: said %s grabber %p\n", what, said().c_str(), static_cast<void*>(view.scene()->mouseGrabberItem()));
    };
    touch().press(0, at("/3")); show("first down");
    touch().stationary(0).press(1, at("/2")); show("second down, first still");
    touch().move(0, at("/3") + QPoint(2, 0)).stationary(1); show("first moves");
    touch().release(0, at("/3")).stationary(1); show("first up");
    touch().press(2, at("/-3")).stationary(1); show("third down");
    touch().release(1, at("/2")).stationary(2); show("second up");
    touch().release(2, at("/-3")); show("third up");
    touch().press(0, at("/3")); show("first down");
    touch().release(0, at("/3")); show("first up");
    touch().press(0, at("/3")); show("first down");
    touch().move(0, at("/3") + QPoint(2, 0)).press(1, at("/2")); show("second down, first moved");
    touch().release(0, at("/3")).release(1, at("/2")); show("both up");
    qApp->removeEventFilter(&spy);
}

} // namespace
