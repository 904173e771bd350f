#include "keyboard/InputChannels.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr int BEND_CENTRE = 8192;
constexpr int DEFAULT_MEMBER_CENTS = 4800;
constexpr int DEFAULT_MANAGER_CENTS = 200;

enum Parameter { BEND_RANGE = 0, ZONE = 6 };

enum Controller {
    DATA_COARSE = 6,
    DATA_FINE = 38,
    PEDAL = 64,
    TIMBRE_CONTROLLER = 74,
    OTHER_PARAMETER_FINE = 98,
    OTHER_PARAMETER_COARSE = 99,
    PARAMETER_FINE = 100,
    PARAMETER_COARSE = 101,
    ALL_SOUND_OFF = 120,
    RESET_CONTROLLERS = 121,
    ALL_NOTES_OFF = 123,
    LAST_MODE = 127, // the modes from here back to 124 end all notes too
};

std::uint16_t bit(int channel)
{
    return static_cast<std::uint16_t>(1U << static_cast<unsigned>(channel));
}

} // namespace

// ---------------------------------------------------------------- zones

/// The manager of the zone that has this channel as a member; else the channel itself.
int InputChannels::managerOf(int channel) const
{
    if (channel > LOWER && channel <= mLowerMembers)
        return LOWER;
    if (channel < UPPER && channel >= UPPER - mUpperMembers)
        return UPPER;
    return channel;
}

/// The channel, and the members that it is the manager of.
std::uint16_t InputChannels::withMembers(int channel) const
{
    std::uint16_t all = bit(channel);
    for (int other = 0; other < COUNT; ++other) {
        if (managerOf(other) == channel)
            all |= bit(other);
    }
    return all;
}

template <class Act>
void InputChannels::forEach(std::uint16_t channels, Act&& act)
{
    for (int channel = 0; channel < COUNT; ++channel) {
        if ((channels & bit(channel)) != 0)
            act(at(channel));
    }
}

/// A channel whose part in the zones changes begins anew. A zone that is told again keeps its notes.
InputChannels::Effect InputChannels::setZone(int manager, int members)
{
    std::array<std::pair<int, bool>, COUNT> before;
    const auto part = [this](int channel) {
        const bool manages =
            (channel == LOWER && mLowerMembers > 0) || (channel == UPPER && mUpperMembers > 0);
        return std::pair(managerOf(channel), manages);
    };
    for (int channel = 0; channel < COUNT; ++channel)
        before[static_cast<std::size_t>(channel)] = part(channel);

    int& own = manager == LOWER ? mLowerMembers : mUpperMembers;
    int& other = manager == LOWER ? mUpperMembers : mLowerMembers;
    own = members;
    if (members > 0) // the newer zone takes channels from the older
        other = std::min(other, std::max(0, COUNT - 2 - members));

    Effect effect;
    for (int channel = 0; channel < COUNT; ++channel) {
        if (before[static_cast<std::size_t>(channel)] == part(channel))
            continue;
        effect.cut |= bit(channel);
        renew(at(channel));
    }
    if (members > 0) {
        forEach(withMembers(manager), [this](Channel& channel) {
            channel.rangeCents = DEFAULT_MEMBER_CENTS;
            change(channel, BEND);
        });
        at(manager).rangeCents = DEFAULT_MANAGER_CENTS;
    }
    return effect;
}

InputChannels::Effect InputChannels::setSettings(const KeySettings& settings)
{
    Effect effect;
    if (!settings.mpe) {
        effect.cut |= setZone(LOWER, 0).cut;
        effect.cut |= setZone(UPPER, 0).cut;
    }
    if (settings.bendSemitones != mSettings.bendSemitones) {
        for (Channel& channel : mChannels)
            change(channel, BEND);
    }
    mSettings = settings;
    return effect;
}

void InputChannels::forget()
{
    mLowerMembers = 0;
    mUpperMembers = 0;
    for (Channel& channel : mChannels) {
        renew(channel);
        channel.parameter = NO_PARAMETER;
    }
}

void InputChannels::liftPedals()
{
    for (Channel& channel : mChannels)
        channel.pedal = false;
}

// ---------------------------------------------------------------- bend, pressure, timbre

void InputChannels::change(Channel& channel, Change what)
{
    channel.changed[what] = ++mNow;
}

/// As an input that has told nothing has it; but the parameter that data goes to stays.
void InputChannels::renew(Channel& channel)
{
    channel = Channel{.parameter = channel.parameter, .changed = channel.changed};
    change(channel, BEND);
}

