#include "model/PublishedRatio.h"

void PublishedRatio::publish(Value value)
{
    const unsigned next = mPublished.load(std::memory_order_relaxed) + 1;
    Slot& slot = mSlots[next % SLOTS];
    // Release, so that a reader who meets one of these two has the former counts behind it.
    slot.numerator.store(value.numerator, std::memory_order_release);
    slot.denominator.store(value.denominator, std::memory_order_release);
    mPublished.store(next, std::memory_order_release);
}

PublishedRatio::Value PublishedRatio::read() const
{
    Value value;
    unsigned published = mPublished.load(std::memory_order_acquire);
    // A round fails only when this thread was held up in its middle, for all of SLOTS publications.
    for (int attempt = 0; attempt < MOST_ATTEMPTS; ++attempt) {
        const Slot& slot = mSlots[published % SLOTS];
        value.numerator = slot.numerator.load(std::memory_order_acquire);
        value.denominator = slot.denominator.load(std::memory_order_acquire);
        const unsigned now = mPublished.load(std::memory_order_acquire);
        if (now - published < SLOTS - 1)
            break;
        published = now;
    }
    return value;
}
