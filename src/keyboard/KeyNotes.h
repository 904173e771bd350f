#pragma once

#include "keyboard/KeyTable.h"
#include "sound/KeySource.h"
#include "sound/KeyTouch.h"

#include <array>
#include <cstdint>
#include <utility>
#include <vector>

class PdPlayer;

/// Which keys are down, and which note each of them has begun. A key is a number: its channel times 128
/// plus the key, where the channels of all inputs count on.
///
/// A key that goes down twice goes up twice. Keys of one pitch share a note, which is struck by the first
/// and ends with the last of them; its bend is that of the oldest of them. Under a pedal a note goes on
/// with no finger on it, and the next key of its pitch strikes it anew. A note that sounds already and is
/// no key's stays as it is.
///
/// Made once; nothing here allocates after that.
class KeyNotes
{
public:
    /// [gui]
    explicit KeyNotes(int channels);

    /// [audio] The id of the touch is set here. The touch holds what the key's channel has been told `soFar`,
    /// by InputChannels::now().
    void down(PdPlayer& player, int key, const KeyTarget& target, KeyTouch touch, std::uint64_t soFar);
    /// [audio]
    void up(PdPlayer& player, int key, bool pedal);
    /// [audio] Each key of a channel goes up, however often it is down.
    void lift(PdPlayer& player, int channel, bool pedal);
    /// [audio] What the pedal held ends.
    void free(PdPlayer& player, int channel);
    /// [audio] All that the keys of a channel sound ends, and they are up.
    void cut(PdPlayer& player, int channel);

    struct Note
    {
        OrloRatio ratio;      // absolute
        std::uint32_t id = 0; // 0: this place is free
        int owner = NONE;     // the oldest of its keys
        int newest = NONE;
        int fingers = 0;        // keys that are down; the others are held by a pedal
        int keyPressure = NONE; // from 0 to 127, told of one key and not passed on yet
        std::uint64_t told = 0; // what it has of its owner's channel: InputChannels::now()
    };
    static constexpr int NONE = -1;

    /// [audio] How many notes have been begun so far.
    std::uint64_t struck() const { return mStruck; }
    /// [audio] From 0 to 127, of one key.
    void press(int key, int pressure);
    /// [audio] Something in notes() is to be passed on; not any more once it has been asked.
    bool takeNews() { return std::exchange(mHasNews, false); }
    /// [audio] Places of notes, many of them free. A note may have been ended by another command.
    std::array<Note, KeySource::NOTES>& notes() { return mNotes; }

private:
    struct Key
    {
        int older = NONE; // of the same note
        int newer = NONE;
        std::int16_t note = NONE;
        std::uint8_t presses = 0;
        bool sustained = false;
    };

    Key& key(int number) { return mKeys[static_cast<std::size_t>(number)]; }
    int& active(int number) { return mActive[static_cast<std::size_t>(number / KeyTable::KEYS)]; }
    Note& note(int place) { return mNotes[static_cast<std::size_t>(place)]; }
    int placeOf(std::uint32_t id) const;
    void join(int number, int place);
    void leave(PdPlayer& player, int number);
    void release(PdPlayer& player, int number);
    void forgetNote(int place);
    int takePlace(PdPlayer& player);
    void forgetEnded(PdPlayer& player);
    template <class Act>
    void forEachActive(int channel, Act&& act);

    std::vector<Key> mKeys;
    std::vector<int> mActive; // by channel: keys that are down or sustained
    std::array<Note, KeySource::NOTES> mNotes;
    std::vector<int> mFree;
    std::uint32_t mCount = 0;
    std::uint64_t mStruck = 0;
    bool mHasNews = false;
};
