#pragma once

#include <atomic>
#include <cstddef>
#include <initializer_list>
#include <memory>
#include <span>

/// A lock-free ring of bytes from one writing to one reading thread. Either side may change threads
/// as long as the change itself is ordered, as the hand-over of the engine is.
///
/// Capacity: one byte less than it was made with. What finds no room is not written at all. Nothing
/// here blocks, and nothing but init() allocates.
class ByteRing
{
public:
    /// Before the first use. False when there is no memory for it.
    bool init(std::size_t bytes);

    /// Writer. The parts lie in the ring as one piece: all of them are there for the reader, or none
    /// is. False when there is no room.
    bool write(std::initializer_list<std::span<const std::byte>> parts);
    bool write(const void* data, std::size_t bytes);
    /// Writer: how much room there is at the least.
    std::size_t writable() const;

    /// Reader: how much can be read at the least.
    std::size_t readable() const;
    /// Reader. False, and nothing is read, when there is less.
    bool read(void* data, std::size_t bytes);

private:
    std::unique_ptr<std::byte[]> mBytes;
    std::size_t mSize = 0;
    // Each has one writer, on a cache line of its own.
    alignas(64) std::atomic<std::size_t> mWriteAt{0};
    alignas(64) std::atomic<std::size_t> mReadAt{0};
};
