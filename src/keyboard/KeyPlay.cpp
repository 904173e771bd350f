#include "keyboard/KeyPlay.h"

#include "external/MidiInRing.h"
#include "external/MidiInputs.h"
#include "keyboard/KeyTable.h"
#include "sound/AudioLog.h"
#include "sound/NodeParameters.h"
#include "sound/PdPlayer.h"
#include "sound/ThreadCheck.h"

#include <QDebug>

#include <algorithm>
#include <utility>

static_assert(KeyPlay::SLOTS == MidiInputs::SLOTS);

namespace {

constexpr int CHANNELS = InputChannels::COUNT;
constexpr float HIGHEST_DATA = 127.0F;
constexpr std::size_t AT_ONCE = 64;
constexpr std::size_t TAKEN_BYTES = 4096 * sizeof(MidiInMessage);

enum Status {
    NOTE_OFF = 0x80,
    NOTE_ON = 0x90,
    KEY_PRESSURE = 0xA0,
    CONTROL = 0xB0,
    PRESSURE = 0xD0,
    BEND = 0xE0
};

int channelOf(int slot, int channel)
{
    return slot * CHANNELS + channel;
}

int keyOf(int slot, const MidiInMessage& message)
{
    return channelOf(slot, message.status & 0x0F) * KeyTable::KEYS + (message.data1 & 0x7F);
}

} // namespace

KeyPlay::KeyPlay()
    : mNotes(SLOTS * CHANNELS)
{
    mBends.reserve(NOTES);
    if (!mTaken.init(TAKEN_BYTES))
        qCritical() << "There is no memory for the messages of MIDI inputs.";
}

// ---------------------------------------------------------------- the graphical thread's side

void KeyPlay::setRing(int slot, MidiInRing* ring)
{
    ThreadCheck::gui();
    mRings[static_cast<std::size_t>(slot)].store(ring, std::memory_order_release);
}

void KeyPlay::setTable(int slot, std::shared_ptr<const KeyTable> table)
{
    mTables.set(slot, std::move(table));
}

void KeyPlay::setSettings(const KeySettings& settings)
{
    ThreadCheck::gui();
    const auto macro = [](std::uint8_t number) {
        return number <= NodeParameters::MACRO_COUNT ? number : std::uint8_t{0};
    };
    KeySettings valid = settings;
    valid.bendSemitones = std::min(settings.bendSemitones, KeySettings::MAX_BEND_SEMITONES);
    valid.pressureMacro = macro(settings.pressureMacro);
    valid.timbreMacro = macro(settings.timbreMacro);
    mSettings.store(valid, std::memory_order_relaxed);
}

std::size_t KeyPlay::takeMessages(std::span<MidiInMessage> messages)
{
    ThreadCheck::gui();
    mTables.freeUnread();
    std::size_t taken = 0;
    while (taken < messages.size() && mTaken.read(&messages[taken], sizeof(MidiInMessage)))
        ++taken;
    return taken;
}

// ---------------------------------------------------------------- a block

void KeyPlay::playInto(PdPlayer& player)
{
    ThreadCheck::audio();
    mTables.enter();
    takeSettings(player);
    Room room{.lastStrike = mNotes.struck() + STRIKES};
    for (int i = 0; i < SLOTS; ++i)
        playSlot(player, (mFirst + i) % SLOTS, room);
    mFirst = (mFirst + 1) % SLOTS; // so that no input is kept waiting by the others
    passChangesOn(player);
    mTables.leave();
}

void KeyPlay::takeSettings(PdPlayer& player)
{
    const KeySettings settings = mSettings.load(std::memory_order_relaxed);
    if (settings == mHeeded)
        return;
    mHeeded = settings;
    for (int slot = 0; slot < SLOTS; ++slot)
        apply(player, slot, channelsOf(slot).setSettings(settings));
}

void KeyPlay::playSlot(PdPlayer& player, int slot, Room& room)
{
    Input& input = mInputs[static_cast<std::size_t>(slot)];
    MidiInRing* ring = mRings[static_cast<std::size_t>(slot)].load(std::memory_order_acquire);
    if (ring != input.ring) {
        input.gone = true;
        endInput(player, slot);
        input.ring = ring;
        if (ring)
            skipFormer(*ring);
    }
    if (!ring)
        return;
    if (const std::uint32_t lost = ring->takeLost()) {
        AudioLog::rationed("A MIDI input sent more than can be taken: %1 messages were dropped, and its "
                           "notes end.",
                           {static_cast<unsigned long long>(lost)});
        input.ends = true;
    }
    if (ring->takeGone())
        input.ends = input.gone = true;
    // Whatever has been lost came behind what the ring still has, so its keys end after that.
    if (readAll(player, slot, room) && input.ends)
        endInput(player, slot);
}

/// What was played before anybody asked for it, perhaps by a former input of this ring.
void KeyPlay::skipFormer(MidiInRing& ring)
{
    std::array<MidiInMessage, AT_ONCE> messages;
    for (std::size_t left = MidiInRing::CAPACITY; left > 0;) {
        const std::size_t count = ring.read(std::span(messages).first(std::min(left, AT_ONCE)));
        if (count == 0)
            break;
        left -= count;
    }
    ring.takeLost();
    ring.takeGone();
}

