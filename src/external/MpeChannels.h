#pragma once

#include "external/MidiBytes.h"

#include <array>

/// Which MIDI channel each voice has in MPE. A voice takes the lowest free channel and keeps it until its
/// note ends; all sixteen carry voices. Belongs to the holder of the engine.
class MpeChannels
{
public:
    static constexpr int NONE = -1;

    MpeChannels();

    /// [audio] The voice's own channel or the first free one from `start` on, whichever is lower: the voice
    /// then holds both. NONE when all are taken by others; `start` becomes the last channel then, so that the
    /// other voices of one message look at that one alone.
    int find(int voice, int& start) const;
    /// [audio] The free channel becomes the voice's, with the key next to the note.
    void take(int channel, int voice, double note);
    /// [audio] The channel's voice starts anew from this note, with the key that it has.
    void startFrom(int channel, double note) { channelExactNote[at(channel)] = note; }
    /// [audio]
    bool isFree(int channel) const { return !channelActive[at(channel)]; }
    /// [audio]
    bool holds(int channel, int voice) const;
    /// [audio] The channel is free again.
    void free(int channel) { channelActive[at(channel)] = false; }
    /// [audio] The device has been silenced: no voice holds a channel any more.
    void freeAll() { channelActive.fill(false); }

    /// [audio] By channel: the voice that took it last, whether it is taken still, the key of its note, and
    /// the note at which the voice took it.
    std::array<int, midi::CHANNELS> channelVoice{};
    std::array<bool, midi::CHANNELS> channelActive{};
    std::array<int, midi::CHANNELS> channelKey;
    std::array<double, midi::CHANNELS> channelExactNote;

private:
    static std::size_t at(int channel) { return static_cast<std::size_t>(channel); }
};
