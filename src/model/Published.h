#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

/// A value that one thread publishes and any thread reads, without a lock on either side.
///
/// publish() fills the next slot of a ring and then moves the count to it; read() copies the slot under
/// the count. It would see a mixture only if the writer came round to that slot within one copy, and it
/// checks for that. Capacity: the last value. Both always end after a fixed number of steps, block
/// nothing and allocate nothing.
template <class T, unsigned SLOTS = 64>
class Published
{
    static_assert(std::is_trivially_copyable_v<T> && sizeof(T) % sizeof(std::uint64_t) == 0);

public:
    explicit Published(const T& first) { publish(first); }

    /// One writer only. Effect: the first `bytes` of the value are what read() gives from now on; what
    /// lies behind them is undefined then.
    void publish(const T& value, std::size_t bytes = sizeof(T))
    {
        const unsigned next = mPublished.load(std::memory_order_relaxed) + 1;
        Slot& slot = mSlots[next % SLOTS];
        const auto* from = reinterpret_cast<const std::byte*>(&value);
        for (std::size_t i = 0; i * sizeof(std::uint64_t) < bytes; ++i) {
            std::uint64_t word = 0;
            std::memcpy(&word, from + i * sizeof(word), sizeof(word));
            // Release, so that a reader who meets one of these has the former counts behind it.
            slot[i].store(word, std::memory_order_release);
        }
        mPublished.store(next, std::memory_order_release);
    }

    /// [any] False, with a mixture in `value`, when this thread was held up in the middle of ATTEMPTS
    /// copies, each time for all of SLOTS publications.
    bool read(T& value) const
    {
        unsigned published = mPublished.load(std::memory_order_acquire);
        for (int attempt = 0; attempt < ATTEMPTS; ++attempt) {
            std::array<std::uint64_t, WORDS> words;
            for (std::size_t i = 0; i < WORDS; ++i)
                words[i] = mSlots[published % SLOTS][i].load(std::memory_order_acquire);
            std::memcpy(static_cast<void*>(&value), words.data(), sizeof(value));
            const unsigned now = mPublished.load(std::memory_order_acquire);
            if (now - published < SLOTS - 1)
                return true;
            published = now;
        }
        return false;
    }

private:
    static constexpr std::size_t WORDS = sizeof(T) / sizeof(std::uint64_t);
    static constexpr int ATTEMPTS = 100;
    using Slot = std::array<std::atomic<std::uint64_t>, WORDS>;

    std::array<Slot, SLOTS> mSlots{};
    std::atomic<unsigned> mPublished{0}; // count of publications; its slot is this modulo SLOTS
};
