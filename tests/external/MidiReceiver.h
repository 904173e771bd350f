#pragma once

#include <array>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <utility>

/// A device at the other end of a port: hears bytes, and knows what sounds. The range of the bend is set
/// for all channels by the first one; tunings hold while a single channel is used.
class MidiReceiver
{
public:
    using Note = std::pair<int, int>; // channel, key

    void hear(std::span<const unsigned char> message);
    const std::set<Note>& notes() const { return mNotes; }
    /// As a MIDI key with its fraction.
    double pitch(const Note& note, bool mpe) const;
    /// Messages that no device understands.
    int broken = 0;

private:
    bool hearShort(std::span<const unsigned char> message);
    bool hearTuning(std::span<const unsigned char> message);

    std::set<Note> mNotes;
    std::map<int, double> mTuning;   // by key
    std::array<double, 16> mBend{};  // -1 to 1
    std::map<int, int> mControllers; // of channel 0
    double mRange = 2.0;             // semitones
};
