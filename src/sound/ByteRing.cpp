#include "sound/ByteRing.h"

#include <algorithm>
#include <cstring>
#include <new>

bool ByteRing::init(std::size_t bytes)
{
    mBytes.reset(new (std::nothrow) std::byte[bytes]()); // touched, so that no writer waits for a page
    mSize = mBytes ? bytes : 0;
    mWriteAt = 0;
    mReadAt = 0;
    return mBytes != nullptr;
}

std::size_t ByteRing::writable() const
{
    if (mSize == 0)
        return 0;
    // Acquire: what the reader has given free, it has read.
    const std::size_t readAt = mReadAt.load(std::memory_order_acquire);
    return (readAt + mSize - 1 - mWriteAt.load(std::memory_order_relaxed)) % mSize;
}

std::size_t ByteRing::readable() const
{
    if (mSize == 0)
        return 0;
    const std::size_t writeAt = mWriteAt.load(std::memory_order_acquire);
    return (writeAt + mSize - mReadAt.load(std::memory_order_relaxed)) % mSize;
}

bool ByteRing::write(std::initializer_list<std::span<const std::byte>> parts)
{
    std::size_t total = 0;
    for (const auto& part : parts)
        total += part.size();
    if (writable() < total)
        return false;
    std::size_t at = mWriteAt.load(std::memory_order_relaxed);
    for (const auto& part : parts) {
        if (part.empty())
            continue;
        const std::size_t first = std::min(part.size(), mSize - at);
        std::memcpy(mBytes.get() + at, part.data(), first);
        std::memcpy(mBytes.get(), part.data() + first, part.size() - first);
        at = (at + part.size()) % mSize;
    }
    mWriteAt.store(at, std::memory_order_release);
    return true;
}

bool ByteRing::write(const void* data, std::size_t bytes)
{
    return write({std::span(static_cast<const std::byte*>(data), bytes)});
}

bool ByteRing::read(void* data, std::size_t bytes)
{
    if (readable() < bytes)
        return false;
    const std::size_t at = mReadAt.load(std::memory_order_relaxed);
    const std::size_t first = std::min(bytes, mSize - at);
    auto* to = static_cast<std::byte*>(data);
    std::memcpy(to, mBytes.get() + at, first);
    std::memcpy(to + first, mBytes.get(), bytes - first);
    mReadAt.store((at + bytes) % mSize, std::memory_order_release);
    return true;
}
