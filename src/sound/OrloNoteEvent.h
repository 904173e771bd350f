#pragma once

#include "model/OrloPath.h"
#include "model/OrloRatio.h"
#include "sound/OrloEvent.h"

/// Toggles a note: a ball's by its path, any sounding pitch by its absolute ratio. Whichever of
/// the two it was not built from stays at its default.
class OrloNoteEvent : public OrloEvent
{
public:
    OrloNoteEvent();
    explicit OrloNoteEvent(const QString& path);
    explicit OrloNoteEvent(const OrloPath& path);
    explicit OrloNoteEvent(const OrloRatio& ratio);
    OrloNoteEvent(const OrloRatio& ratio, float value);
    OrloNoteEvent(const OrloNoteEvent&) = default;
    OrloNoteEvent& operator=(const OrloNoteEvent&) = default;

    const OrloPath& path() const { return mPath; }
    const OrloRatio& ratio() const { return mRatio; }

private:
    OrloPath mPath;
    OrloRatio mRatio;
};
