#include "end-to-end/Recording.h"

#include "end-to-end/VirtualDesk.h"
#include "support/Tone.h"
#include "support/Waiting.h"

#include <algorithm>
#include <span>

namespace {

constexpr double SILENT_BELOW = 1e-5; // full scale is 1
constexpr double SOUNDS_ABOVE = 1e-3;
constexpr double SILENCE_SECONDS = 0.1;

} // namespace

Recording::Recording()
{
    for (auto& channel : mKept)
        channel.resize(KEPT);
}

void Recording::append(const std::array<const float*, CHANNELS>& channels, size_t frames, size_t stride)
{
    const size_t from = mRecorded.load(std::memory_order_relaxed);
    for (size_t channel = 0; channel < CHANNELS; ++channel)
        for (size_t i = 0; i < frames; ++i)
            mKept[channel][(from + i) % KEPT] = channels[channel][i * stride];
    mRecorded.store(from + frames, std::memory_order_release);
}

std::vector<float> Recording::since(size_t from, int channel) const
{
    const size_t frames = std::min(length() - from, KEPT);
    std::vector<float> recording(frames);
    for (size_t i = 0; i < frames; ++i)
        recording[i] = mKept[static_cast<size_t>(channel)][(from + i) % KEPT];
    return recording;
}

std::vector<float> Recording::record(double seconds, int channel)
{
    const auto frames = static_cast<size_t>(seconds * VirtualDesk::SAMPLE_RATE);
    const size_t from = length();
    if (!waitUntil([&] { return length() >= from + frames; }, static_cast<int>(seconds * 1000) + 10000))
        return {};
    std::vector<float> recording = since(from, channel);
    recording.resize(frames);
    return recording;
}

double Recording::level(int channel)
{
    const std::vector<float> recording = record(SILENCE_SECONDS, channel);
    return recording.empty() ? -1.0 : tone::level(recording);
}

bool Recording::waitForSound()
{
    return waitUntil([this] { return level() > SOUNDS_ABOVE; });
}

bool Recording::waitForSilence()
{
    return waitUntil([this] {
        const double now = level();
        return now >= 0.0 && now < SILENT_BELOW;
    });
}

double Recording::longestSilenceSince(size_t from) const
{
    const std::vector<float> recording = since(from);
    constexpr auto MOMENT = static_cast<size_t>(SILENCE_SECONDS * VirtualDesk::SAMPLE_RATE);
    int longest = 0;
    int silent = 0;
    for (size_t at = 0; at + MOMENT <= recording.size(); at += MOMENT) {
        silent = tone::level(std::span(recording).subspan(at, MOMENT)) > SOUNDS_ABOVE ? 0 : silent + 1;
        longest = std::max(longest, silent);
    }
    return longest * SILENCE_SECONDS;
}
