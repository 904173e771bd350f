#pragma once

#include "external/MidiInMessage.h"
#include "keyboard/InputChannels.h"
#include "keyboard/KeyNotes.h"
#include "keyboard/KeySettings.h"
#include "keyboard/TablesInUse.h"
#include "sound/ByteRing.h"
#include "sound/KeySource.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <memory>
#include <span>
#include <vector>

class MidiInRing;
struct KeyTable;

/// Plays the engine from MIDI keys. It takes the messages of all inputs at the beginning of a block; what
/// they say of bends, pressure and timbre reaches the voices once, at the end. An input is a slot, with
/// a ring of messages and a table of what its keys play.
///
/// Of one block's messages it takes MESSAGES and of notes STRIKES at most, as many as there are voices; the
/// rest waits in the rings. Nothing blocks or allocates on [audio].
///
/// It must outlive its place in the engine: PdPlayer::setKeySource(nullptr) comes before its end.
class KeyPlay : public KeySource
{
public:
    /// As many as MidiInputs has.
    static constexpr int SLOTS = TablesInUse::SLOTS;
    static constexpr int STRIKES = 128;
    static constexpr int MESSAGES = 4096;

    /// [gui]
    KeyPlay();

    /// [gui] Where the messages of a slot come from; null ends what its keys sound. The ring must live as
    /// long as this object.
    void setRing(int slot, MidiInRing* ring);
    /// [gui] For keys that go down from the next block on; null: they play nothing. What a key began
    /// ends with it, whatever the table says then.
    void setTable(int slot, std::shared_ptr<const KeyTable> table);
    /// [gui] From the next block on. A bend range that is too wide becomes the widest, and a macro that does
    /// not exist none.
    void setSettings(const KeySettings& settings);
    /// [gui] Takes out what has come in, in its order, and returns how many these are. Some 4000 wait; more
    /// are dropped.
    std::size_t takeMessages(std::span<MidiInMessage> messages);

    void playInto(PdPlayer& player) override;

private:
    struct Input
    {
        InputChannels channels;
        MidiInRing* ring = nullptr; // as of the last block
        bool ends = false;          // something was lost, or the input has gone
        bool gone = false;
        std::uint64_t passedOn = 0; // of its changes
    };
    struct Room // in this block
    {
        std::uint64_t lastStrike = 0;
        std::size_t messages = MESSAGES;
    };

    void takeSettings(PdPlayer& player);
    void playSlot(PdPlayer& player, int slot, Room& room);
    static void skipFormer(MidiInRing& ring);
    bool readAll(PdPlayer& player, int slot, Room& room);
    void endInput(PdPlayer& player, int slot);
    void play(PdPlayer& player, int slot, const MidiInMessage& message);
    void press(PdPlayer& player, int slot, const MidiInMessage& message);
    void apply(PdPlayer& player, int slot, const InputChannels::Effect& effect);
    void passChangesOn(PdPlayer& player);
    void passOn(PdPlayer& player, KeyNotes::Note& note);
    InputChannels& channelsOf(int slot) { return mInputs[static_cast<std::size_t>(slot)].channels; }

    std::array<std::atomic<MidiInRing*>, SLOTS> mRings{};
    TablesInUse mTables;
    std::atomic<KeySettings> mSettings{KeySettings()};
    static_assert(std::atomic<KeySettings>::is_always_lock_free);
    ByteRing mTaken; // from [audio] to takeMessages()

    // [audio]
    KeySettings mHeeded;
    std::array<Input, SLOTS> mInputs;
    KeyNotes mNotes;
    std::vector<KeyBend> mBends;
    int mFirst = 0; // the slot that is read first in the next block
};
