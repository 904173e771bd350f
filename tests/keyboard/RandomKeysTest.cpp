// Long random play on two inputs, with doubled keys, pedals, bends, transpositions, other tables, balls, hold
// and stops, against a simple model of the rules: who holds which note. After every block what sounds, and in
// which pitch, must be what the model says; at the end nothing sounds any more.
//
// ORLO_KEYS_BLOCKS and ORLO_KEYS_SEED in the environment make it longer, or another one.

#include "KeyRig.h"

#include "sound/PatchEar.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>
#include <map>
#include <random>
#include <vector>

namespace {

using Ratio = KeyRig::Ratio;
using Key = std::array<int, 3>;     // input, channel, key
using Channel = std::array<int, 2>; // input, channel

constexpr int CHANNELS = 3;
constexpr int KEYS = 12;
constexpr std::array PITCHES{Ratio{1, 1}, Ratio{3, 2}, Ratio{4, 3}, Ratio{5, 4},  Ratio{7, 4},
                             Ratio{2, 1}, Ratio{0, 1}, Ratio{9, 8}, Ratio{41, 32}};

Ratio product(Ratio a, Ratio b)
{
    const OrloConstants::Rational exact =
        OrloConstants::Rational(a.first, a.second) * OrloConstants::Rational(b.first, b.second);
    return {exact.numerator(), exact.denominator()};
}

bool isPitch(Ratio ratio)
{
    return ratio.first != 0 && ratio.first != 41;
}

/// Notes stand in a list of what sounds. A note of keys knows who holds it: fingers, and pedals for keys that
/// have gone up.
class KeyModel
{
public:
    using Table = std::map<Key, Ratio>;

    struct Note
    {
        std::vector<Key> holders; // in the order in which they came; none: it is no key's
        std::set<Key> sustained;  // of these
        int velocity = 0;
    };

    void down(const Key& key, int velocity)
    {
        if (++presses[key] > 1)
            return;
        dropIf(
            [&](const Key& held, const Note& note) { return held == key && note.sustained.contains(key); });
        const Ratio pitch = table[key];
        if (!isPitch(pitch))
            return;
        const Ratio ratio = product(pitch, transposition);
        if (const auto at = sounding.find(ratio); at != sounding.end()) {
            Note& note = at->second;
            if (note.holders.empty())
                return;
            if (note.holders.size() > note.sustained.size()) {
                note.holders.push_back(key);
                return;
            }
            if (isHeld(ratio)) { // it goes on, and is no key's any more
                note = {};
                return;
            }
        }
        sounding[ratio] = {{key}, {}, velocity};
    }

    void up(const Key& key)
    {
        if (presses[key] == 0 || --presses[key] > 0)
            return;
        for (auto& [ratio, note] : sounding) {
            if (holds(note, key) && pedals[{key[0], key[1]}])
                note.sustained.insert(key);
        }
        dropIf(
            [&](const Key& held, const Note& note) { return held == key && !note.sustained.contains(key); });
    }

    void pedal(const Channel& channel, bool isDown)
    {
        pedals[channel] = isDown;
        if (isDown)
            return;
        dropIf([&](const Key& held, const Note& note) {
            return Channel{held[0], held[1]} == channel && note.sustained.contains(held);
        });
    }

    void allUp(const Channel& channel)
    {
        for (auto& [key, count] : presses) {
            if (Channel{key[0], key[1]} == channel && count > 0) {
                count = 1;
                up(key);
            }
        }
    }

    void allEnd(const Channel& channel)
    {
        for (auto& [key, count] : presses) {
            if (Channel{key[0], key[1]} == channel)
                count = 0;
        }
        dropIf([&](const Key& held, const Note&) { return Channel{held[0], held[1]} == channel; });
    }

    void ball(Ratio ratio)
    {
        if (sounding.erase(ratio) == 0)
            sounding[ratio] = {};
    }

    void hold(bool isOn)
    {
        isHolding = isOn;
        heldRatios.clear();
        for (const auto& [ratio, note] : sounding) {
            if (isOn)
                heldRatios.insert(ratio);
        }
    }

