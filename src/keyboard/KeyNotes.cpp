#include "keyboard/KeyNotes.h"

#include "sound/PdPlayer.h"
#include "sound/ThreadCheck.h"

#include <limits>
#include <optional>
#include <utility>

KeyNotes::KeyNotes(int channels)
    : mKeys(static_cast<std::size_t>(channels) * KeyTable::KEYS)
    , mActive(static_cast<std::size_t>(channels))
{
    for (int place = KeySource::NOTES - 1; place >= 0; --place)
        mFree.push_back(place);
}

// ---------------------------------------------------------------- keys

void KeyNotes::down(PdPlayer& player, int number, const KeyTarget& target, KeyTouch touch,
                    std::uint64_t soFar)
{
    ThreadCheck::audio();
    Key& pressed = key(number);
    if (pressed.presses > 0) {
        if (pressed.presses < std::numeric_limits<std::uint8_t>::max())
            ++pressed.presses;
        return;
    }
    if (pressed.sustained)
        release(player, number);
    pressed.presses = 1;
    ++active(number);

    const std::optional<OrloRatio> ratio =
        target.ratio.numerator() != 0 ? player.keyPitch(target.ratio) : player.keyPitch(target.tempered);
    if (!ratio)
        return;
    if (const int place = placeOf(player.keyOf(*ratio)); place != NONE) {
        if (note(place).fingers > 0)
            return join(number, place);
        while (note(place).id != 0) // only the pedal holds it
            release(player, note(place).owner);
    }
    if (player.isNoteOn(*ratio)) // a ball's, or held
        return;
    const int place = takePlace(player);
    Note& begun = note(place);
    mCount = mCount == std::numeric_limits<std::uint32_t>::max() / KeySource::NOTES - 1 ? 1 : mCount + 1;
    begun.id = mCount * KeySource::NOTES + static_cast<std::uint32_t>(place);
    begun.ratio = *ratio;
    join(number, place);
    begun.told = soFar;
    touch.id = begun.id;
    ++mStruck;
    player.beginKeyNote(*ratio, touch);
}

void KeyNotes::up(PdPlayer& player, int number, bool pedal)
{
    ThreadCheck::audio();
    Key& lifted = key(number);
    if (lifted.presses == 0 || --lifted.presses > 0)
        return;
    if (lifted.note != NONE)
        --note(lifted.note).fingers;
    lifted.sustained = pedal && lifted.note != NONE;
    if (lifted.sustained)
        return;
    --active(number);
    leave(player, number);
}

/// Of a key that only a pedal holds.
void KeyNotes::release(PdPlayer& player, int number)
{
    key(number).sustained = false;
    --active(number);
    leave(player, number);
}

template <class Act>
void KeyNotes::forEachActive(int channel, Act&& act)
{
    const int first = channel * KeyTable::KEYS;
    for (int number = first; active(first) > 0 && number < first + KeyTable::KEYS; ++number)
        act(number);
}

void KeyNotes::lift(PdPlayer& player, int channel, bool pedal)
{
    forEachActive(channel, [&](int number) {
        if (key(number).presses == 0)
            return;
        key(number).presses = 1;
        up(player, number, pedal);
    });
}

void KeyNotes::free(PdPlayer& player, int channel)
{
    forEachActive(channel, [&](int number) {
        if (key(number).sustained)
            release(player, number);
    });
}

void KeyNotes::cut(PdPlayer& player, int channel)
{
    lift(player, channel, false);
    free(player, channel);
}

// ---------------------------------------------------------------- notes

void KeyNotes::press(int number, int pressure)
{
    if (key(number).note == NONE)
        return;
    note(key(number).note).keyPressure = pressure;
    mHasNews = true;
}

int KeyNotes::placeOf(std::uint32_t id) const
{
    const std::size_t place = id % KeySource::NOTES;
    return id != 0 && mNotes[place].id == id ? static_cast<int>(place) : NONE;
}

/// Of a key that is down, as the newest of the note's keys.
void KeyNotes::join(int number, int place)
{
    Note& joined = note(place);
    Key& added = key(number);
    added.note = static_cast<std::int16_t>(place);
    added.older = joined.newest;
    added.newer = NONE;
    (joined.newest == NONE ? joined.owner : key(joined.newest).newer) = number;
    joined.newest = number;
    ++joined.fingers;
}

/// The note ends with its last key. Does nothing for a key without a note.
void KeyNotes::leave(PdPlayer& player, int number)
{
    Key& gone = key(number);
    if (gone.note == NONE)
        return;
    const int place = gone.note;
    Note& left = note(place);
    gone.note = NONE;
    (gone.older == NONE ? left.owner : key(gone.older).newer) = gone.newer;
    (gone.newer == NONE ? left.newest : key(gone.newer).older) = gone.older;
    if (left.owner == NONE) {
        player.endKeyNote(left.ratio, left.id);
        forgetNote(place);
    } else if (gone.older == NONE) {
        left.told = 0;
        mHasNews = true;
    }
}

void KeyNotes::forgetNote(int place)
{
    note(place) = Note();
    mFree.push_back(place);
}

/// There are more places than voices, so some are free once the notes that another command has ended have
/// left theirs.
int KeyNotes::takePlace(PdPlayer& player)
{
    if (mFree.empty())
        forgetEnded(player);
    const int place = mFree.back();
    mFree.pop_back();
    return place;
}

void KeyNotes::forgetEnded(PdPlayer& player)
{
    for (int place = 0; place < KeySource::NOTES; ++place) {
        const Note& ended = note(place);
        if (player.keyOf(ended.ratio) == ended.id)
            continue;
        player.endKeyNote(ended.ratio, ended.id); // the player forgets the id too
        for (int number = ended.owner; number != NONE;) {
            Key& holder = key(number);
            holder.note = NONE;
            if (std::exchange(holder.sustained, false))
                --active(number);
            number = holder.newer;
        }
        forgetNote(place);
    }
}
