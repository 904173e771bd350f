#include "memory/StoreAndRecall.h"

#include "sound/OrloNoteEvent.h"
#include "support/LogCatcher.h"
#include "support/SoundRig.h"

#include <gtest/gtest.h>

#include <set>

namespace {

const QByteArray SILENT_PATCH = "#N canvas 0 0 200 200 12;\n";
const OrloRatio A(1, 1);
const OrloRatio B(3, 2);
const OrloRatio C(5, 4);
const OrloRatio D(7, 4);

using Chord = std::set<std::pair<quint64, quint64>>;

Chord chordOf(const QList<OrloRatio>& ratios)
{
    Chord chord;
    for (const OrloRatio& ratio : ratios)
        chord.insert({ratio.numerator(), ratio.denominator()});
    return chord;
}

} // namespace

class Memory : public ::testing::Test
{
protected:
    Memory()
        : memory(&rig.player)
    {
        EXPECT_TRUE(rig.loadMainText(SILENT_PATCH));
        QObject::connect(&rig.player, &PdPlayer::noteToggled, &rig.player, [this](const OrloRatio& ratio, bool on) {
            toggled.append(QStringLiteral("%1%2").arg(on ? u'+' : u'-').arg(ratio.toString()));
        }, Qt::DirectConnection);
    }

    /// What sounds from now on, and no more.
    void play(const QList<OrloRatio>& ratios)
    {
        rig.queue(OrloEvent(OrloEvent::AllNotesOffForced, 1.0F));
        rig.render();
        for (const OrloRatio& ratio : ratios)
            rig.queue(OrloNoteEvent(ratio));
        rig.render();
        toggled.clear();
    }
    void store(int slot, const QList<OrloRatio>& ratios)
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
    QStringList toggled; // before the player, whose end is heard too
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
    EXPECT_EQ(chordOf(memory.storedChords()->value(20)), chordOf({A, C}));
    EXPECT_EQ(memory.getNumberOfRatios(1), 3);
    EXPECT_EQ(memory.getNumberOfRatios(2), 0);
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
    const struct
    {
        QList<OrloRatio> sounding;
        int mode;
        QList<OrloRatio> after;
    } cases[] = {
        {{}, 0, {A, B, C}},     {{A, B, C}, 0, {A, B, C}}, {{B, D}, 0, {A, B, C}},
        {{}, 1, {A, B, C}},     {{D}, 1, {A, B, C, D}},    {{A, D}, 1, {D}},         {{A, B, C}, 1, {}},
        {{}, 2, {A, B, C}},     {{A, D}, 2, {B, C, D}},    {{A, B, C}, 2, {}},
        {{A, D}, 3, {A, D}}, // no such mode
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.mode);
        play(c.sounding);
        EXPECT_EQ(recall(1, c.mode), chordOf(c.after));
        // Only what differs is touched: what stays has no new attack.
        const Chord before = chordOf(c.sounding);
        const Chord after = chordOf(c.after);
        Chord different;
        std::set_symmetric_difference(before.begin(), before.end(), after.begin(), after.end(),
                                      std::inserter(different, different.end()));
        EXPECT_EQ(static_cast<size_t>(toggled.size()), different.size()) << toggled.join(u' ').toStdString();
    }
    play({A, D});
    recall(1, 2);
    EXPECT_EQ(recall(1, 2), chordOf({A, D})); // twice: back again
}

TEST_F(Memory, AHeldNoteStaysAndAnEmptySlotRecallsNothing)
{
    store(1, {B});
    play({A});
    rig.send(OrloEvent(OrloEvent::NodesHold, 1.0F));
    EXPECT_EQ(recall(1, 0), chordOf({A, B}));

    EXPECT_FALSE(memory.recallRatios(2, 0));
    EXPECT_FALSE(memory.recallRatios(21, 0));
    memory.storedChords()->insert(3, {}); // as from a file's line without a ratio
    EXPECT_FALSE(memory.isChordEmpty(3));
    EXPECT_FALSE(memory.recallRatios(3, 0));
}

TEST_F(Memory, AChangeOfTwoFullChordsLosesNoNote)
{
    // 256 toggles, more than the command buffer holds at once.
    QList<OrloRatio> high;
    QList<OrloRatio> low;
    for (unsigned i = 0; i < 128; ++i) {
        high.append(OrloRatio(129 + i, 128));
        low.append(OrloRatio(128, 129 + i));
    }
    store(1, high);
    play(low);
    rig.underClock([this] { EXPECT_TRUE(memory.recallRatios(1, 0)); });
    rig.render();
    EXPECT_EQ(chordOf(rig.player.getAllSoundingRatios()), chordOf(high));
}
