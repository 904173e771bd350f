// What is heard, rendered into memory with the program's own voice.

#include "support/BlockCost.h"
#include "support/SoundRig.h"
#include "support/Tone.h"

#include "sound/OrloNoteEvent.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace {

constexpr int SECOND = 172; // blocks

class Render : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(rig.loadVoice(QStringLiteral("Sine.pd"))); }

    SoundRig rig;
};

} // namespace

TEST_F(Render, APathSoundsAtItsExactPitch)
{
    // A step along a prime is the prime brought into one octave, and the octave itself for 2.
    const std::pair<const char*, double> rows[] = {
        {"/-2/-2", 1.0 / 4}, {"/-13", 8.0 / 13}, {"/3/3/3/3", 81.0 / 16}, {"/2/2/2/31", 31.0 / 2}};
    for (const auto& [path, ratio] : rows) {
        const OrloNoteEvent press{QString::fromLatin1(path)};
        rig.queue(press);
        EXPECT_GT(peak(rig.render(1)), 0.0F) << path << " is late";
        rig.render(SECOND / 4);
        const auto pitch = tone::pitchOfSine(rig.render(SECOND / 2), 440.0 * ratio, SoundRig::RATE);
        ASSERT_TRUE(pitch) << path;
        EXPECT_NEAR(tone::centsBetween(*pitch, 440.0 * ratio), 0.0, 0.1) << path;
        rig.send(press);
        ASSERT_TRUE(rig.renderUntilSilent()) << path;
    }
}

TEST_F(Render, NotesThatBeginHoldAndEndAllocateNothing)
{
    if (!BlockCost::works())
        GTEST_SKIP() << "Allocations cannot be counted in this build.";
    std::vector<OrloNoteEvent> notes;
    for (unsigned n = 23; n < 23 + 128; ++n)
        notes.emplace_back(OrloRatio(n, 92));
    std::array<float, 2 * SoundRig::FRAMES> block;
    const auto play = [&] {
        for (int i = 0; i < 3 * SECOND; ++i) {
            if (i == 0)
                std::ranges::for_each(notes, [this](const OrloNoteEvent& note) { rig.queue(note); });
            else if (i == SECOND)
                rig.queue(OrloEvent(OrloEvent::AllNotesOffForced, 0.0F));
            rig.output.renderBlock(block.data(), SoundRig::FRAMES);
        }
    };
    // The first time libpd makes its symbols.
    EXPECT_EQ(BlockCost::of(play, play).allocations, 0);
}
