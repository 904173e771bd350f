#include "sound/OrloNoteEvent.h"

OrloNoteEvent::OrloNoteEvent()
    : OrloEvent(NoteToggleByPath, 1.0F)
{
}

OrloNoteEvent::OrloNoteEvent(const QString& path)
    : OrloNoteEvent(OrloPath(path))
{
}

OrloNoteEvent::OrloNoteEvent(const OrloPath& path)
    : OrloEvent(NoteToggleByPath, 1.0F)
    , mPath(path)
{
}

OrloNoteEvent::OrloNoteEvent(const OrloRatio& ratio)
    : OrloNoteEvent(ratio, 1.0F)
{
}

OrloNoteEvent::OrloNoteEvent(const OrloRatio& ratio, float value)
    : OrloEvent(NoteToggleByRatio, value)
    , mRatio(ratio)
{
}
