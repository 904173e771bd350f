// The cost of the picture and of a press, each beside a baseline of the same run.

#include "app/Accessors.h"
#include "app/Settings.h"
#include "model/Orlo.h"
#include "model/OrloBall.h"
#include "sound/OrloNoteEvent.h"
#include "sound/PdPlayer.h"
#include "ui/OrloBallWidget.h"
#include "ui/OrloView.h"
#include "ui/OrloWidget.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QStandardPaths>

namespace {

constexpr QSize WINDOW(1280, 800);

/// The default lattice with a player that no thread drains.
struct Stage
{
    Stage()
    {
        app::Parts parts;
        parts.orlo = &orlo;
        parts.player = &player;
        parts.settings = &settings;
        app::setParts(parts);
        orlo.initWithDefaults();
        player.init();
        view.init(OrloLeavesWidget::Grapes, &orlo);
        view.resize(WINDOW);
        view.show();
        QCoreApplication::processEvents();
    }
    ~Stage() { app::setParts({}); }

    void play(int balls)
    {
        for (OrloBallWidget* widget : view.orloWidget()->balls().first(balls))
            orlo.ballFromRatio(OrloRatio(widget->ball()->path()))->setPlaying(true);
    }

    Settings settings;
    Orlo orlo;
    PdPlayer player;
    OrloView view;
};

/// The same circles and lines drawn without a scene: what painting itself costs.
void paintPlainly(QPainter& painter, const OrloView& view)
{
    const QTransform toView = view.viewportTransform();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Qt::black, 0));
    for (const OrloBallWidget* ball : view.orloWidget()->balls()) {
        const QRectF place = toView.mapRect(ball->sceneBoundingRect());
        painter.setBrush(ball->ball()->color());
        painter.drawEllipse(place);
        if (ball->ball()->isPlaying()) {
            const QPointF centre = place.center();
            QRadialGradient glow(centre, place.width());
            glow.setColorAt(0.0, QColor(255, 255, 255, 180));
            glow.setColorAt(1.0, QColor(255, 255, 255, 0));
            painter.setBrush(glow);
            painter.drawEllipse(centre, place.width(), place.width());
        }
    }
}

void repaintScene(benchmark::State& state)
{
    Stage stage;
    stage.play(static_cast<int>(state.range(0)));
    QImage image(WINDOW, QImage::Format_ARGB32_Premultiplied);
    for (auto _ : state) {
        image.fill(Qt::darkGray);
        QPainter painter(&image);
        stage.view.render(&painter);
    }
}

void repaintPlainly(benchmark::State& state)
{
    Stage stage;
    stage.play(static_cast<int>(state.range(0)));
    QImage image(WINDOW, QImage::Format_ARGB32_Premultiplied);
    for (auto _ : state) {
        image.fill(Qt::darkGray);
        QPainter painter(&image);
        paintPlainly(painter, stage.view);
    }
}

/// The ring takes 255 commands; it is emptied outside the measured time.
constexpr int PRESSES = 200;

void pressFromEventToChunk(benchmark::State& state)
{
    Stage stage;
    const QPointF at = stage.view.mapFromScene(QPointF(0.0, 0.0));
    QMouseEvent press(QEvent::MouseButtonPress, at, stage.view.viewport()->mapToGlobal(at), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QMouseEvent release(QEvent::MouseButtonRelease, at, stage.view.viewport()->mapToGlobal(at), Qt::LeftButton,
                        Qt::NoButton, Qt::NoModifier);
    for (auto _ : state) {
        for (int i = 0; i < PRESSES; ++i) {
            QCoreApplication::sendEvent(stage.view.viewport(), &press);
            QCoreApplication::sendEvent(stage.view.viewport(), &release);
        }
        state.PauseTiming();
        stage.player.processEvents();
        QCoreApplication::removePostedEvents(nullptr);
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * PRESSES);
}

void queueAlone(benchmark::State& state)
{
    Stage stage;
    const OrloNoteEvent event{OrloPath()};
    for (auto _ : state) {
        for (int i = 0; i < PRESSES; ++i)
            stage.player.queueEventGui(&event);
        state.PauseTiming();
        stage.player.processEvents();
        QCoreApplication::removePostedEvents(nullptr);
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * PRESSES);
}

BENCHMARK(repaintScene)->Arg(0)->Arg(128)->Unit(benchmark::kMillisecond);
BENCHMARK(repaintPlainly)->Arg(0)->Arg(128)->Unit(benchmark::kMillisecond);
BENCHMARK(pressFromEventToChunk)->Unit(benchmark::kMicrosecond);
BENCHMARK(queueAlone)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Brevick Tuning Orlo"));
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
