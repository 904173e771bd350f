// The cost of the picture and of a press.

#include "Baseline.h"
#include "QuietLog.h"

#include "app/Accessors.h"
#include "app/Settings.h"
#include "model/Orlo.h"
#include "model/OrloBall.h"
#include "sound/OrloNoteEvent.h"
#include "sound/PdPlayer.h"
#include "ui/cards/CardWidget.h"
#include "ui/harmony/HarmonyPanel.h"
#include "ui/lattice/OrloBallWidget.h"
#include "ui/lattice/OrloView.h"
#include "ui/lattice/OrloWidget.h"
#include "ui/panel/TransposeWidget.h"
#include "ui/stacks/CardStackTwoWidget.h"
#include "ui/stacks/CardStackWidget.h"
#include "ui/stacks/FreeConnectorOverlay.h"
#include "ui/stacks/NodeStackWidget.h"
#include "ui/stacks/OrloLayer.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QFile>
#include <QMouseEvent>
#include <QPainter>
#include <QRandomGenerator>
#include <QStandardPaths>

#include <algorithm>
#include <string>
#include <vector>

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
    for ([[maybe_unused]] auto _ : state) {
        image.fill(Qt::darkGray);
        QPainter painter(&image);
        stage.view.render(&painter);
    }
    setBaseline(state, "repaintPlainly", state.range(0));
}

