#include "support/EngineLog.h"
#include "support/LogCatcher.h"
#include "support/SoundRig.h"

#include "sound/OrloNodeRemoveEvent.h"
#include "sound/OrloNodeResetEvent.h"
#include "sound/OrloNodeSelectToggleEvent.h"
#include "sound/OrloNoteEvent.h"
#include "sound/OrloTransposeEvent.h"
#include "sound/PdMessageBuffer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

using Chunk = PdMessageBuffer::Chunk;

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
        for (int i = 0; i < 255; ++i) {
            const OrloEvent queued = event(19, static_cast<float>(i));
            buffer.queueEvent(&queued);
        }
        EXPECT_TRUE(log.lines().isEmpty());
        const OrloEvent tooMuch = event(19, 1000.0F);
        buffer.queueEvent(&tooMuch);
        ASSERT_EQ(log.lines().size(), 1);
        EXPECT_TRUE(log.has(QtWarningMsg, QStringLiteral("Command buffer full")));

        chunks.setSize(0);
        buffer.processEvents(chunks);
        ASSERT_EQ(chunks.size(), 255);
        for (int i = 0; i < 255; ++i)
            ASSERT_EQ(chunks[i]->value, static_cast<float>(i));
    }
    chunks.setSize(0);
    buffer.processEvents(chunks);
    EXPECT_EQ(chunks.size(), 0);
}

TEST(CommandBuffer, CarriesWhatEachKindOfEventHolds)
{
    const OrloRatio fifth(3, 2);
    const OrloRatio nothing;
    const OrloPath path(QStringLiteral("/3/-5"));
    struct Row
    {
        std::shared_ptr<OrloEvent> event;
        int type;
        float value;
        OrloPath path;
        OrloRatio ratio;
    };
    const Row rows[] = {
        {std::make_shared<OrloEvent>(), -1, 0.0F, {}, nothing},
        {std::make_shared<OrloNoteEvent>(), 0, 1.0F, {}, nothing},
        {std::make_shared<OrloNoteEvent>(QStringLiteral("/3/-5")), 0, 1.0F, path, nothing},
        {std::make_shared<OrloNoteEvent>(path), 0, 1.0F, path, nothing},
        {std::make_shared<OrloNoteEvent>(fifth), 34, 1.0F, {}, fifth},
        {std::make_shared<OrloNoteEvent>(fifth, 2.0F), 34, 2.0F, {}, fifth},
        {std::make_shared<OrloNodeRemoveEvent>(fifth), 35, 1.0F, {}, fifth},
        {std::make_shared<OrloTransposeEvent>(fifth), 36, 1.0F, {}, fifth},
        {std::make_shared<OrloNodeSelectToggleEvent>(fifth), 37, 1.0F, {}, fifth},
        {std::make_shared<OrloNodeResetEvent>(fifth, 0.0F), 38, 0.0F, {}, fifth},
    };
    PdMessageBuffer buffer;
    ASSERT_TRUE(buffer.init());
    for (const Row& row : rows)
        buffer.queueEvent(row.event.get());
    PdMessageBuffer::ChunkList chunks;
    buffer.processEvents(chunks);
    ASSERT_EQ(chunks.size(), static_cast<std::int64_t>(std::size(rows)));
    for (std::int64_t i = 0; i < chunks.size(); ++i) {
        const Row& row = rows[i];
        EXPECT_EQ(chunks[i]->type, row.type) << i;
        EXPECT_EQ(chunks[i]->value, row.value) << i;
        EXPECT_EQ(chunks[i]->path, row.path) << i;
        EXPECT_EQ(chunks[i]->ratio, row.ratio) << i;
    }
}

TEST(Commands, OfTheDeviceRunBeforeThoseOfTheScreen)
{
    SoundRig rig;
    EngineLog log(rig.player);
    const OrloEvent screen[] = {event(22, 441.0F), event(22, 442.0F)};
    const OrloEvent device[] = {event(22, 443.0F), event(22, 444.0F)};
    for (const OrloEvent& queued : screen)
        rig.player.queueEventGui(&queued);
    for (const OrloEvent& queued : device)
        rig.player.queueEventSerial(&queued);
    rig.render();
    EXPECT_EQ(log.take(), (QStringList{QStringLiteral("baseFrequencyChanged 443"),
                                       QStringLiteral("baseFrequencyChanged 444"),
                                       QStringLiteral("baseFrequencyChanged 441"),
                                       QStringLiteral("baseFrequencyChanged 442")}));
}

// Each row runs after those above it, on one engine.
TEST(Commands, DoWhatTheirNumberSays)
{
    struct Row
    {
        int type;
        float value;
        const char* lines; // joined by "; "
    };
    const Row rows[] = {
        {-1, 1.0F, ""},
        {43, 1.0F, ""},
        {-2147483647, 1.0F, ""},
        {2147483647, 1.0F, ""},
        {15, -2.5F, "transposed 2/3 -3"}, // a half rounds away from zero
        {15, 2.4F, "transposed 4/3 2"},
        {15, 258.6F, "transposed 2/1 3"}, // 259 as a signed byte is 3
        {15, 0.49F, "transposed 1/1 0"},  // 0 resets
        {16, 0.25F, "voiceVolumeChanged 1.25"},
        {17, 0.5F, "voiceVolumeChanged 0.5"},
        {16, -0.25F, "voiceVolumeChanged 0.25"},
        {18, -0.3F, "master-vol 0.5; volumeChanged 0.5"}, // from 0.8
        {19, 0.75F, "master-vol 0.75; volumeChanged 0.75"},
        {20, 0.5F, "monophonicChanged off"},
        {20, 0.6F, "monophonicChanged on"},
        {21, 0.1F, "patchIncRequested"},
        {21, 0.0F, "patchDecRequested"},
        {22, 432.5F, "baseFrequencyChanged 432.5"},
        {23, 5.0F, "primeEnabledToggled 5 off"},
        {23, 5.9F, "primeEnabledToggled 5 on"},
        {23, 31.0F, "primeEnabledToggled 31 off"},
        {23, 32.0F, ""},
        {23, -7.0F, ""},
        {24, 0.25F, "macroValueChanged 1 0.25"},
        {31, 1.0F, "macroValueChanged 8 1"},
        {3, 1.0F, "removeNodeInStack 0/1"}, // deselecting runs on into removing
        {35, 1.0F, "removeNodeInStack 0/1"},
        {36, 1.0F, ""}, // no transposition by 0/1
        {39, 1.0F, "nodesRecalled"},
        {40, 0.999F, ""},
        {41, 0.0F, ""}, // no patch was named
        {42, 0.0F, ""},
        {19, NAN, ""},
        {22, INFINITY, ""},
    };
    SoundRig rig;
    EngineLog log(rig.player);
    for (const Row& row : rows) {
        rig.send(event(row.type, row.value));
        EXPECT_EQ(log.take().join(QStringLiteral("; ")).toStdString(), row.lines)
            << "type " << row.type << " value " << row.value;
    }
}