    /// Semitones by which the note's oldest key bends it.
    double bendOf(const Note& note) const
    {
        const auto at = bends.find({note.holders.front()[0], note.holders.front()[1]});
        return at == bends.end() ? 0.0 : (at->second - 8192) / 8192.0 * 2.0;
    }

    Table table;
    Ratio transposition{1, 1};
    std::map<Key, int> presses;
    std::map<Channel, bool> pedals;
    std::map<Channel, int> bends;
    std::map<Ratio, Note> sounding;

private:
    static bool holds(const Note& note, const Key& key)
    {
        return std::ranges::find(note.holders, key) != note.holders.end();
    }
    bool isHeld(Ratio ratio) const { return isHolding && heldRatios.contains(ratio); }

    template <class Which>
    void dropIf(Which&& which)
    {
        for (auto at = sounding.begin(); at != sounding.end();) {
            Note& note = at->second;
            const bool wasKeys = !note.holders.empty();
            std::erase_if(note.holders, [&](const Key& key) { return which(key, note); });
            std::erase_if(note.sustained, [&](const Key& key) { return !holds(note, key); });
            const bool ends = wasKeys && note.holders.empty() && !isHeld(at->first);
            at = ends ? sounding.erase(at) : std::next(at);
        }
    }

    bool isHolding = false;
    std::set<Ratio> heldRatios;
};

class RandomKeys : public ::testing::Test, protected KeyRig
{
protected:
    static int fromEnvironment(const char* name, int otherwise)
    {
        bool isNumber = false;
        const int number = qEnvironmentVariableIntValue(name, &isNumber);
        return isNumber ? number : otherwise;
    }
    int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random); }
    Ratio anyPitch() { return PITCHES.at(static_cast<std::size_t>(below(static_cast<int>(PITCHES.size())))); }

    void newTable(int input)
    {
        auto keys = std::make_shared<KeyTable>();
        for (int channel = 0; channel < CHANNELS; ++channel) {
            for (int key = 0; key < KEYS; ++key) {
                const Ratio pitch = anyPitch();
                model.table[{input, channel, key}] = pitch;
                keys->at(channel, key).ratio = OrloRatio(pitch.first, pitch.second);
            }
        }
        play.setTable(input, keys);
    }

    /// Of one input, since the order of two in a block is their own.
    void anyMessage(int input)
    {
        const int channel = below(CHANNELS);
        const Key key{input, channel, below(KEYS)};
        const int velocity = 1 + below(127);
        switch (below(16)) {
        case 0:
        case 1: {
            const bool isDown = below(2) == 0;
            write({0xB0 + channel, 64, isDown ? 127 : 0}, input);
            return model.pedal({input, channel}, isDown);
        }
        case 2: {
            const int bend = below(16384);
            write({0xE0 + channel, bend & 0x7F, bend >> 7}, input);
            model.bends[{input, channel}] = bend;
            return;
        }
        case 3:
            if (below(4) != 0)
                return;
            write({0xB0 + channel, below(2) == 0 ? 123 : 126, 0}, input);
            return model.allUp({input, channel});
        case 4:
            if (below(4) != 0)
                return;
            write({0xB0 + channel, 120, 0}, input);
            return model.allEnd({input, channel});
        case 5:
        case 6:
        case 7:
        case 8:
        case 9: write({0x80 + channel, key[2], 64}, input); return model.up(key);
        case 10: write({0x90 + channel, key[2], 0}, input); return model.up(key);
        default: write({0x90 + channel, key[2], velocity}, input); return model.down(key, velocity);
        }
    }

    /// Behind the messages of the same block.
    void anyCommand()
    {
        switch (below(12)) {
        case 0: {
            const Ratio by = model.transposition == Ratio{1, 1} ? Ratio{3, 2} : Ratio{2, 3};
            rig.queue(OrloTransposeEvent(OrloRatio(by.first, by.second)));
            model.transposition = product(model.transposition, by);
            return;
        }
        case 1:
        case 2: {
            const Ratio pitch = product(anyPitch(), model.transposition);
            if (!isPitch(pitch))
                return;
            rig.queue(OrloNoteEvent(OrloRatio(pitch.first, pitch.second), OrloNoteEvent::OVERRIDES_HOLD));
            return model.ball(pitch);
        }
        case 3:
            if (below(4) != 0)
                return;
            rig.queue(OrloEvent(OrloEvent::AllNotesOffForced, 1.0F));
            model.sounding.clear();
            return;
        case 4: {
            const bool isOn = below(3) == 0;
            rig.queue(OrloEvent(OrloEvent::NodesHold, isOn ? 1.0F : 0.0F));
            return model.hold(isOn);
        }
        default: return;
        }
    }

    void compare()
    {
        std::set<Ratio> expected;
        for (const auto& [ratio, note] : model.sounding)
            expected.insert(ratio);
        ASSERT_EQ(sounding(), expected);
        for (const auto& [ratio, note] : model.sounding) {
            if (note.holders.empty())
                continue;
            const double hz = 440.0 * static_cast<double>(ratio.first) / static_cast<double>(ratio.second);
            const double cents = 1200.0 * std::log2(frequency(ratio) / hz);
            ASSERT_NEAR(cents, 100.0 * model.bendOf(note), 0.005) << ratio.first << '/' << ratio.second;
        }
    }

    void compareVelocities()
    {
        for (const auto& [key, slot] : std::exchange(ear.sounding.given, {})) {
            const auto at = model.sounding.find(key);
            if (at != model.sounding.end() && !at->second.holders.empty())
                voiceSlots[key] = slot;
        }
        for (const auto& [ratio, note] : model.sounding) {
            if (note.holders.empty())
                continue;
            const float macro = ear.voices.at(voiceSlots.at(ratio) + 1).macros[0];
            ASSERT_EQ(macro, static_cast<float>(note.velocity) / 127.0F);
        }
    }

    /// So that no voice has to be stolen.
    void reportEnds()
    {
        for (std::size_t voice = 1; voice < ear.voices.size(); ++voice) {
            if (ear.voices[voice].gate == 0.0F) {
                ear.voices[voice].gate = -1.0F;
                SoundRig::reportVoiceStop(static_cast<float>(voice));
            }
        }
    }

    void runBlock()
    {
        block();
        reportEnds();
        compare();
        compareVelocities();
        QCoreApplication::processEvents();
    }

    std::mt19937 random{static_cast<unsigned>(fromEnvironment("ORLO_KEYS_SEED", 16))};
    KeyModel model;
    PatchEar ear{rig.player};
    std::map<Ratio, std::size_t> voiceSlots;
};

} // namespace

