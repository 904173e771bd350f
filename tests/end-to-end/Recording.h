#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <vector>

/// What a test hears, in a ring of the newest frames. One thread appends, another asks.
class Recording
{
public:
    static constexpr int CHANNELS = 2;

    Recording();
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;

    /// Frames so far.
    size_t length() const { return mRecorded.load(std::memory_order_acquire); }
    /// Records this long from now on. Empty when no sound server is at work.
    std::vector<float> record(double seconds, int channel = 0);
    /// What came since the recording had this length, 23 s at most.
    std::vector<float> since(size_t from, int channel = 0) const;
    /// Root mean square of the next moment; -1 when no sound server is at work.
    double level(int channel = 0);
    /// Waits for the outputs to carry something, or to carry nothing for a while.
    bool waitForSound();
    bool waitForSilence();
    /// The longest time in which nothing sounded since then, in seconds, to a tenth of one.
    double longestSilenceSince(size_t from) const;

protected:
    ~Recording() = default;
    /// Each channel's next frame lies `stride` floats behind the one before.
    void append(const std::array<const float*, CHANNELS>& channels, size_t frames, size_t stride);

private:
    static constexpr size_t KEPT = size_t{1} << 20; // frames, 23 s

    std::array<std::vector<float>, CHANNELS> mKept;
    std::atomic<size_t> mRecorded{0};
};
