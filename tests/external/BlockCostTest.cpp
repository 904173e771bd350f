// What one block of the audio thread costs beyond computing, with all connected that the program
// connects: the lattice, a window's slots, the router with its MIDI output, a message handler.

#include "support/BlockCost.h"
#include "external/Interface.h"
#include "external/MidiDouble.h"
#include "sound/EngineRelay.h"
#include "sound/OrloNodeRemoveEvent.h"
#include "sound/OrloNodeResetEvent.h"
#include "sound/OrloNodeSelectToggleEvent.h"
#include "sound/OrloNoteEvent.h"
#include "sound/OrloTransposeEvent.h"
#include "support/LogCatcher.h"
#include "support/SoundRig.h"

#include <gtest/gtest.h>

#include <sys/syscall.h>
#include <z_libpd.h>

#include <cmath>

namespace {

using Events = std::vector<std::shared_ptr<const OrloEvent>>;

constexpr int CHORD = 127;

template <class Event, class... Values>
Events one(const Values&... values)
{
    return {std::make_shared<Event>(values...)};
}

Events plain(int type, float value = 1.0F)
{
    return one<OrloEvent>(static_cast<OrloEvent::Type>(type), value);
}

/// Most of them have no ball.
OrloRatio pitch(int number)
{
    return OrloRatio(static_cast<unsigned long long>(100 + number), 128);
}

template <class Event>
Events chordOf(int notes)
{
    Events events;
    for (int i = 0; i < notes; ++i)
        events.push_back(std::make_shared<Event>(pitch(i)));
    return events;
}

constexpr int ONE_OR_NONE = -1;

struct Row
{
    std::string name;
    std::vector<Events> before; // a block for each
    Events block;
    bool soft = false;
    int wakes = 1;
    int channel = 0;
    bool retunes = false;
};

std::vector<Row> rows()
{
    const Events chord = chordOf<OrloNoteEvent>(128);
    const Events selectAll = plain(OrloEvent::NodesSelectAllSounding);
    const std::vector<Events> sounding{chord};
    const std::vector<Events> selected{chord, selectAll};
    Events recall = chordOf<OrloNoteEvent>(CHORD);
    recall.push_back(plain(OrloEvent::NodesRecalled).front());

    std::vector<Row> rows{
        {"nothing", {}, {}, false, 0},
        {"nothing while it sounds", selected, {}, false, 0},
        {"recall of 127", {}, recall},
        {"recall of 127 over 128", {chord}, recall},
        {"recall of 127 in MPE", {}, recall, false, 1, MidiOutput::MPE},
        {"bends in MPE", selected, plain(OrloEvent::GlissOneSet, 0.7F), false, 0, MidiOutput::MPE},
        {"a note steals a voice", sounding, one<OrloNoteEvent>(pitch(200))},
        {"a ball's note", {}, one<OrloNoteEvent>(QStringLiteral("/3/5"))},
        {"a note of its ratio", {}, one<OrloNoteEvent>(OrloRatio(3, 2))},
        {"a note ends", sounding, one<OrloNoteEvent>(pitch(1))},
        {"a node goes", selected, one<OrloNodeRemoveEvent>(pitch(1))},
        {"transposition", selected, one<OrloTransposeEvent>(OrloRatio(3, 2))},
        {"selection", sounding, one<OrloNodeSelectToggleEvent>(pitch(1))},
        {"deselection", selected, one<OrloNodeSelectToggleEvent>(pitch(1))},
        {"reset of a node", selected, one<OrloNodeResetEvent>(pitch(1), 0.0F)},
        {"soft reset of a node", selected, one<OrloNodeResetEvent>(pitch(1), 1.0F), true},
        {"hold of 128 ends", {chord, plain(OrloEvent::NodesHold)}, plain(OrloEvent::NodesHold, 0.0F)},
        {"notes toggled in the block after",
         {chord, selectAll, plain(OrloEvent::NodesToggleAllSelected)},
         {}},
        {"1/1 changes in MPE", selected, plain(OrloEvent::BaseFrequencySet, 99.0F), false, 1, -1, true},
        {"a value that is no number", {}, plain(OrloEvent::GlissOneSet, NAN)},
        {"a pitch that does not fit",
         {one<OrloTransposeEvent>(OrloRatio(1ULL << 63, 1))},
         one<OrloNoteEvent>(QStringLiteral("/2"))},
    };
    // Every command of every type, over 128 notes that are selected or not, and over silence. A patch is
    // opened and closed at its change only, which allocates.
    for (int type = 0; type < OrloEvent::PatchOpen; ++type) {
        const std::string name = "type " + std::to_string(type);
        rows.push_back({name, selected, plain(type), false, ONE_OR_NONE});
        rows.push_back({name + " soft", selected, plain(type), true, ONE_OR_NONE});
        rows.push_back({name + " over sounding notes", sounding, plain(type), false, ONE_OR_NONE});
        rows.push_back({name + " over silence", {}, plain(type), false, ONE_OR_NONE});
    }
    return rows;
}

} // namespace

