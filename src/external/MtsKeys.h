#pragma once

#include "external/MidiBytes.h"

#include <QList>

#include <span>

class MidiNoteRange;

/// Which key each voice has on a single MIDI channel, and which keys were retuned for it (MIDI Tuning
/// Standard). Builds the tuning changes in storage that is there already, unless one names more than
/// 256 keys. Belongs to the holder of the engine.
class MtsKeys
{
public:
    MtsKeys();

    /// [audio] It may lie above 127; then the voice has none.
    int keyOf(int voice) const { return firstKey + voice; }
    /// [audio] The message that tunes the voices, which have one frequency (Hz) each, as far as `range` lets
    /// them. Voices without a key are left out; empty when none is left. It holds until the next call.
    std::span<const midi::Byte> tune(const QList<int>& voices, const QList<float>& frequencies,
                                     MidiNoteRange& range);
    /// [audio] The message that puts all retuned keys back on equal temperament, and forgets them; empty
    /// when there are none. It holds until the next call.
    std::span<const midi::Byte> reset();

    /// [audio] Of voice 0.
    int firstKey = 32;
    /// [audio] Each once, in order of first tuning. It has room for all from the start.
    QList<int> tunedKeys;

private:
    midi::Bytes mMessage;
};
