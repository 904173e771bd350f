#pragma once

#include "model/OrloPath.h"
#include "model/OrloRatio.h"
#include "sound/OrloEvent.h"

/// Toggles a note: a ball's by its path, any sounding pitch by its absolute ratio. Whichever of
/// the two it was not built from stays at its default.
class OrloNoteEvent : public OrloEvent
{
public:
    /// The value of a toggle that ends a held note too.
    static constexpr float OVERRIDES_HOLD = 2.0F;

    /// [any] A ball's toggle, of the empty path.
    OrloNoteEvent();
    /// [any] Reads the path from its text.
    explicit OrloNoteEvent(const QString& path);
    /// [any]
    explicit OrloNoteEvent(const OrloPath& path);
    /// [any] Leaves a held note alone.
    explicit OrloNoteEvent(const OrloRatio& ratio);
    /// [any]
    OrloNoteEvent(const OrloRatio& ratio, float value);
    OrloNoteEvent(const OrloNoteEvent&) = default;
    OrloNoteEvent& operator=(const OrloNoteEvent&) = default;

    /// [any]
    const OrloPath& path() const { return mPath; }
    /// [any]
    const OrloRatio& ratio() const { return mRatio; }

private:
    OrloPath mPath;
    OrloRatio mRatio;
};
