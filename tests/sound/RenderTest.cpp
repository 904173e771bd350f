// What is heard, rendered into memory with the program's own voice.

#include "support/AllocationCounter.h"
#include "support/SoundRig.h"
#include "support/Tone.h"

#include "sound/OrloNoteEvent.h"

#include <gtest/gtest.h>

namespace {

constexpr int SECOND = 172; // blocks

class Render : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(rig.loadVoice(QStringLiteral("Sine.pd"))); }

    void queue(OrloEvent::Type type, float value = 0.0F) { rig.queue(OrloEvent(type, value)); }
    /// 128 pitches from 110 to 717 Hz.
    void toggleAll()
    {
        for (unsigned i = 23; i < 23 + 128; ++i)
            rig.queue(OrloNoteEvent(OrloRatio(i, 92)));
    }

    SoundRig rig;
};

} // namespace

TEST_F(Render, EveryPrimeSoundsAtItsExactPitch)
{
    // A step along a prime is the prime brought into one octave, and the octave itself for 2.
    const std::pair<const char*, double> rows[] = {
        {"/", 1},
        {"/2", 2},
        {"/-2/-2", 1.0 / 4},
        {"/3", 3.0 / 2},
        {"/-3", 2.0 / 3},
        {"/5", 5.0 / 4},
        {"/-5/3", 6.0 / 5},
        {"/7", 7.0 / 4},
        {"/-7", 4.0 / 7},
        {"/11", 11.0 / 8},
        {"/13", 13.0 / 8},
        {"/-13", 8.0 / 13},
        {"/17", 17.0 / 16},
        {"/19", 19.0 / 16},
        {"/23", 23.0 / 16},
        {"/-29", 16.0 / 29},
        {"/29/2", 29.0 / 8},
        {"/31", 31.0 / 16},
        {"/3/3/3/3", 81.0 / 16},
        {"/2/2/2/31", 31.0 / 2},
        {"/-3/-5/7", 14.0 / 15},
    };
    for (const auto& [path, ratio] : rows) {
        const OrloNoteEvent press{QString::fromLatin1(path)};
        rig.queue(press);
        EXPECT_GT(peak(rig.render(1)), 0.0F) << path << " is late";
        rig.render(SECOND / 4);
        const auto pitch = tone::pitch(rig.render(SECOND / 2), SoundRig::RATE);
        ASSERT_TRUE(pitch) << path;
        EXPECT_NEAR(tone::centsBetween(*pitch, 440.0 * ratio), 0.0, 0.1) << path;
        rig.send(press);
        ASSERT_TRUE(rig.renderUntilSilent()) << path;
    }
}

TEST_F(Render, AllVoicesAtOnceStayWithinFullScale)
{
    queue(OrloEvent::MasterVolumeSet, 1.0F);
    queue(OrloEvent::Macro1Set, 1.0F); // Level
    rig.render(20);
    toggleAll();
    EXPECT_LE(peak(rig.render(2 * SECOND)), 1.0F);
    EXPECT_EQ(rig.player.getAllSoundingRatios().size(), 128);
    queue(OrloEvent::AllNotesOffForced);
    EXPECT_LE(peak(rig.render(SECOND)), 1.0F);
    EXPECT_TRUE(rig.renderUntilSilent());
}

TEST_F(Render, IdleAndSteadyBlocksAllocateNothing)
{
    if (!AllocationCounter::WORKS)
        GTEST_SKIP() << "Allocations cannot be counted in this build.";
    {
        const AllocationCounter self;
        ::operator delete(::operator new(100));
        ASSERT_EQ(self.count(), 1) << "the counter does not count";
    }
    std::vector<float> block(2 * SoundRig::FRAMES);
    const auto allocationsOf = [&](int blocks) {
        const AllocationCounter counter;
        for (int i = 0; i < blocks; ++i)
            rig.output.renderBlock(block.data(), SoundRig::FRAMES);
        return counter.count();
    };
    EXPECT_EQ(allocationsOf(200), 0) << "idle";
    toggleAll();
    rig.render(SECOND);
    EXPECT_EQ(allocationsOf(200), 0) << "sounding";
    // A slider moves: the command itself costs no allocation on the audio thread.
    queue(OrloEvent::MasterVolumeSet, 0.5F);
    EXPECT_EQ(allocationsOf(1), 0) << "command";
    queue(OrloEvent::AllNotesOffForced);
    rig.render(1);
    EXPECT_EQ(allocationsOf(2 * SECOND), 0) << "voices that end";
}
