#pragma once

#include "harmony/SoundingNote.h"

#include <QList>

class PdPlayer;

/// The notes that sound, without the silent and the released ones, of one moment. Never blocks. A note whose
/// frequency is to the last bit that of its ratio counts as exact. `baseFrequency` in Hz. [gui]
QList<SoundingNote> soundingNotes(const PdPlayer& player, float baseFrequency);