void repaintPlainly(benchmark::State& state)
{
    Stage stage;
    stage.play(static_cast<int>(state.range(0)));
    QImage image(WINDOW, QImage::Format_ARGB32_Premultiplied);
    for ([[maybe_unused]] auto _ : state) {
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
    QMouseEvent release(QEvent::MouseButtonRelease, at, stage.view.viewport()->mapToGlobal(at),
                        Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
    for ([[maybe_unused]] auto _ : state) {
        for (int i = 0; i < PRESSES; ++i) {
            QCoreApplication::sendEvent(stage.view.viewport(), &press);
            QCoreApplication::sendEvent(stage.view.viewport(), &release);
        }
        state.PauseTiming();
        stage.player.processEvents();
        QCoreApplication::removePostedEvents(nullptr);
        state.ResumeTiming();
    }
    setBaseline(state, "queueAlone");
    state.SetItemsProcessed(state.iterations() * PRESSES);
}

void queueAlone(benchmark::State& state)
{
    Stage stage;
    const OrloNoteEvent event{OrloPath()};
    for ([[maybe_unused]] auto _ : state) {
        for (int i = 0; i < PRESSES; ++i)
            stage.player.queueEventGui(&event);
        state.PauseTiming();
        stage.player.processEvents();
        QCoreApplication::removePostedEvents(nullptr);
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * PRESSES);
}

/// Sounding nodes, so that each has a line, spread over the whole axis of pitch.
void placeNodes(benchmark::State& state)
{
    Stage stage;
    QWidget page;
    auto* cards = new CardStackTwoWidget(&page);
    auto* overlay = new FreeConnectorOverlay(&page);
    auto* stack = new NodeStackWidget(&page);
    overlay->init(&stage.view, cards, stack);
    stack->init(overlay, &stage.view, cards);
    stack->resize(stack->sizeHint().width(), WINDOW.height());
    const auto count = static_cast<unsigned>(state.range(0));
    for (unsigned i = 0; i < count; ++i) {
        const OrloRatio ratio(100 * count + 799 * i, 899 * count);
        stack->addNodeForRatio(ratio);
        stack->toggleNodeForRatio(ratio, true);
    }
    for ([[maybe_unused]] auto _ : state)
        stack->updatePositions();
    setBaseline(state, "sortPlainly", state.range(0));
}

/// What sorting as many numbers costs, the least that a pass can do.
void sortPlainly(benchmark::State& state)
{
    QRandomGenerator random(1);
    std::vector<double> numbers(static_cast<size_t>(state.range(0)));
    std::generate(numbers.begin(), numbers.end(), [&] { return random.generateDouble(); });
    for ([[maybe_unused]] auto _ : state) {
        std::vector<double> sorted = numbers;
        std::sort(sorted.begin(), sorted.end());
        benchmark::DoNotOptimize(sorted.data());
    }
}

/// As in the program: two pages and the column of transposition, with the look that decides what a
/// card costs. Both pages are windows here, so that both are really painted.
struct Pages
{
    Pages()
    {
        QFile sheet(QCoreApplication::applicationDirPath() + QStringLiteral("/style.qss"));
        if (!sheet.open(QIODevice::ReadOnly))
            qFatal("The style sheet is missing.");
        qApp->setStyleSheet(QString::fromLatin1(sheet.readAll()));
        app::Parts parts;
        parts.orlo = &orlo;
        parts.player = &player;
        parts.settings = &settings;
        app::setParts(parts);
        orlo.initWithDefaults();
        player.init();
        PdPlayer::connectLattice(&player, &orlo);
        column.init(Qt::Vertical);
        circles.init(OrloLeavesWidget::Circles, &orlo);
        grapes.init(OrloLeavesWidget::Grapes, &orlo);
        QObject::connect(&orlo, &Orlo::transposeOrBaseFrequencyChanged, &grapes, [this] {
            grapes.orloView()->updateOrloBalls();
            grapes.orloView()->updateCardStack();
        });
        circles.resize(WINDOW);
        grapes.resize(WINDOW);
        column.show();
        circles.show();
        grapes.show();
        QCoreApplication::processEvents();
    }
    ~Pages()
    {
        app::setParts({});
        qApp->setStyleSheet(QString());
    }

    /// Some of them lose their balls with a step of 3, and gain them again with the step back.
    void play(int notes)
    {
        for (OrloBallWidget* widget : grapes.orloView()->orloWidget()->balls().first(notes))
            orlo.onNoteToggled(OrloRatio(widget->ball()->path()), true);
        QCoreApplication::processEvents();
    }

    Settings settings;
    Orlo orlo;
    PdPlayer player;
    TransposeWidget column;
    OrloLayer circles;
    OrloLayer grapes;
};

/// From the queued command to the pages repainted; one frame of 60 Hz has 16.7 ms. The program shows
/// one page at a time, so that the other is changed and not painted.
void transposeAndRepaint(benchmark::State& state)
{
    Pages pages;
    pages.circles.setVisible(state.range(1) == 2);
    pages.play(static_cast<int>(state.range(0)));
    const OrloEvent up(OrloEvent::TransposeByPrimeStep, 3.0F);
    const OrloEvent down(OrloEvent::TransposeByPrimeStep, -3.0F);
    bool higher = false;
    for ([[maybe_unused]] auto _ : state) {
        higher = !higher;
        pages.player.queueEventGui(higher ? &up : &down);
        pages.player.processEvents();
        QCoreApplication::processEvents();
    }
    state.counters["cards"] = static_cast<double>(pages.grapes.cardStack()->cards().size()
                                                  + pages.grapes.cardStackTwo()->cards().size());
    if (state.range(1) == 2) // as many pages as the baseline paints
        setBaseline(state, "repaintPages", state.range(0));
}

/// What of it is painting alone.
void repaintPages(benchmark::State& state)
{
    Pages pages;
    pages.play(static_cast<int>(state.range(0)));
    for ([[maybe_unused]] auto _ : state) {
        pages.circles.repaint();
        pages.grapes.repaint();
    }
}

void buildCard(benchmark::State& state)
{
    Pages pages;
    CardStackWidget* stack = pages.grapes.cardStack();
    const OrloBall* ball = pages.orlo.rootBall();
    for ([[maybe_unused]] auto _ : state) {
        CardWidget card(ball, stack);
        card.adjustSize();
        card.show();
    }
}

/// With a card that a former note left behind.
void showAndHideCard(benchmark::State& state)
{
    Pages pages;
    const QList<OrloBallWidget*> balls = pages.grapes.orloView()->orloWidget()->balls();
    qsizetype next = 0; // another pitch each time, so that the card is filled anew
    for ([[maybe_unused]] auto _ : state) {
        next = (next + 1) % balls.size();
        pages.grapes.cardStack()->showCardForBall(balls[next]);
        pages.grapes.cardStack()->hideCardForBall(balls[next]);
    }
    setBaseline(state, "buildCard");
}

/// The question of all 22 buttons, after every transposition.
void canTransposeTo(benchmark::State& state)
{
    Pages pages;
    QList<OrloRatio> steps;
    for (const int prime : OrloConstants::PRIMES) {
        if (prime > 1) {
            steps.append(OrloPath(static_cast<signed char>(prime)).toRatio());
            steps.append(OrloPath(static_cast<signed char>(-prime)).toRatio());
        }
    }
    for ([[maybe_unused]] auto _ : state) {
        for (const OrloRatio& step : steps)
            benchmark::DoNotOptimize(pages.orlo.canTransposeTo(step));
    }
    state.SetItemsProcessed(state.iterations() * steps.size());
}

/// The panel, and notes for it: of balls, or ratios that fill 64 bits.
struct HarmonyStage
{
    explicit HarmonyStage(const benchmark::State& state)
    {
        const QList<OrloBallWidget*> balls = pages.grapes.orloView()->orloWidget()->balls();
        constexpr unsigned long long wide = 1ULL << 62U;
        for (unsigned i = 0; i < state.range(0); ++i) {
            const OrloRatio ratio = state.range(1) == 0
                                        ? OrloRatio(balls[static_cast<int>(i)]->ball()->path())
                                        : OrloRatio(wide - 1 - 2 * i, wide - 999 - 64 * i);
            const double frequency =
                440.0 * static_cast<double>(ratio.numerator()) / static_cast<double>(ratio.denominator());
            notes.append({.ratio = ratio, .frequency = frequency});
        }
        panel.resize(270, 600);
        panel.show();
        panel.fill(notes, OrloRatio(1, 1));
        QCoreApplication::processEvents();
    }

    Pages pages;
    QList<SoundingNote> notes;
    HarmonyPanel panel{nullptr};
};

/// What a note that comes or goes costs the panel: analysed, filled and painted. One frame has 16.7 ms.
void showHarmony(benchmark::State& state)
{
    HarmonyStage stage(state);
    bool all = true;
    for ([[maybe_unused]] auto _ : state) {
        all = !all;
        stage.panel.fill(all ? stage.notes : stage.notes.first(stage.notes.size() - 1), OrloRatio(1, 1));
        stage.panel.repaint();
    }
    setBaseline(state, "repaintHarmony/" + std::to_string(state.range(0)), state.range(1));
}

/// What of it is painting alone.
void repaintHarmony(benchmark::State& state)
{
    HarmonyStage stage(state);
    for ([[maybe_unused]] auto _ : state)
        stage.panel.repaint();
}

/// Once a frame while nothing changes.
void lookAtUnchangedHarmony(benchmark::State& state)
{
    HarmonyStage stage(state);
    stage.panel.look();
    for ([[maybe_unused]] auto _ : state)
        stage.panel.look();
}

BENCHMARK(repaintScene)->Arg(0)->Arg(128)->Unit(benchmark::kMillisecond);
BENCHMARK(repaintPlainly)->Arg(0)->Arg(128)->Unit(benchmark::kMillisecond);
BENCHMARK(pressFromEventToChunk)->Unit(benchmark::kMicrosecond);
BENCHMARK(queueAlone)->Unit(benchmark::kMicrosecond);
BENCHMARK(transposeAndRepaint)
    ->ArgNames({"notes", "pages"})
    ->ArgsProduct({{0, 40}, {1, 2}})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(repaintPages)->Arg(0)->Arg(40)->Unit(benchmark::kMillisecond);
BENCHMARK(buildCard)->Unit(benchmark::kMicrosecond);
BENCHMARK(showAndHideCard)->Unit(benchmark::kMicrosecond);
BENCHMARK(showHarmony)->ArgsProduct({{3, 20}, {0, 1}})->Unit(benchmark::kMicrosecond);
BENCHMARK(repaintHarmony)->ArgsProduct({{3, 20}, {0, 1}})->Unit(benchmark::kMicrosecond);
BENCHMARK(lookAtUnchangedHarmony)->Args({20, 0})->Unit(benchmark::kMicrosecond);
BENCHMARK(canTransposeTo)->Unit(benchmark::kMicrosecond);
BENCHMARK(placeNodes)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(sortPlainly)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv)
{
    installQuietLog();
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QApplication::setStyle(QStringLiteral("Fusion"));
    QCoreApplication::setApplicationName(QStringLiteral("Brevick Tuning Orlo"));
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
