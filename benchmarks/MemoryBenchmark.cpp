// The cost of nodes and chord memory, with a thousand altered nodes in the tables.

#include "Baseline.h"
#include "QuietLog.h"
#include "memory/StoreAndRecall.h"
#include "support/SoundRig.h"

#include "sound/EngineRelay.h"
#include "sound/OrloNodeSelectToggleEvent.h"
#include "sound/OrloNoteEvent.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>

#include <array>
#include <memory>

namespace {

constexpr int ALTERED = 1000;
constexpr int CHORD = 20;
constexpr int WHOLE_CHORD = 127;

OrloRatio ratioNumber(int n)
{
    return OrloRatio(static_cast<unsigned long long>(1000 + n), 1000ULL);
}

/// The engine with a patch that renders nothing, so that the commands are measured and not sound.
struct Stage
{
    explicit Stage(const QString& voice = QString())
    {
        if (voice.isEmpty())
            rig.loadMainText("#N canvas 0 0 200 200 12;\n");
        else
            rig.loadVoice(voice);
        for (int n = 0; n < ALTERED; ++n) {
            select(n);
            select(n); // altered from here on
            if (n % 100 == 0)
                blocks();
        }
        blocks();
    }
    void select(int n) { rig.queue(OrloNodeSelectToggleEvent(ratioNumber(n))); }
    void toggle(int n) { rig.queue(OrloNoteEvent(ratioNumber(n))); }
    /// Without rendering; what they report is thrown away.
    void blocks(int count = 2)
    {
        for (int i = 0; i < count; ++i)
            rig.player.processEvents();
        rig.player.relay().drain();
    }
    /// Every seventh of the altered ones sounds and is selected.
    void selectSounding(int voices)
    {
        for (int i = 0; i < voices; ++i) {
            toggle(i * 7);
            select(i * 7);
            if (i % 64 == 0)
                blocks();
        }
        blocks();
    }

