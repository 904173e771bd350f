#include "app/RationedLog.h"
#include "sound/AudioLog.h"
#include "support/EngineLog.h"
#include "support/LogCatcher.h"
#include "support/SoundRig.h"

#include "sound/MacroList.h"
#include "sound/PdMessageBuffer.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

OrloEvent event(int type, float value)
{
    return OrloEvent(static_cast<OrloEvent::Type>(type), value);
}

} // namespace

TEST(CommandBuffer, Holds255ChunksInOrderAndDropsTheNext)
{
    PdMessageBuffer buffer;
    ASSERT_TRUE(buffer.init());
    PdMessageBuffer::ChunkList chunks;
    // Three rounds, so that the ring also wraps in the middle of its memory.
    for (int round = 0; round < 3; ++round) {
        LogCatcher log;
        for (int i = 0; i < 256; ++i) {
            EXPECT_TRUE(log.lines().isEmpty());
            const OrloEvent queued = event(19, static_cast<float>(i));
            buffer.queueEvent(&queued);
        }
        EXPECT_EQ(log.count(QtWarningMsg, QStringLiteral("Command buffer full")), 1);
        chunks.setSize(0);
        buffer.processEvents(chunks);
        ASSERT_EQ(chunks.size(), 255);
        for (int i = 0; i < 255; ++i)
            ASSERT_EQ(chunks[i]->value, static_cast<float>(i));
    }
    chunks.setSize(0);
    buffer.processEvents(chunks);
    EXPECT_EQ(chunks.size(), 0);

    const LogCatcher log; // of an engine that is stuck
    const OrloEvent queued = event(19, 0.5F);
    for (int i = 0; i < 20000; ++i)
        buffer.queueEvent(&queued);
    EXPECT_GT(log.lines().size(), RationedLog::AT_ONCE / 2);
    EXPECT_LT(log.lines().size(), RationedLog::AT_ONCE * 2);
}

// Each row runs after those above it, on one engine.
TEST(Commands, DoWhatTheirNumberSays)
{
    const std::tuple<int, float, const char*> rows[] = {
        {-1, 1.0F, ""}, // no such type
        {43, 1.0F, ""},
        {2147483647, 1.0F, ""},
        {15, -2.5F, "transposed 2/3 -3"}, // a half rounds away from zero
        {15, 2.4F, "transposed 4/3 2"},
        {15, 258.6F, "transposed 2/1 3"}, // 3 as a signed byte
        {15, 0.49F, "transposed 1/1 0"},  // 0 resets
        {16, 0.25F, "voiceVolumeChanged 1.25"},
        {17, 0.5F, "voiceVolumeChanged 0.5"},
        {16, -0.25F, "voiceVolumeChanged 0.25"},
        {18, -0.3F, "master-vol 0.5; volumeChanged 0.5"}, // from 0.8
        {19, 0.75F, "master-vol 0.75; volumeChanged 0.75"},
        {22, 432.5F, "baseFrequencyChanged 432.5"},
        {20, 0.5F, "monophonicChanged off"},
        {20, 0.6F, "monophonicChanged on"},
        {21, 0.1F, "patchIncRequested"},
        {21, 0.0F, "patchDecRequested"},
        {23, 5.0F, "primeEnabledToggled 5 off"},
        {23, 5.9F, "primeEnabledToggled 5 on"},
        {23, 31.0F, "primeEnabledToggled 31 off"},
        {23, 32.0F, ""}, // beyond the primes
        {23, -7.0F, ""},
        {24, 0.25F, "macroValueChanged 1 0.25"},
        {31, 1.0F, "macroValueChanged 8 1"},
        {3, 1.0F, "removeNodeInStack 0/1"}, // no ratio was given
        {8, 1.0F, "resetGlissSliders 0"},   // and no patch whose macros have defaults
        {10, 1.0F, "resetGlissSliders 1"},
        {11, 1.0F, "resetGlissSliders 2"},
        {12, 1.0F, "resetGlissSliders 0"},
        {35, 1.0F, "removeNodeInStack 0/1"}, // deselecting runs on into removing
        {36, 1.0F, ""},                      // no transposition by 0/1
        {39, 1.0F, "nodesRecalled"},
        {40, 0.999F, ""}, // hold is on at exactly 1
        {41, 0.0F, ""},   // no patch was named
        {42, 0.0F, ""},
        {19, NAN, ""}, // no numbers
        {22, INFINITY, ""},
    };
    SoundRig rig;
    EngineLog log(rig.player);
    for (const auto& [type, value, lines] : rows) {
        rig.send(event(type, value));
        EXPECT_EQ(log.said(), lines) << "type " << type << " value " << value;
    }
}

TEST(Commands, AFloodOfWildOnesLeavesRoomInTheLog)
{
    SoundRig rig;
    AudioLog::drain();
    const LogCatcher log;
    for (int i = 0; i < 500; ++i)
        rig.send(event(i < 499 ? 19 : 36, i < 499 ? NAN : 1.0F));
    AudioLog::drain();
    EXPECT_EQ(log.count(QtWarningMsg, QStringLiteral("refused")), 1);
    EXPECT_LT(log.lines().size(), RationedLog::AT_ONCE * 2);
}

TEST(MacroList, ReadsNamesAndDefaults)
{
    const std::tuple<const char*, const char*, QList<float>> rows[] = {
        {"A(0.25):B::C(x)", "A|B||C", {0.25F, -1.0F, -1.0F, 0.0F}},
        {"A)0.5(", "A)0.5(", {-1.0F}},
        {")(0.5)", ")(0.5)", {-1.0F}}, // the first ")" counts
        {"A(0.5", "A(0.5", {-1.0F}},
        {"A(0.5)tail", "A", {0.5F}},
        {"A(1)(0):(0.5)", "A|", {1.0F, 0.5F}},
        {"A()", "A", {0.0F}},
        {"A(0,5)", "A", {0.0F}},
        {"A(nan):B(inf)", "A|B", {0.0F, 0.0F}},
        {"", "", {-1.0F}},
        {"1:2:3:4:5:6:7:8:9(1)", "1|2|3|4|5|6|7|8|9", {-1, -1, -1, -1, -1, -1, -1, -1, 1}},
    };
    for (const auto& [text, names, defaults] : rows) {
        const MacroList list = MacroList::parse(QString::fromLatin1(text));
        EXPECT_EQ(list.names.join(u'|').toStdString(), names) << text;
        EXPECT_EQ(list.defaults, defaults) << text;
    }
}
