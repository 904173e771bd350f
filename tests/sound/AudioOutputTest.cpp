#include "support/EngineLog.h"
#include "support/LogCatcher.h"
#include "support/SoundRig.h"

#include "sound/OrloNoteEvent.h"
#include "sound/StreamContext.h"

#include <gtest/gtest.h>

#include <algorithm>

TEST(AudioOutput, CorrectsFramesThatLibpdCannotRender)
{
    /// Opens the way to what init() does first.
    struct FramesProbe : PaAudioOutput
    {
        using AudioOutput::setFramesPerBuffer;
    };
    const std::pair<int, int> rows[] = {
        // given and used
        {64, 64},  {256, 256}, {8192, 8192}, {0, 256},     {-64, 256},         {-1, 256},          {1, 64},
        {65, 128}, {100, 128}, {8191, 8192}, {8193, 8192}, {1000000000, 8192}, {2147483647, 8192},
    };
    for (const auto& [given, used] : rows) {
        LogCatcher log;
        FramesProbe probe;
        probe.setFramesPerBuffer(given);
        EXPECT_EQ(probe.framesPerBuffer(), used) << given;
        EXPECT_EQ(log.has(QtWarningMsg, QString::number(given)), given != used) << given;
    }
}

TEST(AudioOutput, WithoutAPatchABlockDrainsTheCommandsAndIsExactlySilent)
{
    SoundRig rig;
    EngineLog log(rig.player);
    // 100 frames are no multiple of 64: all of them must be written all the same.
    for (const unsigned long frames : {256UL, 64UL, 100UL, 8192UL}) {
        std::vector<float> block(2 * frames + 2, 1.0F);
        rig.queue(OrloEvent(OrloEvent::BaseFrequencySet, 441.0F));
        rig.output.renderBlock(block.data(), frames);
        EXPECT_EQ(log.said(), "baseFrequencyChanged 441");
        EXPECT_EQ(std::count(block.begin(), block.end() - 2, 0.0F), static_cast<long>(2 * frames));
        EXPECT_EQ(block[2 * frames], 1.0F) << "wrote behind the block";
    }
}

TEST(AudioOutput, MutedIsSilentWhileVoicesStillEnd)
{
    SoundRig rig(4);
    ASSERT_TRUE(rig.loadVoice(QStringLiteral("Sine.pd")));
    rig.output.muteOutput();
    rig.queue(OrloNoteEvent(OrloRatio(1, 1)));
    EXPECT_EQ(peak(rig.render()), 0.0F) << "the block that fades takes its commands at its end";
    rig.output.unmuteOutput();
    ASSERT_GT(peak(rig.render(40)), 0.01F);
    std::vector<float> odd(2 * 100, 1.0F);
    rig.output.renderBlock(odd.data(), 100);
    EXPECT_GT(peak({odd.begin(), odd.begin() + 128}), 0.01F);
    EXPECT_EQ(peak({odd.begin() + 128, odd.end()}), 0.0F) << "frames beyond a multiple of 64";

    rig.output.muteOutput();
    const std::vector<float> fade = rig.render(1);
    EXPECT_NE(peak(fade), 0.0F);
    EXPECT_EQ(fade.back(), 0.0F);
    EXPECT_EQ(peak(rig.render(10)), 0.0F);
    rig.output.muteOutput();                  // again: still silent
    rig.send(OrloNoteEvent(OrloRatio(1, 1))); // off
    EXPECT_EQ(peak(rig.render(300)), 0.0F);

    EngineLog log(rig.player);
    rig.send(OrloNoteEvent(OrloRatio(3, 2)));
    EXPECT_TRUE(log.take().contains(QStringLiteral("orlo-in 1 1 1"))) << "voice 1 was not freed";
    rig.output.unmuteOutput();
    EXPECT_GT(peak(rig.render(40)), 0.01F);
}

TEST(AudioOutput, TheCallbackOfAStreamThatWasGivenUpIsSilentAndTouchesNothing)
{
    SoundRig rig(4);
    EngineLog log(rig.player);
    StreamContext context{&rig.output};
    for (const bool retired : {false, true}) {
        context.retired = retired;
        std::vector<float> block(2 * SoundRig::FRAMES, 1.0F);
        rig.queue(OrloEvent(OrloEvent::BaseFrequencySet, 441.0F));
        PaAudioOutput::portAudioCallback(nullptr, block.data(), SoundRig::FRAMES, nullptr, 0, &context);
        EXPECT_EQ(log.said(), retired ? "" : "baseFrequencyChanged 441");
        EXPECT_EQ(peak(block), 0.0F);
    }
    EXPECT_EQ(context.calls, 2U); // a JACK server that thaws is noticed by them
    EXPECT_FALSE(context.inBlock);
}