/// False when there is no room in this block for what is left.
bool KeyPlay::readAll(PdPlayer& player, int slot, Room& room)
{
    std::array<MidiInMessage, AT_ONCE> messages;
    for (;;) {
        const auto strikes = static_cast<std::size_t>(room.lastStrike - mNotes.struck());
        const std::size_t wanted = std::min({AT_ONCE, strikes, room.messages});
        if (wanted == 0)
            return false;
        const std::size_t count =
            mInputs[static_cast<std::size_t>(slot)].ring->read(std::span(messages).first(wanted));
        for (const MidiInMessage& message : std::span(messages).first(count)) {
            play(player, slot, message);
            mTaken.write(&message, sizeof(message));
        }
        room.messages -= count;
        if (count < wanted)
            return true;
    }
}

void KeyPlay::endInput(PdPlayer& player, int slot)
{
    Input& input = mInputs[static_cast<std::size_t>(slot)];
    input.ends = false;
    for (int channel = 0; channel < CHANNELS; ++channel)
        mNotes.cut(player, channelOf(slot, channel));
    input.channels.liftPedals();
    if (std::exchange(input.gone, false))
        input.channels.forget();
}

// ---------------------------------------------------------------- a message

void KeyPlay::play(PdPlayer& player, int slot, const MidiInMessage& message)
{
    InputChannels& channels = channelsOf(slot);
    const int channel = message.status & 0x0F;
    const int first = message.data1 & 0x7F;
    const int second = message.data2 & 0x7F;
    switch (message.status & 0xF0) {
    case NOTE_ON:
        if (second > 0)
            return press(player, slot, message);
        [[fallthrough]];
    case NOTE_OFF: return mNotes.up(player, keyOf(slot, message), channels.isPedalDown(channel));
    case KEY_PRESSURE: return mNotes.press(keyOf(slot, message), second);
    case CONTROL: return apply(player, slot, channels.control(channel, first, second));
    case PRESSURE: return channels.pressure(channel, first);
    case BEND: return channels.bend(channel, second << 7 | first);
    default: return;
    }
}

void KeyPlay::press(PdPlayer& player, int slot, const MidiInMessage& message)
{
    static const KeyTarget nothing;
    const InputChannels& channels = channelsOf(slot);
    const int channel = message.status & 0x0F;
    const int key = message.data1 & 0x7F;
    KeyTouch touch;
    touch.velocity = static_cast<float>(message.data2 & 0x7F) / HIGHEST_DATA;
    touch.bend = channels.bendFactor(channel);
    // What the channel has been told before; but the first macro begins with the velocity.
    const auto before = [&touch](int macro, int value) {
        if (macro > 1 && value != InputChannels::UNTOLD)
            touch.macros.at(static_cast<std::size_t>(macro - 1)) = static_cast<float>(value) / HIGHEST_DATA;
    };
    before(mHeeded.pressureMacro, channels.pressureOf(channel));
    before(mHeeded.timbreMacro, channels.timbreOf(channel));
    const KeyTable* table = mTables.at(slot);
    mNotes.down(player, keyOf(slot, message), table ? table->at(channel, key) : nothing, touch,
                channels.now());
}

void KeyPlay::apply(PdPlayer& player, int slot, const InputChannels::Effect& effect)
{
    for (int channel = 0; channel < CHANNELS; ++channel) {
        const unsigned bit = 1U << static_cast<unsigned>(channel);
        const int of = channelOf(slot, channel);
        if ((effect.lifted & bit) != 0)
            mNotes.lift(player, of, channelsOf(slot).isPedalDown(channel));
        if ((effect.cut & bit) != 0)
            mNotes.cut(player, of);
        if ((effect.freed & bit) != 0)
            mNotes.free(player, of);
    }
}

// ---------------------------------------------------------------- at the end of a block

/// What inputs have told since each note was told last; how often within a block does not matter.
void KeyPlay::passChangesOn(PdPlayer& player)
{
    bool hasNews = mNotes.takeNews();
    for (Input& input : mInputs)
        hasNews |= std::exchange(input.passedOn, input.channels.now()) != input.channels.now();
    if (!hasNews)
        return;
    mBends.clear();
    for (KeyNotes::Note& note : mNotes.notes()) {
        if (note.id != 0)
            passOn(player, note);
    }
    if (!mBends.empty())
        player.bendKeyNotes(mBends);
}

void KeyPlay::passOn(PdPlayer& player, KeyNotes::Note& note)
{
    const int of = note.owner / KeyTable::KEYS;
    const int channel = of % CHANNELS;
    const InputChannels& channels = channelsOf(of / CHANNELS);
    const std::uint64_t before = std::exchange(note.told, channels.now());
    const auto pass = [&](int macro, int value) {
        if (macro > 0 && value != InputChannels::UNTOLD)
            player.setKeyMacro(note.ratio, note.id, macro, static_cast<float>(value) / HIGHEST_DATA);
    };
    if (channels.isNewer(channel, InputChannels::BEND, before))
        mBends.push_back({note.ratio, note.id, channels.bendFactor(channel)});
    if (channels.isNewer(channel, InputChannels::PRESSURE, before))
        pass(mHeeded.pressureMacro, channels.pressureOf(channel));
    if (channels.isNewer(channel, InputChannels::TIMBRE, before))
        pass(mHeeded.timbreMacro, channels.timbreOf(channel));
    pass(mHeeded.pressureMacro, std::exchange(note.keyPressure, InputChannels::UNTOLD));
}
