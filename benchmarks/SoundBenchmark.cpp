// What the sound engine adds to Pure Data's own work. The baseline is libpd's bare calls: they and the
// engine take turns in one run, on the same patch, and the medians are compared.

#include "Baseline.h"
#include "Pair.h"
#include "QuietLog.h"
#include "support/SoundRig.h"

#include "sound/EngineRelay.h"
#include "sound/OrloNoteEvent.h"
#include "sound/PdMessageBuffer.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>

#include <z_libpd.h>

#include <array>
#include <cstring>

namespace {

SoundRig& rig()
{
    static SoundRig shared;
    static const bool loaded = shared.loadVoice(QStringLiteral("Sine.pd"));
    if (!loaded)
        qFatal("Sine.pd cannot be loaded.");
    return shared;
}

void allSilent()
{
    rig().send(OrloEvent(OrloEvent::AllNotesOffForced, 0.0F));
    rig().renderUntilSilent();
    rig().render(20);
}

// 5805 microseconds of sound, with so many of 128 voices sounding.
void block(benchmark::State& state)
{
    std::array<float, 2 * SoundRig::FRAMES> output{};
    for (int i = 0; i < state.range(0); ++i)
        rig().queue(OrloNoteEvent(OrloRatio(static_cast<unsigned long long>(23 + i), 92)));
    rig().render(200);
    Pair pair;
    for ([[maybe_unused]] auto _ : state) {
        pair.measure([&] { rig().output.renderBlock(output.data(), SoundRig::FRAMES); },
                     [&] { libpd_process_float(SoundRig::FRAMES / 64, nullptr, output.data()); });
        state.SetIterationTime(pair.lastOfOurs() * 1e-9);
    }
    pair.report(state);
    allSilent();
}

void sendBare(float value, float type)
{
    libpd_start_message(3);
    libpd_add_float(value);
    libpd_add_float(type);
    libpd_add_float(1.0F);
    libpd_finish_list("orlo-in");
}

void noteOnBare()
{
    for (int macro = 4; macro <= 11; ++macro)
        sendBare(0.5F, static_cast<float>(macro));
    sendBare(660.0F, 2.0F);
    sendBare(1.0F, 3.0F);
    sendBare(1.0F, 1.0F);
}

// From the command in the ring to the last message in the patch, with the signal to the lattice.
void note(benchmark::State& state)
{
    const bool on = state.range(0) == 1;
    const OrloNoteEvent press(OrloRatio(3, 2));
    PdPlayer& player = rig().player;
    const auto toggle = [&] {
        player.queueEventGui(&press);
        player.processEvents();
    };
    const auto noteOffBare = [] { sendBare(0.0F, 1.0F); };
    for (int macro = OrloEvent::Macro1Set; macro <= OrloEvent::Macro8Set; ++macro)
        rig().send(OrloEvent(static_cast<OrloEvent::Type>(macro), 0.5F));
    Pair pair;
    for ([[maybe_unused]] auto _ : state) {
        if (on) {
            pair.measure(toggle, noteOnBare);
        } else {
            toggle();
            pair.measure(toggle, noteOffBare);
        }
        state.SetIterationTime(pair.lastOfOurs() * 1e-9);
        if (on)
            toggle();
        SoundRig::reportVoiceStop(1.0F);
        player.relay().drain(); // what the lattice was told
    }
    pair.report(state);
    allSilent();
}

/// So many at a time that reading the clock does not count.
constexpr int BATCH = 200;

template <class Event>
void queueing(benchmark::State& state, const Event& event)
{
    PdMessageBuffer buffer;
    buffer.init();
    PdMessageBuffer::ChunkList chunks;
    PdMessageBuffer::Chunk from;
    std::array<PdMessageBuffer::Chunk, BATCH> to;
    Pair pair;
    for ([[maybe_unused]] auto _ : state) {
        pair.measure(
            [&] {
                for (int i = 0; i < BATCH; ++i)
                    buffer.queueEvent(&event);
            },
            [&] {
                for (PdMessageBuffer::Chunk& chunk : to) {
                    std::memcpy(static_cast<void*>(&chunk), &from, sizeof chunk);
                    benchmark::DoNotOptimize(&chunk);
                    benchmark::ClobberMemory();
                }
            });
        state.SetIterationTime(pair.lastOfOurs() * 1e-9);
        buffer.processEvents(chunks);
        chunks.setSize(0);
    }
    pair.report(state, BATCH);
}

void queueSlider(benchmark::State& state)
{
    queueing(state, OrloEvent(OrloEvent::Macro1Set, 0.5F));
}

void queuePress(benchmark::State& state)
{
    queueing(state, OrloNoteEvent(QStringLiteral("/3/5")));
}

BENCHMARK(block)->Arg(0)->Arg(1)->Arg(8)->Arg(32)->Arg(64)->Arg(128)->Iterations(4000)->UseManualTime();
BENCHMARK(note)->ArgName("on")->Arg(1)->Arg(0)->Iterations(20000)->UseManualTime();
BENCHMARK(queueSlider)->Iterations(2000)->UseManualTime();
BENCHMARK(queuePress)->Iterations(2000)->UseManualTime();

} // namespace

int main(int argc, char** argv)
{
    installQuietLog();
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Brevick Tuning Orlo"));
    benchmark::Initialize(&argc, argv);
    PdPlayer::connectLattice(&rig().player, &rig().orlo);
    benchmark::RunSpecifiedBenchmarks();
}