TEST_F(RandomKeys, SoundAsTheModelSaysAndNothingHangsOn)
{
    newTable(0);
    newTable(1);
    const int blocks = fromEnvironment("ORLO_KEYS_BLOCKS", 6000);
    int sounded = 0;
    for (int i = 0; i < blocks && !HasFatalFailure(); ++i) {
        SCOPED_TRACE(i);
        if (below(20) == 0)
            newTable(below(2));
        const int input = below(2);
        for (int messages = below(8); messages > 0; --messages)
            anyMessage(input);
        anyCommand();
        runBlock();
        sounded += static_cast<int>(model.sounding.size());
    }
    EXPECT_GT(sounded, blocks) << "the play was too thin to tell anything";

    // Everything goes up, in any order.
    for (int input = 0; input < 2; ++input) {
        std::vector<std::array<int, 3>> ups;
        for (int channel = 0; channel < CHANNELS; ++channel) {
            for (int key = 0; key < KEYS; ++key)
                ups.insert(ups.end(), static_cast<std::size_t>(model.presses[{input, channel, key}]),
                           {0x80 + channel, key, 0});
            ups.push_back({0xB0 + channel, 64, 0});
        }
        std::ranges::shuffle(ups, random);
        for (const auto& [status, key, value] : ups)
            write({status, key, value}, input);
        block();
    }
    for (const auto& [ratio, note] : std::map(model.sounding)) {
        if (note.holders.empty())
            rig.queue(OrloNoteEvent(OrloRatio(ratio.first, ratio.second), OrloNoteEvent::OVERRIDES_HOLD));
    }
    rig.queue(OrloEvent(OrloEvent::NodesHold, 0.0F));
    block();
    for (const Ratio& left : sounding()) // what hold kept until then
        rig.queue(OrloNoteEvent(OrloRatio(left.first, left.second)));
    block();
    EXPECT_EQ(sounding(), std::set<Ratio>());
}
