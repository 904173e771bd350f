#pragma once

#include "app/RationedLog.h"
#include "model/OrloPath.h"
#include "model/OrloRatio.h"
#include "sound/ByteRing.h"
#include "sound/OrloEvent.h"
#include "sound/StaticArray.h"

/// A command buffer into the audio thread: a lock-free ring in which each event travels as a Chunk of 64
/// bytes. It is read on [audio] and has one writing thread: [gui] for the player's guiBuffer, [listener]
/// for its serialBuffer.
///
/// Capacity: 255 chunks. A chunk that finds the ring full is dropped with a warning, of many only their
/// number; the writer neither waits nor retries. Nothing here blocks, and on [audio] nothing allocates.
class PdMessageBuffer
{
public:
    /// Writer and reader are the same process, so the object image is copied as it stands.
    struct Chunk
    {
        std::int32_t type = OrloEvent::None;
        OrloPath path;
        OrloRatio ratio; // its second field means nothing on the reading side
        float value = 0.0F;
    };
    static_assert(sizeof(Chunk) == 64);

    static constexpr int RING_BYTES = 16384;
    /// What one reading of a full ring can yield.
    static constexpr int CHUNK_LIST_CAPACITY = RING_BYTES / static_cast<int>(sizeof(Chunk));
    using ChunkList = StaticArray<const Chunk*, CHUNK_LIST_CAPACITY>;

    /// [stopped] Makes the ring. False when there is no memory for it.
    bool init();
    /// [gui] or [listener], whichever writes. Effect: the engine gets a copy of the event.
    void queueEvent(const OrloEvent* event);
    /// [gui] or [listener], whichever writes. Effect: the engine gets the chunk.
    void writeChunk(const Chunk* chunk);
    /// [audio] Appends a pointer for each chunk that is pending. The pointers hold until the next
    /// call on any buffer: all buffers read into one area, which is safe because one thread drains
    /// them one after the other and uses each list up first.
    void processEvents(ChunkList& chunks);

    /// [gui] or [listener], whichever writes. How many more find room.
    int room() const { return static_cast<int>(mRing.writable()) / static_cast<int>(sizeof(Chunk)); }

private:
    ByteRing mRing;
    RationedLog mFull{
        QStringLiteral("more commands found the buffer full and were dropped.")}; // the writer's
};
