#pragma once

#include <atomic>

/// An option that the audio thread reads while the graphical thread writes it. It is used like the
/// plain value, without a data race.
template <class T>
class SharedOption
{
public:
    SharedOption(T value)
        : mValue(value)
    {
    }
    SharedOption& operator=(T value)
    {
        mValue.store(value, std::memory_order_relaxed);
        return *this;
    }
    operator T() const { return mValue.load(std::memory_order_relaxed); }

private:
    std::atomic<T> mValue;
};
