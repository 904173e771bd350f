#pragma once

#include "keyboard/KeySettings.h"
#include "keyboard/KeyTable.h"
#include "sound/KeySource.h"

#include <cstddef>
#include <memory>
#include <span>

class MidiInRing;
struct MidiInMessage;

/// Plays the engine from MIDI keys. It takes the messages of all inputs at the beginning of a block.
/// An input is a slot, with a ring of messages and a table of what its keys play.
///
/// It must outlive its place in the engine: PdPlayer::setKeySource(nullptr) comes before its end.
class KeyPlay : public KeySource
{
public:
    /// As many as MidiInputs has.
    static constexpr int SLOTS = 32;

    /// [gui]
    KeyPlay();
    /// [gui]
    ~KeyPlay() override;
    KeyPlay(const KeyPlay&) = delete;
    KeyPlay& operator=(const KeyPlay&) = delete;

    /// [gui] Where the messages of a slot come from; null ends what its keys sound. The ring must live as
    /// long as this object.
    void setRing(int slot, MidiInRing* ring);
    /// [gui] For keys that go down from the next block on; null: they play nothing. What a key began
    /// ends with it, whatever the table says then.
    void setTable(int slot, std::shared_ptr<const KeyTable> table);
    /// [gui] From the next block on.
    void setSettings(const KeySettings& settings);
    /// [gui] Takes out what has come in, in its order, and returns how many these are. What nobody takes is
    /// dropped.
    std::size_t takeMessages(std::span<MidiInMessage> messages);

    void playInto(PdPlayer& player) override;

private:
    struct State;

    std::unique_ptr<State> mState;
};
