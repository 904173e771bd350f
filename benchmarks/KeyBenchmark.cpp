// What keys cost beside the same notes from the window, which take turns with them in one run.

#include "Baseline.h"
#include "Pair.h"
#include "QuietLog.h"
#include "support/SoundRig.h"

#include "external/MidiInRing.h"
#include "keyboard/KeyPlay.h"
#include "sound/EngineRelay.h"
#include "sound/OrloNoteEvent.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>

#include <array>
#include <memory>
#include <vector>

namespace {

constexpr int KEYS = KeyTable::KEYS;
constexpr int FACTORS[] = {1, 3, 5, 7, 9, 11, 13, 15, 17, 19, 21, 23, 25, 27, 29, 31};

/// The engine, with an input whose first channel plays 128 pitches, and the window's presses of the same.
class Desk
{
public:
    Desk()
    {
        if (!rig.loadVoice(QStringLiteral("Sine.pd")))
            qFatal("Sine.pd cannot be loaded.");
        PdPlayer::connectLattice(&rig.player, &rig.orlo);
        auto table = std::make_shared<KeyTable>();
        for (int key = 0; key < KEYS; ++key) {
            const auto numerator = static_cast<unsigned long long>(FACTORS[key % 16]) << (key / 16);
            table->at(0, key).ratio = OrloRatio(numerator, 128);
            mPresses.emplace_back(OrloRatio(numerator, 128));
        }
        mKeys.setTable(0, table);
        mKeys.setRing(0, &mRing);
        rig.player.setKeySource(&mKeys);
    }
    ~Desk() { rig.player.setKeySource(nullptr); }
    Desk(const Desk&) = delete;
    Desk& operator=(const Desk&) = delete;

    void write(int status, int data1, int data2)
    {
        mRing.write({static_cast<std::uint8_t>(status), static_cast<std::uint8_t>(data1),
                     static_cast<std::uint8_t>(data2), 0});
    }
    /// Of every key, or of every ball in the window.
    void begin(bool byKeys)
    {
        for (int key = 0; byKeys && key < KEYS; ++key)
            write(0x90, key, 64);
        for (int key = 0; !byKeys && key < KEYS; ++key)
            rig.queue(mPresses[static_cast<std::size_t>(key)]);
    }
    void end(bool byKeys)
    {
        for (int key = 0; byKeys && key < KEYS; ++key)
            write(0x80, key, 64);
        if (!byKeys)
            begin(false);
    }
    void block() { rig.player.processEvents(); }
    /// From whatever sounds.
    void silence()
    {
        rig.queue(OrloEvent(OrloEvent::AllNotesOffForced, 0.0F));
        end(true);
        block();
        for (int voice = 1; voice <= KEYS; ++voice)
            SoundRig::reportVoiceStop(static_cast<float>(voice));
        rig.player.relay().drain(); // what the lattice was told
        std::array<MidiInMessage, 256> taken;
        while (mKeys.takeMessages(taken) > 0) {
        }
    }

    SoundRig rig;

private:
    MidiInRing mRing;
    KeyPlay mKeys;
    std::vector<OrloNoteEvent> mPresses;
};

Desk& desk()
{
    static Desk shared;
    return shared;
}

// A key into its ring; a press of the window into its own is the baseline.
void keyToRing(benchmark::State& state)
{
    Pair pair;
    for ([[maybe_unused]] auto _ : state) {
        pair.measure([](bool) { desk().silence(); }, [] { desk().begin(true); }, [] { desk().begin(false); });
        state.SetIterationTime(pair.lastOfOurs() * 1e-9);
        desk().block();
    }
    pair.report(state, KEYS);
    desk().silence();
}

// The commands of a block in which 128 notes begin, or end; without the sound itself.
void notes128(benchmark::State& state)
{
    const bool on = state.range(0) == 1;
    const auto prepare = [on](bool byKeys) {
        desk().silence();
        desk().begin(byKeys);
        if (on)
            return;
        desk().block();
        desk().rig.player.relay().drain();
        desk().end(byKeys);
    };
    const auto block = [] { desk().block(); };
    Pair pair;
    for ([[maybe_unused]] auto _ : state) {
        pair.measure(prepare, block, block);
        state.SetIterationTime(pair.lastOfOurs() * 1e-9);
    }
    pair.report(state);
    desk().silence();
}

// A block in which 128 notes are bent, by so many messages; the window's slider is the baseline.
void bend128(benchmark::State& state)
{
    const auto messages = static_cast<int>(state.range(0));
    desk().silence();
    desk().begin(true);
    desk().block();
    desk().rig.queue(OrloEvent(OrloEvent::NodesSelectAllSounding, 0.0F));
    desk().block();
    float slider = 0.5F;
    int bend = 0;
    const auto prepare = [&](bool byKeys) {
        slider = slider == 0.5F ? 0.6F : 0.5F;
        if (!byKeys)
            desk().rig.queue(OrloEvent(OrloEvent::GlissOneSet, slider));
        for (int i = 0; byKeys && i < messages; ++i)
            desk().write(0xE0, 0, ++bend % 128);
    };
    const auto block = [] { desk().block(); };
    Pair pair;
    for ([[maybe_unused]] auto _ : state) {
        pair.measure(prepare, block, block);
        state.SetIterationTime(pair.lastOfOurs() * 1e-9);
        desk().rig.player.relay().drain();
    }
    pair.report(state);
    desk().rig.send(OrloEvent(OrloEvent::NodesResetAllAndControlsDeselect, 0.0F));
    desk().silence();
}

BENCHMARK(keyToRing)->Iterations(500)->UseManualTime();
BENCHMARK(notes128)->ArgName("on")->Arg(1)->Arg(0)->Iterations(500)->UseManualTime();
BENCHMARK(bend128)->ArgName("messages")->Arg(1)->Arg(300)->Iterations(500)->UseManualTime();

} // namespace

int main(int argc, char** argv)
{
    installQuietLog();
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Brevick Tuning Orlo"));
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
