#include "sound/PdMessageBuffer.h"

#include "sound/OrloNodeRemoveEvent.h"
#include "sound/OrloNodeResetEvent.h"
#include "sound/OrloNodeSelectToggleEvent.h"
#include "sound/OrloNoteEvent.h"
#include "sound/OrloTransposeEvent.h"

#include <QDebug>

extern "C" { // the header does not say so itself
#include <z_ringbuffer.h>
}

#include <cstddef>

namespace {

constexpr int CHUNK_BYTES = static_cast<int>(sizeof(PdMessageBuffer::Chunk));

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

void PdMessageBuffer::RingRelease::operator()(ring_buffer* ring) const
{
    rb_free(ring);
}

PdMessageBuffer::PdMessageBuffer() = default;
PdMessageBuffer::~PdMessageBuffer() = default;

bool PdMessageBuffer::init()
{
    mRing.reset(rb_create(RING_BYTES));
    return mRing != nullptr;
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
    if (rb_available_to_write(mRing.get()) >= CHUNK_BYTES)
        rb_write_to_buffer(mRing.get(), 1, reinterpret_cast<const char*>(chunk), CHUNK_BYTES);
    else
        qWarning() << "Command buffer full";
}

void PdMessageBuffer::processEvents(ChunkList& chunks)
{
    const int available = rb_available_to_read(mRing.get());
    if (available == 0)
        return;
    rb_read_from_buffer(mRing.get(), reinterpret_cast<char*>(readArea), available);
    for (int at = 0; at + CHUNK_BYTES <= available; at += CHUNK_BYTES)
        chunks[chunks.size()] = reinterpret_cast<const Chunk*>(readArea + at);
}
