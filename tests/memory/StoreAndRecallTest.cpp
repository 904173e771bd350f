#include "memory/StoreAndRecall.h"

#include "sound/OrloNoteEvent.h"
#include "support/LogCatcher.h"
#include "support/SoundRig.h"

#include <gtest/gtest.h>

#include <QSet>

#include <atomic>
#include <thread>

namespace {

const OrloRatio A(1, 1);
const OrloRatio B(3, 2);
const OrloRatio C(5, 4);
const OrloRatio D(7, 4);

using Chord = QSet<OrloRatio>;

Chord chordOf(const QList<OrloRatio>& ratios)
{
    return Chord(ratios.begin(), ratios.end());
}

} // namespace

class Memory : public ::testing::Test
{
protected:
    Memory()
        : memory(&rig.player)
    {
        EXPECT_TRUE(rig.loadMainText("#N canvas 0 0 200 200 12;\n"));
        QObject::connect(
            &rig.player, &PdPlayer::noteToggled, &rig.player, [this] { ++toggles; }, Qt::DirectConnection);
    }

    /// What sounds from now on, and no more.
    void play(const Chord& ratios)
    {
        rig.send(OrloEvent(OrloEvent::AllNotesOffForced, 1.0F));
        for (const OrloRatio& ratio : ratios)
            rig.queue(OrloNoteEvent(ratio));
        rig.render();
        toggles = 0;
    }
    void store(int slot, const Chord& ratios)
    {
        play(ratios);
        EXPECT_TRUE(memory.storeRatios(slot));
    }
    Chord recall(int slot, int mode)
    {
        EXPECT_TRUE(memory.recallRatios(slot, mode));
        rig.render();
        return chordOf(rig.player.getAllSoundingRatios());
    }

    const LogCatcher quiet;
    int toggles = 0; // before the player, whose end is heard too
    SoundRig rig;
    StoreAndRecall memory;
};

TEST_F(Memory, StoresWhatSoundsAndNothingElse)
{
    EXPECT_FALSE(memory.storeRatios(1));
    EXPECT_FALSE(memory.isAnythingPlaying());
    EXPECT_TRUE(memory.isStorageEmpty());
    store(1, {A, B, C});
    rig.send(OrloNoteEvent(B)); // in its release now
    EXPECT_TRUE(memory.storeRatios(20));
    EXPECT_EQ(chordOf(memory.storedChords()->value(20)), Chord({A, C}));
    EXPECT_TRUE(memory.isChordEmpty(2));
    EXPECT_FALSE(memory.storeRatios(21));

    play({});
    EXPECT_FALSE(memory.storeRatios(1)); // the old chord stays
    EXPECT_EQ(memory.getNumberOfRatios(1), 3);
    memory.clearRatios(1);
    EXPECT_TRUE(memory.isChordEmpty(1));
    EXPECT_FALSE(memory.isStorageEmpty());
    EXPECT_TRUE(memory.clearAll());
    EXPECT_TRUE(memory.isStorageEmpty());
}

TEST_F(Memory, RecallsInThreeModes)
{
    store(1, {A, B, C});
    const std::tuple<Chord, int, Chord> rows[] = {
        // what sounds, mode, and what sounds then
        {{}, 0, {A, B, C}},     {{A, B, C}, 0, {A, B, C}}, {{B, D}, 0, {A, B, C}}, {{}, 1, {A, B, C}},
        {{D}, 1, {A, B, C, D}}, {{A, D}, 1, {D}},          {{A, B, C}, 1, {}},     {{}, 2, {A, B, C}},
        {{A, D}, 2, {B, C, D}}, {{A, B, C}, 2, {}},        {{A, D}, 3, {A, D}}, // no such mode
    };
    for (const auto& [before, mode, after] : rows) {
        SCOPED_TRACE(mode);
        play(before);
        EXPECT_EQ(recall(1, mode), after);
        // Only what differs is touched: what stays has no new attack.
        EXPECT_EQ(toggles, ((before | after) - (before & after)).size());
    }
}

TEST_F(Memory, AHeldNoteStaysAndAnEmptySlotRecallsNothing)
{
    store(1, {B});
    play({A});
    rig.send(OrloEvent(OrloEvent::NodesHold, 1.0F));
    EXPECT_EQ(recall(1, 0), Chord({A, B}));

    memory.storedChords()->insert(3, {}); // as from a file's line without a ratio
    EXPECT_FALSE(memory.isChordEmpty(3));
    for (const int nothing : {2, 3, 21})
        EXPECT_FALSE(memory.recallRatios(nothing, 0));
}

TEST_F(Memory, AChangeOfTwoFullChordsLosesNoNote)
{
    // 256 toggles, more than the command buffer holds at once.
    Chord high;
    Chord low;
    for (unsigned i = 0; i < 128; ++i) {
        high.insert(OrloRatio(129 + i, 128));
        low.insert(OrloRatio(128, 129 + i));
    }
    store(1, high);
    int recalled = 0;
    QObject::connect(
        &rig.player, &PdPlayer::nodesRecalled, &rig.player, [&] { ++recalled; }, Qt::DirectConnection);
    for (const int blockMs : {1, 186, 0}) { // 186: 8192 frames; 0: no stream
        SCOPED_TRACE(blockMs);
        play(low);
        std::atomic<bool> running{blockMs > 0};
        std::thread clock([&] {
            for (; running; std::this_thread::sleep_for(std::chrono::milliseconds(blockMs)))
                rig.render();
        });
        EXPECT_TRUE(memory.recallRatios(1, 0));
        rig.queue(OrloEvent(OrloEvent::NodesRecalled, 1.0F)); // as the window does
        running = false;
        clock.join();
        rig.render();
        EXPECT_EQ(chordOf(rig.player.getAllSoundingRatios()), high);
        EXPECT_EQ(std::exchange(recalled, 0), 1);
    }
}
