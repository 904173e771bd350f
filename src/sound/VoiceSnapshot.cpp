#include "sound/VoiceSnapshot.h"

namespace {

std::uint64_t packed(const Voice& voice)
{
    return std::uint64_t{voice.seqId} << 32 | static_cast<std::uint64_t>(voice.voice) << 1
           | (voice.released ? 1U : 0U);
}

} // namespace

void VoiceSnapshot::publish(const RatioTable<Voice*>& noteMap)
{
    const unsigned next = mPublished.load(std::memory_order_relaxed) + 1;
    Buffer& buffer = mBuffers[next % RING_SIZE];
    // Release, so that a reader who meets one of these has the former counts behind it.
    int size = 0;
    for (const Voice* voice : noteMap) {
        if (size == VoiceTable::SLOTS)
            break;
        Slot& slot = buffer.voices[static_cast<size_t>(size++)];
        slot.numerator.store(voice->ratio.numerator(), std::memory_order_release);
        slot.denominator.store(voice->ratio.denominator(), std::memory_order_release);
        slot.state.store(packed(*voice), std::memory_order_release);
    }
    buffer.size.store(size, std::memory_order_release);
    mPublished.store(next, std::memory_order_release);
}

QList<VoiceSnapshot::Entry> VoiceSnapshot::read() const
{
    struct Raw
    {
        unsigned long long numerator;
        unsigned long long denominator;
        std::uint64_t state;
    };
    std::array<Raw, VoiceTable::SLOTS> raw;
    for (int attempt = 0; attempt < ATTEMPTS; ++attempt) {
        const unsigned published = mPublished.load(std::memory_order_acquire);
        const Buffer& buffer = mBuffers[published % RING_SIZE];
        const int size = buffer.size.load(std::memory_order_acquire);
        for (size_t i = 0; i < static_cast<size_t>(size); ++i) {
            raw[i] = {buffer.voices[i].numerator.load(std::memory_order_acquire),
                      buffer.voices[i].denominator.load(std::memory_order_acquire),
                      buffer.voices[i].state.load(std::memory_order_acquire)};
        }
        if (mPublished.load(std::memory_order_relaxed) - published >= RING_SIZE - 1)
            continue;
        QList<Entry> entries;
        entries.reserve(size);
        for (size_t i = 0; i < static_cast<size_t>(size); ++i)
            entries.append({OrloRatio(raw[i].numerator, raw[i].denominator),
                            static_cast<int>(raw[i].state >> 1 & 0xFF),
                            static_cast<std::uint32_t>(raw[i].state >> 32), (raw[i].state & 1) != 0});
        return entries;
    }
    return {};
}
