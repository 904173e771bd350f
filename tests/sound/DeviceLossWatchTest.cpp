#include "sound/DeviceLossWatch.h"

#include <gtest/gtest.h>

#include <algorithm>

TEST(DeviceLossWatch, BelievesOnlyInAStillnessThatItHasSeenItself)
{
    struct Row
    {
        const char* what;
        std::int64_t blockMs;
        std::int64_t lookEveryMs;
        std::int64_t blockEveryMs; // 0: none comes
        std::int64_t blocksUntilMs;
        std::int64_t earliestMs, latestMs; // of the alarm, after the last block; -1: none within a minute
    };
    const Row rows[] = {
        {"small blocks end", 6, 250, 6, 10000, 1750, 2500},
        {"a second without blocks, again and again", 6, 250, 1000, 60000, -1, -1},
        {"the largest blocks at the lowest rate", 1024, 250, 1024, 60000, -1, -1},
        {"they end", 1024, 250, 1024, 10240, 3000, 4500},
        {"the first block takes its time", 6, 250, 3000, 3000, 1750, 2500},
        {"no block ever comes", 6, 250, 0, 0, 3000, 4500},
        {"the looks are late", 6, 3000, 6, 10000, 18000, 27000},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        DeviceLossWatch watch;
        watch.start(0, 7, row.blockMs);
        std::int64_t alarm = -1;
        for (std::int64_t now = row.lookEveryMs; now < 60000 && alarm < 0; now += row.lookEveryMs) {
            const std::int64_t playing = std::min(now, row.blocksUntilMs);
            const std::int64_t blocks = row.blockEveryMs > 0 ? playing / row.blockEveryMs : 0;
            if (watch.look(now, 7 + static_cast<std::uint64_t>(blocks)))
                alarm = now - row.blocksUntilMs;
        }
        EXPECT_GE(alarm, row.earliestMs);
        EXPECT_LE(alarm, row.latestMs);
    }
}
