#pragma once

#include "keyboard/KeySettings.h"

#include <array>
#include <cstddef>
#include <cstdint>

/// What the sixteen channels of one MIDI input have been told beside their keys: bend with its range, zones,
/// pedal, pressure and controller 74. Channels count from 0. One thread only; nothing here allocates.
///
/// An MPE zone comes by RPN 6 on its manager, the first or the last channel. What the manager is told holds
/// for all of its members. Bends of both add up; a range that comes on one member is that of all members.
class InputChannels
{
public:
    static constexpr int COUNT = 16;
    static constexpr int UNTOLD = -1;

    enum Change : std::size_t { BEND, PRESSURE, TIMBRE };

    /// What a message means for keys: channels as bits.
    struct Effect
    {
        std::uint16_t lifted = 0; // all their keys go up; the pedal goes on holding
        std::uint16_t cut = 0;    // all their notes end
        std::uint16_t freed = 0;  // their pedal goes up
    };

    /// Zones end where they are not wanted any more.
    Effect setSettings(const KeySettings& settings);
    /// Forgets all that the input has told.
    void forget();
    /// All pedals are up.
    void liftPedals();

    /// From 0; 8192 is none.
    void bend(int channel, int value);
    void pressure(int channel, int value);
    Effect control(int channel, int number, int value);

    bool isPedalDown(int channel) const;
    /// Factor of the frequency.
    float bendFactor(int channel) const;
    /// 0 to 127 or UNTOLD.
    int pressureOf(int channel) const { return at(channel).pressure; }
    int timbreOf(int channel) const { return at(channel).timbre; }

    /// Count of changes so far.
    std::uint64_t now() const { return mNow; }
    /// Whether it has been changed since now() was `before`; always after 0.
    bool isNewer(int channel, Change what, std::uint64_t before) const
    {
        return at(channel).changed[what] > before;
    }

private:
    static constexpr int NO_PARAMETER = 0x3FFF;
    static constexpr int FROM_SETTINGS = -1;
    static constexpr int LOWER = 0; // the managers
    static constexpr int UPPER = COUNT - 1;

    struct Channel
    {
        int bend = 8192;
        int rangeCents = FROM_SETTINGS;
        int parameter = NO_PARAMETER; // the registered one that data is entered to
        bool pedal = false;
        int pressure = UNTOLD;
        int timbre = UNTOLD;
        std::array<std::uint64_t, 3> changed{1, 1, 1}; // now() at the last change of each
    };

    Channel& at(int channel) { return mChannels[static_cast<std::size_t>(channel)]; }
    const Channel& at(int channel) const { return mChannels[static_cast<std::size_t>(channel)]; }
    int managerOf(int channel) const;
    std::uint16_t withMembers(int channel) const;
    template <class Act>
    void forEach(std::uint16_t channels, Act&& act);
    void change(Channel& channel, Change what);
    void renew(Channel& channel);
    Effect setPedal(int channel, bool down);
    Effect resetControllers(int channel);
    Effect enterData(int channel, int value, bool fine);
    void setRange(int channel, int cents);
    Effect setZone(int manager, int members);
    double bendSemitones(int channel) const;

    std::array<Channel, COUNT> mChannels;
    int mLowerMembers = 0;
    int mUpperMembers = 0;
    KeySettings mSettings;
    std::uint64_t mNow = 1;
};
