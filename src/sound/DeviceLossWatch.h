#pragma once

#include <cstdint>

/// Tells from the count of a stream's blocks, looked at again and again, that the device has gone. A late
/// look, or a machine that itself stood still, does not count.
class DeviceLossWatch
{
public:
    static constexpr std::int64_t INTERVAL_MS = 250; // between two looks

    /// [gui] A stream begins whose blocks last so long.
    void start(std::int64_t nowMs, std::uint64_t blocks, std::int64_t blockMs);
    /// [gui] True when no block came for about two seconds, or twice that for the first one, and the time
    /// of two blocks.
    bool look(std::int64_t nowMs, std::uint64_t blocks);

private:
    std::int64_t mLastLook = 0;
    std::int64_t mStillMs = 0;
    std::int64_t mAllowedMs = 0;
    std::int64_t mBlockMs = 0;
    std::uint64_t mBlocks = 0;
};
