#include "sound/PdMessageBuffer.h"

#include "sound/OrloNodeRemoveEvent.h"
#include "sound/OrloNodeResetEvent.h"
#include "sound/OrloNodeSelectToggleEvent.h"
#include "sound/OrloNoteEvent.h"
#include "sound/OrloTransposeEvent.h"
#include "sound/ThreadCheck.h"

#include <cstddef>

namespace {

constexpr std::size_t CHUNK_BYTES = sizeof(PdMessageBuffer::Chunk);

alignas(PdMessageBuffer::Chunk) std::byte readArea[PdMessageBuffer::RING_BYTES];

/// Copies the ratio if the event is of this class.
template <class Event>
bool copiedRatio(PdMessageBuffer::Chunk& chunk, const OrloEvent* event)
{
    const auto* typed = dynamic_cast<const Event*>(event);
    if (typed)
        chunk.ratio = typed->ratio();
    return typed != nullptr;
}

} // namespace

bool PdMessageBuffer::init()
{
    return mRing.init(RING_BYTES);
}

void PdMessageBuffer::queueEvent(const OrloEvent* event)
{
    Chunk chunk;
    chunk.type = event->type();
    chunk.value = event->value();
    if (const auto* note = dynamic_cast<const OrloNoteEvent*>(event)) {
        chunk.path = note->path();
        chunk.ratio = note->ratio();
    } else {
        // A plain event has no ratio to copy.
        (void)(copiedRatio<OrloTransposeEvent>(chunk, event) || copiedRatio<OrloNodeRemoveEvent>(chunk, event)
               || copiedRatio<OrloNodeSelectToggleEvent>(chunk, event)
               || copiedRatio<OrloNodeResetEvent>(chunk, event));
    }
    writeChunk(&chunk);
}

void PdMessageBuffer::writeChunk(const Chunk* chunk)
{
    if (mRing.write(chunk, CHUNK_BYTES))
        mFull.tellLeftOut();
    else
        mFull.write(QStringLiteral("Command buffer full"));
}

void PdMessageBuffer::processEvents(ChunkList& chunks)
{
    ThreadCheck::audio();
    const std::size_t available = mRing.readable() / CHUNK_BYTES * CHUNK_BYTES;
    if (available == 0)
        return;
    mRing.read(readArea, available);
    for (std::size_t at = 0; at < available; at += CHUNK_BYTES)
        chunks[chunks.size()] = reinterpret_cast<const Chunk*>(readArea + at);
}
