#pragma once

#include <atomic>
#include <cstddef>
#include <initializer_list>
#include <memory>
#include <span>

/// A lock-free ring of bytes from one writing to one reading thread. The owner says which threads
/// these are; either side may change threads as long as the change itself is ordered, as the hand-over of the
/// engine is.
///
/// Capacity: one byte less than it was made with. When it is full, what finds no room is not written at
/// all. Nothing here blocks, and nothing but init() allocates.
class ByteRing
{
public:
    /// [gui] Before the first use. False when there is no memory for it.
    bool init(std::size_t bytes);

    /// [any] The writing thread. Effect: the parts lie in the ring as one piece: all of them are there for
    /// the reader, or none is. False when there is no room.
    bool write(std::initializer_list<std::span<const std::byte>> parts);
    /// [any] The same for one part.
    bool write(const void* data, std::size_t bytes);
    /// [any] The writing thread: how many bytes find room at the least.
    std::size_t writable() const;

    /// [any] The reading thread: how many bytes can be read at the least.
    std::size_t readable() const;
    /// [any] The reading thread. Effect: takes the bytes out. False, and nothing is read, when there are
    /// less.
    bool read(void* data, std::size_t bytes);

private:
    std::unique_ptr<std::byte[]> mBytes;
    std::size_t mSize = 0;
    // Each has one writer, on a cache line of its own.
    alignas(64) std::atomic<std::size_t> mWriteAt{0};
    alignas(64) std::atomic<std::size_t> mReadAt{0};
};
