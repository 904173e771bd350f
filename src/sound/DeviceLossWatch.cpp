#include "sound/DeviceLossWatch.h"

#include <algorithm>

namespace {

constexpr std::int64_t STILLNESS_MS = 1800; // beside the blocks' own time

} // namespace

void DeviceLossWatch::start(std::int64_t nowMs, std::uint64_t blocks, std::int64_t blockMs)
{
    mLastLook = nowMs;
    mBlocks = blocks;
    mBlockMs = blockMs;
    mStillMs = 0;
    mAllowedMs = 2 * (STILLNESS_MS + blockMs);
}

bool DeviceLossWatch::look(std::int64_t nowMs, std::uint64_t blocks)
{
    // However late a look comes, it stands for one interval: the blocks may have stood still with it.
    const std::int64_t passed = std::min(nowMs - mLastLook, INTERVAL_MS);
    mLastLook = nowMs;
    if (blocks != mBlocks) {
        mBlocks = blocks;
        mStillMs = 0;
        mAllowedMs = STILLNESS_MS + 2 * mBlockMs;
        return false;
    }
    mStillMs += passed;
    return mStillMs > mAllowedMs;
}