void InputChannels::bend(int channel, int value)
{
    at(channel).bend = value;
    forEach(withMembers(channel), [this](Channel& bent) { change(bent, BEND); });
}

double InputChannels::bendSemitones(int channel) const
{
    const Channel& bent = at(channel);
    const double cents = bent.rangeCents == FROM_SETTINGS ? 100.0 * mSettings.bendSemitones : bent.rangeCents;
    return (bent.bend - BEND_CENTRE) * cents / (100.0 * BEND_CENTRE);
}

float InputChannels::bendFactor(int channel) const
{
    const int manager = managerOf(channel);
    const double semitones = bendSemitones(channel) + (manager == channel ? 0.0 : bendSemitones(manager));
    return static_cast<float>(std::exp2(semitones / 12.0));
}

void InputChannels::setRange(int channel, int cents)
{
    const int manager = managerOf(channel);
    std::uint16_t changed = withMembers(channel);
    if (manager != channel) {
        changed = withMembers(manager) & static_cast<std::uint16_t>(~bit(manager));
        forEach(changed, [cents](Channel& member) { member.rangeCents = cents; });
    } else {
        at(channel).rangeCents = cents;
    }
    forEach(changed, [this](Channel& bent) { change(bent, BEND); });
}

void InputChannels::pressure(int channel, int value)
{
    forEach(withMembers(channel), [this, value](Channel& pressed) {
        pressed.pressure = value;
        change(pressed, PRESSURE);
    });
}

// ---------------------------------------------------------------- controllers

bool InputChannels::isPedalDown(int channel) const
{
    return at(channel).pedal || at(managerOf(channel)).pedal;
}

InputChannels::Effect InputChannels::setPedal(int channel, bool down)
{
    Effect effect;
    const bool was = std::exchange(at(channel).pedal, down);
    if (was && !down)
        effect.freed = withMembers(channel);
    for (int other = 0; other < COUNT; ++other) {
        if (isPedalDown(other))
            effect.freed &= static_cast<std::uint16_t>(~bit(other));
    }
    return effect;
}

/// As MIDI's recommended practice has it: bend, pressure, pedal and the choice of a parameter.
InputChannels::Effect InputChannels::resetControllers(int channel)
{
    const std::uint16_t all = withMembers(channel);
    forEach(all, [this](Channel& reset) {
        reset.bend = BEND_CENTRE;
        reset.parameter = NO_PARAMETER;
        reset.pedal = false;
        change(reset, BEND);
        if (reset.pressure != UNTOLD) {
            reset.pressure = 0;
            change(reset, PRESSURE);
        }
    });
    Effect effect;
    for (int other = 0; other < COUNT; ++other) {
        if (!isPedalDown(other))
            effect.freed |= all & bit(other);
    }
    return effect;
}

InputChannels::Effect InputChannels::enterData(int channel, int value, bool fine)
{
    Channel& told = at(channel);
    if (told.parameter == BEND_RANGE) {
        const int now = std::max(0, told.rangeCents);
        const int cents = fine ? now / 100 * 100 + value : value * 100;
        setRange(channel, std::min(cents, 100 * KeySettings::MAX_BEND_SEMITONES));
    } else if (told.parameter == ZONE && !fine && mSettings.mpe && (channel == LOWER || channel == UPPER)
               && value < COUNT) {
        return setZone(channel, value);
    }
    return {};
}

InputChannels::Effect InputChannels::control(int channel, int number, int value)
{
    Channel& told = at(channel);
    switch (number) {
    case DATA_COARSE: return enterData(channel, value, false);
    case DATA_FINE: return enterData(channel, value, true);
    case PEDAL: return setPedal(channel, value >= 64);
    case TIMBRE_CONTROLLER:
        forEach(withMembers(channel), [this, value](Channel& coloured) {
            coloured.timbre = value;
            change(coloured, TIMBRE);
        });
        return {};
    case OTHER_PARAMETER_FINE:
    case OTHER_PARAMETER_COARSE: told.parameter = NO_PARAMETER; return {};
    case PARAMETER_FINE: told.parameter = (told.parameter & ~0x7F) | value; return {};
    case PARAMETER_COARSE: told.parameter = (told.parameter & 0x7F) | value << 7; return {};
    case ALL_SOUND_OFF: return {.cut = withMembers(channel)};
    case RESET_CONTROLLERS: return resetControllers(channel);
    default: break;
    }
    if (number >= ALL_NOTES_OFF && number <= LAST_MODE)
        return {.lifted = withMembers(channel)};
    return {};
}