    SoundRig rig;
};

void glissStep(benchmark::State& state)
{
    Stage stage;
    stage.selectSounding(static_cast<int>(state.range(0)));
    float value = 0.0F;
    for ([[maybe_unused]] auto _ : state) {
        value = value < 1.0F ? value + 1.0F / 256.0F : 0.0F;
        stage.rig.queue(OrloEvent(OrloEvent::GlissOneSet, value));
        stage.rig.player.processEvents();
    }
    setBaseline(state, "messagesAlone", state.range(0));
}

void macroStep(benchmark::State& state)
{
    Stage stage;
    stage.selectSounding(static_cast<int>(state.range(0)));
    float value = 0.0F;
    for ([[maybe_unused]] auto _ : state) {
        value = value < 1.0F ? value + 1.0F / 256.0F : 0.0F;
        stage.rig.queue(OrloEvent(OrloEvent::Macro1Set, value));
        stage.rig.player.processEvents();
        state.PauseTiming();
        stage.rig.player.relay().drain();
        state.ResumeTiming();
    }
    setBaseline(state, "messagesAlone", state.range(0));
}

/// What the messages of a step cost by themselves.
void messagesAlone(benchmark::State& state)
{
    Stage stage;
    for ([[maybe_unused]] auto _ : state) {
        for (int i = 0; i < state.range(0); ++i)
            stage.rig.player.sendPdVoiceMessage(voiceFrequency, 440.0F, static_cast<float>(i));
    }
}

/// All nodes are altered before each; 128 voices sound.
void resetAll(benchmark::State& state)
{
    Stage stage;
    stage.rig.settings.softNodeReset = state.range(0) != 0;
    for (int i = 0; i < 128; ++i) {
        stage.toggle(i * 7);
        if (i % 64 == 0)
            stage.blocks();
    }
    for ([[maybe_unused]] auto _ : state) {
        state.PauseTiming();
        for (int n = 0; n < ALTERED; ++n) {
            stage.select(n);
            if (n % 100 == 0)
                stage.blocks(1);
        }
        stage.rig.queue(OrloEvent(OrloEvent::NodesDeselectAll, 1.0F));
        stage.blocks();
        stage.rig.queue(OrloEvent(OrloEvent::NodesResetAll, 1.0F));
        state.ResumeTiming();
        stage.rig.player.processEvents();
    }
}

/// The block in which a chord of 127 notes starts, with a lattice that hears of it: through the relay,
/// or by a queued signal for each note.
void recallBlock(benchmark::State& state)
{
    Stage stage;
    PdPlayer& player = stage.rig.player;
    Orlo& orlo = stage.rig.orlo;
    if (state.range(0) == 0) {
        PdPlayer::connectLattice(&player, &orlo);
    } else {
        player.disconnect(&player.relay());
        QObject::connect(&player, &PdPlayer::noteToggled, &orlo, &Orlo::onNoteToggled, Qt::QueuedConnection);
    }
    for ([[maybe_unused]] auto _ : state) {
        state.PauseTiming();
        stage.rig.queue(OrloEvent(OrloEvent::AllNotesOffForced, 1.0F));
        stage.blocks();
        for (int voice = 1; voice <= VoiceTable::SLOTS; ++voice)
            SoundRig::reportVoiceStop(static_cast<float>(voice));
        QCoreApplication::removePostedEvents(&orlo);
        for (int n = 0; n < WHOLE_CHORD; ++n)
            stage.toggle(n);
        state.ResumeTiming();
        player.processEvents();
    }
    if (state.range(0) == 0)
        setBaseline(state, "recallBlock/queued:1");
}

/// From the press on a chord button to the first block that sounds.
void recallToSound(benchmark::State& state)
{
    Stage stage(QStringLiteral("Sine.pd"));
    StoreAndRecall memory(&stage.rig.player);
    QList<OrloRatio> chord;
    for (int i = 0; i < CHORD; ++i)
        chord.append(ratioNumber(i * 7));
    memory.storedChords()->insert(1, chord);
    double blocks = 0;
    for ([[maybe_unused]] auto _ : state) {
        memory.recallRatios(1, StoreAndRecall::Standard);
        do
            ++blocks;
        while (peak(stage.rig.render()) == 0.0F);
        state.PauseTiming();
        stage.rig.queue(OrloEvent(OrloEvent::AllNotesOffForced, 1.0F));
        stage.rig.renderUntilSilent();
        stage.rig.player.relay().drain();
        state.ResumeTiming();
    }
    state.counters["blocks"] = benchmark::Counter(blocks, benchmark::Counter::kAvgIterations);
    setBaseline(state, "blockAlone");
}

/// One block of the same patch in silence.
void blockAlone(benchmark::State& state)
{
    Stage stage(QStringLiteral("Sine.pd"));
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(stage.rig.render());
}

/// Asking for the last of so many nodes, in a plain list and in the engine's.
void lookUpInPlainList(benchmark::State& state)
{
    QList<OrloRatio> list;
    for (int n = 0; n < state.range(0); ++n)
        list.append(ratioNumber(n));
    const OrloRatio last = list.last();
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(list.contains(last));
}

void lookUp(benchmark::State& state)
{
    RatioList list;
    for (int n = 0; n < state.range(0); ++n)
        list.append(ratioNumber(n));
    const OrloRatio last = ratioNumber(static_cast<int>(state.range(0)) - 1);
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(list.contains(last));
    setBaseline(state, "lookUpInPlainList", state.range(0));
}

void snapshotRead(benchmark::State& state)
{
    Stage stage;
    stage.selectSounding(128);
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(stage.rig.player.getAllSoundingRatios());
}

BENCHMARK(recallToSound)->Unit(benchmark::kMicrosecond)->Iterations(20);
BENCHMARK(recallBlock)->ArgName("queued")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);
BENCHMARK(blockAlone)->Unit(benchmark::kMicrosecond);
BENCHMARK(glissStep)->Arg(1)->Arg(16)->Arg(128)->Unit(benchmark::kMicrosecond);
BENCHMARK(macroStep)->Arg(1)->Arg(16)->Arg(128)->Unit(benchmark::kMicrosecond);
BENCHMARK(messagesAlone)->Arg(1)->Arg(16)->Arg(128)->Unit(benchmark::kMicrosecond);
BENCHMARK(resetAll)->ArgName("soft")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond)->Iterations(200);
BENCHMARK(lookUpInPlainList)->Arg(10)->Arg(100)->Arg(ALTERED);
BENCHMARK(lookUp)->Arg(10)->Arg(100)->Arg(ALTERED);
BENCHMARK(snapshotRead)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv)
{
    installQuietLog();
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Brevick Tuning Orlo"));
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
