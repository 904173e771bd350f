#pragma once

#include <array>
#include <atomic>

/// A ratio that one thread writes and any thread reads, without a lock on either side.
///
/// publish() fills the next slot of a ring and then moves the index to it; read() takes the slot
/// under the index. Both always end after a fixed number of steps. A reader would see a mixed
/// value only if SLOTS publications happened while it copied two numbers, and it checks for that.
class PublishedRatio
{
public:
    struct Value
    {
        unsigned long long numerator = 1;
        unsigned long long denominator = 1;
    };

    /// One writer only.
    void publish(Value value);
    /// Any thread.
    Value read() const;

private:
    static constexpr unsigned SLOTS = 64;
    static constexpr int MOST_ATTEMPTS = 100;

    struct Slot
    {
        std::atomic<unsigned long long> numerator{1};
        std::atomic<unsigned long long> denominator{1};
    };

    std::array<Slot, SLOTS> mSlots;
    std::atomic<unsigned> mPublished{0}; // count of publications; its slot is this modulo SLOTS
};
