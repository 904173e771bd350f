#pragma once

#include "external/MidiInRing.h"
#include "keyboard/KeyPlay.h"
#include "sound/OrloNoteEvent.h"
#include "sound/OrloTransposeEvent.h"
#include "support/SoundRig.h"

#include <gtest/gtest.h>

#include <array>
#include <initializer_list>
#include <memory>
#include <set>
#include <utility>

/// The engine with a silent patch, and two inputs that play it.
class KeyRig
{
public:
    using Ratio = std::pair<unsigned long long, unsigned long long>;

    KeyRig()
    {
        // Open, and it reports no voice's end: reportEnds() does.
        EXPECT_TRUE(rig.loadMainText("#N canvas 0 0 200 200 12;\n"));
        for (int slot = 0; slot < 2; ++slot)
            play.setRing(slot, &rings.at(static_cast<std::size_t>(slot)));
        EXPECT_TRUE(rig.player.setKeySource(&play));
    }
    ~KeyRig() { rig.player.setKeySource(nullptr); }
    KeyRig(const KeyRig&) = delete;
    KeyRig& operator=(const KeyRig&) = delete;

    /// On all channels of both inputs.
    void setKeys(std::initializer_list<std::pair<int, Ratio>> keys, int slot = 0)
    {
        auto table = std::make_shared<KeyTable>();
        for (const auto& [key, ratio] : keys) {
            for (int channel = 0; channel < KeyTable::CHANNELS; ++channel)
                table->at(channel, key).ratio = OrloRatio(ratio.first, ratio.second);
        }
        play.setTable(slot, table);
    }

    void write(std::initializer_list<int> message, int slot = 0)
    {
        const auto* byte = message.begin();
        rings.at(static_cast<std::size_t>(slot))
            .write({static_cast<std::uint8_t>(byte[0]), static_cast<std::uint8_t>(byte[1]),
                    static_cast<std::uint8_t>(message.size() > 2 ? byte[2] : 0),
                    static_cast<std::uint8_t>(slot)});
    }
    void block() { rig.player.processEvents(); }
    /// Each in a block of its own.
    void send(std::initializer_list<std::initializer_list<int>> messages)
    {
        for (const auto& message : messages) {
            write(message);
            block();
        }
    }
    void send(const OrloEvent& event)
    {
        rig.queue(event);
        block();
    }
    void send(OrloEvent::Type type, float value = 0.0F) { send(OrloEvent(type, value)); }

    std::set<Ratio> sounding() const
    {
        std::set<Ratio> ratios;
        for (const OrloRatio& ratio : rig.player.getAllSoundingRatios())
            ratios.insert({ratio.numerator(), ratio.denominator()});
        return ratios;
    }
    /// Hz; 0 when it does not sound.
    double frequency(Ratio ratio) const
    {
        return double{rig.player.heardFrequency(OrloRatio(ratio.first, ratio.second)).value_or(0.0F)};
    }

    SoundRig rig;
    std::array<MidiInRing, 2> rings;
    KeyPlay play;
};
