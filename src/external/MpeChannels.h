#pragma once

#include "external/MidiBytes.h"

#include <array>
#include <atomic>
#include <cstdint>

/// Which MIDI channel each voice has in MPE. A voice takes the lowest free channel and keeps it until its
/// note ends; all sixteen carry voices. In a zone it takes the member that has been free the longest, so that
/// a note that fades is not bent. Belongs to the holder of the engine.
class MpeChannels
{
public:
    static constexpr int NONE = -1;
    static constexpr int MANAGER = 0; // of the zone
    static constexpr int FIRST_MEMBER = 1;
    static constexpr int MEMBERS = midi::CHANNELS - FIRST_MEMBER;

    MpeChannels();

    /// [audio] Frees all channels.
    void useZone(bool isZone);
    /// [audio] In a zone, the voice's own channel or the member to take; NONE when all are taken by others.
    /// Else the voice's own channel or the first free one from `start` on, whichever is lower: the voice
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
    /// [audio] The voice on this channel wants this note, and the device misses it by so many cents.
    void bend(int channel, double note, double missCents);
    /// [audio] The channel is free again.
    void free(int channel);
    /// [audio] The device has been silenced: no voice holds a channel any more.
    void freeAll();

    /// [audio] By channel: the voice that took it last, whether it is taken still, the key of its note, and
    /// the note at which the voice took it.
    std::array<int, midi::CHANNELS> channelVoice{};
    std::array<bool, midi::CHANNELS> channelActive{};
    std::array<int, midi::CHANNELS> channelKey;
    std::array<double, midi::CHANNELS> channelExactNote;
    /// [audio] By channel: the note that its voice wants now.
    std::array<double, midi::CHANNELS> channelNote{};

    /// [any] In cents, of the channels that are taken.
    std::atomic<double> largestMiss{0.0};

private:
    static std::size_t at(int channel) { return static_cast<std::size_t>(channel); }
    int findMember(int voice) const;

    bool mIsZone = false;
    std::uint64_t mFreeings = 0;
    std::array<std::uint64_t, midi::CHANNELS> mFreed{}; // by channel: which of the freeings was its last
    std::array<double, midi::CHANNELS> mMiss{};         // by channel, 0 for a free one
};
