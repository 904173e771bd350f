#pragma once

#include <array>

/// Moves pitches outside the MIDI range to its ends, with a warning once for each note. Belongs to the
/// holder of the engine.
class MidiNoteRange
{
public:
    /// [audio] The note of a frequency in Hz, from 0.0 to below 128.0.
    double noteOf(int voice, float frequency);
    /// [audio] The next pitch of this voice may warn again.
    void noteEnds(int voice);

private:
    std::array<bool, 256> mWarned{}; // by voice, until its note ends
};