TEST(BlockCost, IsNoAllocationNoLockAndOneWake)
{
    if (!BlockCost::works())
        GTEST_SKIP() << "The costs cannot be counted in this build.";
    const LogCatcher handler;
    MidiOutOverDouble out;
    Interface router;
    SoundRig rig;
    PdPlayer& player = rig.player;
    rig.orlo.initWithDefaults();
    PdPlayer::connectLattice(&player, &rig.orlo);
    int shown = 0; // stands for the window
    const EngineRelay& relay = player.relay();
    const auto show = [&](auto signal) { QObject::connect(&relay, signal, &relay, [&] { ++shown; }); };
    show(&EngineRelay::volumeChanged);
    show(&EngineRelay::monophonicChanged);
    show(&EngineRelay::macroValueChanged);
    show(&EngineRelay::resetGlissSliders);
    router.midiOutput = &out;
    player.setPortOpenFlag(&out.portOpen);
    QObject::connect(&player, &PdPlayer::instructionsToInterface, &router, &Interface::receiveInstructions,
                     Qt::DirectConnection);
    QObject::connect(&player, &PdPlayer::notesRetuned, &router, &Interface::receiveRetuning,
                     Qt::DirectConnection);
    ASSERT_TRUE(rig.loadVoice(QStringLiteral("Sine.pd")));
    ASSERT_TRUE(out.selectPort(0));

    std::array<float, 2 * SoundRig::FRAMES> sound{};
    const auto render = [&] { rig.output.renderBlock(sound.data(), SoundRig::FRAMES); };
    const auto queue = [&](const Events& events) {
        for (const auto& event : events)
            rig.queue(*event);
    };
    const auto runs = [&](const Row& row) {
        rig.settings.softNodeReset = row.soft;
        out.setChannel(row.channel);
        for (const Events& events : row.before) {
            queue(events);
            render();
            player.relay().drain();
        }
        queue(row.block);
        if (row.retunes)
            player.retuneNotes();
    };
    // libpd makes a symbol or a list the first time that it needs one, and keeps it.
    for (const float gate : {1.0F, 0.0F}) {
        for (int voice = 0; voice < VoiceTable::SLOTS; ++voice) {
            for (int type = voiceMacro1 + 7; type >= voiceGate; --type)
                player.sendPdVoiceMessage(static_cast<PdVoiceMessageType>(type), gate,
                                          static_cast<float>(voice));
        }
        render();
    }
    ASSERT_TRUE(rig.renderUntilSilent());
    player.relay().drain();

    // libpd locks each call; the holder of the engine alone calls it, so that lock is always free.
    const auto libpdLock = BlockCost::of([] {}, [] { libpd_float("nobody", 0.0F); }).locks;
    ASSERT_LE(libpdLock.size(), 1U);
    for (const Row& row : rows()) {
        SCOPED_TRACE(row.name);
        const BlockCost cost = BlockCost::of([&] { runs(row); }, render);
        EXPECT_EQ(cost.allocations, 0);
        if (!cost.locks.empty()) {
            EXPECT_EQ(cost.locks, libpdLock);
        }
        const size_t wakes = row.wakes == ONE_OR_NONE ? std::min<size_t>(1, cost.systemCalls.size())
                                                      : static_cast<size_t>(row.wakes);
        EXPECT_EQ(cost.systemCalls, std::vector<long>(wakes, SYS_write));
    }
    player.setPortOpenFlag(nullptr);
}
