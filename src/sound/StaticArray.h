#pragma once

#include <cstdint>

/// Fixed-capacity array for the sound engine: it never allocates. Not bounds-checked. All of it is [any],
/// one thread at a time.
template <class T, int N>
class StaticArray
{
public:
    static constexpr int CAPACITY = N;

    /// [audio] Indexing at the current size raises the size by one first.
    T& operator[](std::int64_t index)
    {
        if (index == mSize)
            ++mSize;
        return mElements[index];
    }
    /// [audio]
    const T& operator[](std::int64_t index) const { return mElements[index]; }

    /// [audio]
    std::int64_t size() const { return mSize; }
    /// [audio]
    void setSize(std::int64_t size) { mSize = size; }

private:
    T mElements[N]{};
    std::int64_t mSize = 0;
};
