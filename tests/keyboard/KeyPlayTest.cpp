// Keys that play the engine: what begins and ends a note, and what bends it.

#include "KeyRig.h"

#include "sound/OrloNodeSelectToggleEvent.h"
#include "sound/PatchEar.h"
#include "support/BlockCost.h"
#include "support/LogCatcher.h"

#include <QCoreApplication>

#include <z_libpd.h>

#include <atomic>
#include <cmath>
#include <functional>
#include <limits>
#include <thread>

namespace {

using Ratio = KeyRig::Ratio;
using Messages = std::initializer_list<std::initializer_list<int>>;

constexpr Ratio FIFTH{3, 2};
constexpr Ratio FOURTH{4, 3};
constexpr double CENT = 1.0 / 1200.0; // octaves
constexpr double A = 440.0;

class KeyPlaying : public ::testing::Test, protected KeyRig
{
protected:
    KeyPlaying()
    {
        setKeys({{60, FIFTH}, {61, FOURTH}, {62, FIFTH}, {63, {37, 32}}, {64, {7, 4}}, {65, {1, 1}}});
    }

    float macroOf(std::size_t voice, std::size_t macro) const
    {
        return ear.voices.at(voice).macros.at(macro - 1);
    }
    double semitonesAbove(double hz, Ratio ratio = FIFTH) const
    {
        return 12.0 * std::log2(frequency(ratio) / hz);
    }

    PatchEar ear{rig.player};
};

std::initializer_list<int> sustain(bool down)
{
    static constexpr std::initializer_list<int> DOWN{0xB0, 64, 64};
    static constexpr std::initializer_list<int> UP{0xB0, 64, 63};
    return down ? DOWN : UP;
}

} // namespace

TEST_F(KeyPlaying, WhatBeginsAndEndsANote)
{
    struct Row
    {
        const char* name;
        Messages messages;
        std::set<Ratio> sounding;
        std::size_t strikes;
    };
    const Row rows[] = {
        {"down", {{0x90, 60, 1}}, {FIFTH}, 1},
        {"up", {{0x90, 60, 1}, {0x80, 60, 64}}, {}, 1},
        {"velocity 0", {{0x90, 60, 1}, {0x90, 60, 0}}, {}, 1},
        {"up on another channel", {{0x90, 60, 1}, {0x81, 60, 0}}, {FIFTH}, 1},
        {"an up too many", {{0x80, 60, 0}, {0x90, 60, 1}}, {FIFTH}, 1},
        {"twice down, once up", {{0x90, 60, 1}, {0x90, 60, 1}, {0x80, 60, 0}}, {FIFTH}, 1},
        {"twice both", {{0x90, 60, 1}, {0x90, 60, 1}, {0x80, 60, 0}, {0x80, 60, 0}}, {}, 1},
        {"two keys of one pitch", {{0x90, 60, 1}, {0x92, 62, 1}, {0x80, 60, 0}}, {FIFTH}, 1},
        {"and the last of them", {{0x90, 60, 1}, {0x92, 62, 1}, {0x80, 60, 0}, {0x82, 62, 0}}, {}, 1},
        {"pedal", {{0x90, 60, 1}, sustain(true), {0x80, 60, 0}}, {FIFTH}, 1},
        {"pedal up", {{0x90, 60, 1}, sustain(true), {0x80, 60, 0}, sustain(false)}, {}, 1},
        {"pedal up, key down", {sustain(true), {0x90, 60, 1}, sustain(false)}, {FIFTH}, 1},
        {"pedal of another channel", {{0x90, 60, 1}, {0xB1, 64, 127}, {0x80, 60, 0}}, {}, 1},
        {"struck again under the pedal",
         {sustain(true), {0x90, 60, 1}, {0x80, 60, 0}, {0x92, 62, 1}, {0x82, 62, 0}, sustain(false)},
         {},
         2},
        {"the same key again under the pedal",
         {sustain(true), {0x90, 60, 1}, {0x80, 60, 0}, {0x90, 60, 1}, sustain(false)},
         {FIFTH},
         2},
        {"all notes off", {{0x90, 60, 1}, {0x90, 60, 1}, {0x91, 61, 1}, {0xB0, 123, 0}}, {FOURTH}, 2},
        {"all notes off under the pedal", {sustain(true), {0x90, 60, 1}, {0xB0, 123, 0}}, {FIFTH}, 1},
        {"a mode message", {{0x90, 60, 1}, {0xB0, 127, 0}}, {}, 1},
        {"all sound off under the pedal",
         {sustain(true), {0x90, 60, 1}, {0x90, 61, 1}, {0x80, 60, 0}, {0xB0, 120, 0}},
         {},
         2},
        {"reset controllers", {sustain(true), {0x90, 60, 1}, {0x80, 60, 0}, {0xB0, 121, 0}}, {}, 1},
        {"a prime without a pitch", {{0x90, 63, 1}}, {}, 0},
        {"a key without a pitch", {{0x90, 1, 1}, {0x80, 1, 0}}, {}, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        ear.sounding.given.clear();
        send(row.messages);
        EXPECT_EQ(sounding(), row.sounding);
        EXPECT_EQ(ear.sounding.given.size(), row.strikes);
        for (int channel = 0; channel < 3; ++channel)
            write({0xB0 + channel, 121, 0});
        for (int channel = 0; channel < 3; ++channel)
            write({0xB0 + channel, 120, 0});
        block();
        ASSERT_EQ(sounding(), std::set<Ratio>());
    }
}

TEST_F(KeyPlaying, AKeyEndsItsOwnNoteOnly)
{
    const OrloNoteEvent ball{QStringLiteral("/3")};
    send(ball);
    send({{0x90, 60, 1}, {0x80, 60, 0}});
    EXPECT_EQ(sounding(), std::set<Ratio>{FIFTH}) << "the ball's";
    send(ball);

    send({{0x90, 60, 1}});
    send(ball); // ends it
    EXPECT_EQ(sounding(), std::set<Ratio>());
    send(ball);
    send({{0x80, 60, 0}});
    EXPECT_EQ(sounding(), std::set<Ratio>{FIFTH}) << "begun anew by the ball";
    send(ball);

    send({{0x90, 60, 1}});
    rig.send(OrloTransposeEvent(OrloRatio(5, 4)));
    setKeys({{60, FOURTH}});
    send({{0x91, 60, 1}});
    EXPECT_EQ(sounding(), (std::set<Ratio>{FIFTH, {5, 3}}));
    send({{0x80, 60, 0}});
    EXPECT_EQ(sounding(), (std::set<Ratio>{{5, 3}}));
    send({{0x81, 60, 0}});
    EXPECT_EQ(sounding(), std::set<Ratio>());
}

TEST_F(KeyPlaying, HoldKeepsWhatItHolds)
{
    send({{0x90, 60, 1}});
    send(OrloEvent::NodesHold, 1.0F);
    send({{0x90, 61, 1}, {0x80, 60, 0}, {0x80, 61, 0}});
    EXPECT_EQ(sounding(), std::set<Ratio>{FIFTH});
    send(OrloEvent::NodesHold, 0.0F);
    send({{0x90, 60, 1}, {0x80, 60, 0}});
    EXPECT_EQ(sounding(), std::set<Ratio>{FIFTH}) << "no key's any more";
}

TEST_F(KeyPlaying, ADisabledPrimeIsSilentAsForABall)
{
    send(OrloEvent::PrimeEnabledToggle, 7.0F);
    send({{0x90, 64, 1}, {0x90, 60, 1}, {0x90, 65, 1}});
    EXPECT_EQ(sounding(), (std::set<Ratio>{FIFTH, {1, 1}}));
    send(OrloEvent::PrimeEnabledToggle, 3.0F);
    send({{0x90, 61, 1}, {0x80, 60, 0}});
    EXPECT_EQ(sounding(), (std::set<Ratio>{{1, 1}}));
}

TEST_F(KeyPlaying, APitchThatDoesNotFitIsSilentAndLogged)
{
    const LogCatcher messages;
    send(OrloTransposeEvent(OrloRatio(1ULL << 63, 1)));
    setKeys({{60, {2, 1}}});
    send({{0x90, 60, 1}, {0x80, 60, 0}});
    QCoreApplication::processEvents();
    EXPECT_EQ(messages.count(QtWarningMsg, QStringLiteral("the pitch of a key, 2/1, does not fit")), 1);
    EXPECT_EQ(sounding(), std::set<Ratio>());
}

TEST_F(KeyPlaying, VelocityIsTheFirstMacroOfItsVoiceAlone)
{
    for (int macro = OrloEvent::Macro1Set; macro <= OrloEvent::Macro8Set; ++macro)
        send(static_cast<OrloEvent::Type>(macro), 0.25F);
    send({{0x90, 60, 127}, {0x90, 61, 32}});
    send(OrloNoteEvent(OrloRatio(5, 4)));
    EXPECT_EQ(macroOf(1, 1), 1.0F);
    EXPECT_EQ(macroOf(2, 1), 32.0F / 127.0F);
    EXPECT_EQ(macroOf(3, 1), 0.25F);
    EXPECT_EQ(macroOf(1, 2), 0.25F);
    // Selecting is not heard, and the slider moves the node from where it is.
    send(OrloNodeSelectToggleEvent(OrloRatio(4, 3)));
    send(OrloEvent::Macro1Set, 0.5F);
    EXPECT_NEAR(macroOf(2, 1), 32.0F / 127.0F + 0.25F, 1e-6F);
    EXPECT_EQ(macroOf(1, 1), 1.0F);
}

TEST_F(KeyPlaying, BendsItsChannelByItsRange)
{
    send({{0x90, 60, 1}, {0x91, 61, 1}, {0xE0, 0x7F, 0x7F}});
    EXPECT_NEAR(semitonesAbove(A * 1.5), 2.0 * 8191 / 8192, 1e-4);
    EXPECT_NEAR(semitonesAbove(A * 4 / 3, FOURTH), 0.0, 1e-4);
    send({{0xE0, 0, 0}});
    EXPECT_NEAR(semitonesAbove(A * 1.5), -2.0, 1e-4);
    send({{0xB0, 101, 0}, {0xB0, 100, 0}, {0xB0, 6, 12}, {0xB0, 38, 50}}); // 12 semitones and 50 cents
    EXPECT_NEAR(semitonesAbove(A * 1.5), -12.5, 1e-4);
    send({{0xB0, 99, 0}, {0xB0, 6, 3}}); // another kind of parameter
    EXPECT_NEAR(semitonesAbove(A * 1.5), -12.5, 1e-4);

    // Sliders and a new 1/1 multiply it.
    send(OrloNodeSelectToggleEvent(OrloRatio(3, 2)));
    send(OrloEvent::GlissOneSet, 0.75F); // 600 cents
    EXPECT_NEAR(semitonesAbove(A * 1.5), -6.5, 1e-4);
    rig.queue(OrloEvent(OrloEvent::BaseFrequencySet, 330.0F));
    rig.player.retuneNotes();
    block();
    EXPECT_NEAR(semitonesAbove(330.0 * 1.5), -6.5, 1e-4);
    send(OrloEvent::GlissOneReset);
    EXPECT_NEAR(semitonesAbove(330.0 * 1.5), -12.5, 1e-4);

    play.setSettings({.bendSemitones = 7});
    send({{0x92, 65, 1}, {0xE2, 0, 0x60}});
    EXPECT_NEAR(semitonesAbove(330.0, {1, 1}), 3.5, 1e-4);
    send({{0xB2, 121, 0}});
    EXPECT_NEAR(semitonesAbove(330.0, {1, 1}), 0.0, 1e-4);
    send({{0xE2, 0, 0x20}, {0x82, 65, 0}, {0x92, 65, 1}}); // begins bent
    EXPECT_NEAR(semitonesAbove(330.0, {1, 1}), -3.5, 1e-4);
}

TEST_F(KeyPlaying, TheBendIsThatOfTheOldestKey)
{
    send({{0xE1, 0, 0x60}, {0x90, 60, 1}, {0x91, 62, 1}});
    EXPECT_NEAR(semitonesAbove(A * 1.5), 0.0, 1e-4);
    send({{0x80, 60, 0}});
    EXPECT_NEAR(semitonesAbove(A * 1.5), 1.0, 1e-4);
}

TEST_F(KeyPlaying, AZoneBendsItsMembersEachAndAllByTheManager)
{
    const Messages lowerOfThree{{0xB0, 101, 0}, {0xB0, 100, 6}, {0xB0, 6, 3}};
    send(lowerOfThree);
    send({{0x91, 60, 1}, {0x92, 61, 1}, {0xE1, 0, 0x50}, {0xE0, 0, 0}}); // 48 / 4 - 2
    EXPECT_NEAR(semitonesAbove(A * 1.5), 10.0, 1e-4);
    EXPECT_NEAR(semitonesAbove(A * 4 / 3, FOURTH), -2.0, 1e-4);
    send({{0xE0, 0, 0x40}, {0xB3, 101, 0}, {0xB3, 100, 0}, {0xB3, 6, 24}}); // the range of all members
    EXPECT_NEAR(semitonesAbove(A * 1.5), 6.0, 1e-4);
    send({{0xE4, 0, 0x60}, {0x94, 65, 1}}); // no member
    EXPECT_NEAR(semitonesAbove(A, {1, 1}), 1.0, 1e-4);

    // The manager's pedal and modes are those of all members.
    send({{0xB0, 64, 127}, {0x81, 60, 0}, {0x82, 61, 0}, {0x84, 65, 0}});
    EXPECT_EQ(sounding(), (std::set<Ratio>{FIFTH, FOURTH}));
    send({{0xB0, 64, 0}});
    EXPECT_EQ(sounding(), std::set<Ratio>());
    send({{0x91, 60, 1}, {0x94, 61, 1}, {0xB0, 123, 0}});
    EXPECT_EQ(sounding(), std::set<Ratio>{FOURTH});

    // A zone on the other side takes channels away; told again it changes nothing.
    send({{0x84, 61, 0}, {0x93, 60, 1}, {0x91, 61, 1}});
    send({{0xBF, 101, 0}, {0xBF, 100, 6}, {0xBF, 6, 12}, {0xBF, 6, 12}});
    EXPECT_EQ(sounding(), std::set<Ratio>{FOURTH}) << "channel 4 has changed sides";
    send({{0xBF, 6, 0}, {0x9E, 60, 1}, {0xE0, 0, 0}, {0xEF, 0, 0}});
    EXPECT_NEAR(semitonesAbove(A * 4 / 3, FOURTH), 6.0 - 2.0, 1e-4);
    EXPECT_NEAR(semitonesAbove(A * 1.5), 0.0, 1e-4);

    play.setSettings({.mpe = false});
    block();
    send(lowerOfThree);
    send({{0x91, 60, 1}, {0xE0, 0, 0}, {0xE1, 0, 0x50}});
    EXPECT_NEAR(semitonesAbove(A * 1.5), 0.5, 1e-4);
}

TEST_F(KeyPlaying, PressureAndTimbreAreMacrosOfTheVoice)
{
    send({{0xD0, 5}, {0xB0, 74, 5}}); // for no macro
    play.setSettings({.pressureMacro = 1, .timbreMacro = 3});
    write({0xD0, 10}); // what an MPE device sends ahead does not take the velocity's place
    write({0xB0, 74, 20});
    write({0x90, 60, 100});
    block();
    EXPECT_EQ(macroOf(1, 1), 100.0F / 127.0F);
    EXPECT_EQ(macroOf(1, 3), 20.0F / 127.0F);
    send({{0x91, 61, 90}, {0xD0, 30}, {0xB1, 74, 40}});
    EXPECT_EQ(macroOf(1, 1), 30.0F / 127.0F);
    EXPECT_EQ(macroOf(2, 1), 90.0F / 127.0F);
    EXPECT_EQ(macroOf(2, 3), 40.0F / 127.0F);
    send({{0xA1, 61, 50}});
    EXPECT_EQ(macroOf(2, 1), 50.0F / 127.0F);
    EXPECT_EQ(macroOf(1, 1), 30.0F / 127.0F);
    play.setSettings({.pressureMacro = 9, .timbreMacro = 200}); // from a file
    send({{0xD0, 60}, {0xB0, 74, 60}, {0x90, 65, 1}});
    EXPECT_EQ(macroOf(1, 1), 30.0F / 127.0F);
}

TEST_F(KeyPlaying, ATemperedNoteIsHeardOfByNobody)
{
    auto table = std::make_shared<KeyTable>();
    table->at(0, 60).tempered = std::exp2(7.0 / 12.0);
    table->at(0, 61).tempered = 2.0;
    table->at(0, 62).ratio = OrloRatio(2, 1);
    table->at(0, 63).tempered = -1.0;
    table->at(0, 64).tempered = std::numeric_limits<double>::quiet_NaN();
    play.setTable(0, table);
    send(OrloTransposeEvent(OrloRatio(3, 2)));
    send({{0x90, 60, 1}, {0x90, 61, 1}, {0x90, 63, 1}, {0x90, 64, 1}});
    send(OrloEvent::NodesHold, 1.0F);
    send(OrloEvent::NodesSelectAllSounding);
    EXPECT_NEAR(std::log2(ear.voices[1].frequency / A / 1.5), 7.0 / 12.0, 0.001 * CENT);
    EXPECT_NEAR(std::log2(ear.voices[2].frequency / A / 1.5), 1.0, 0.001 * CENT);
    EXPECT_EQ(ear.voices[3].gate, -1.0F);
    EXPECT_EQ(sounding(), std::set<Ratio>());
    EXPECT_TRUE(ear.sounding.given.empty() && ear.held.given.empty() && ear.selected.given.empty());
    send(OrloEvent::NodesHold, 0.0F);
    send({{0x90, 62, 1}, {0x80, 61, 0}, {0x80, 60, 0}});
    EXPECT_EQ(sounding(), (std::set<Ratio>{{3, 1}}));
    EXPECT_EQ(ear.voices[1].gate + ear.voices[2].gate, 0.0F);
}

TEST_F(KeyPlaying, ANoteStaysTheKeysThroughResetAndChangeOfPatch)
{
    rig.settings.softNodeReset = true;
    send({{0x90, 60, 100}, {0xE0, 0, 0x60}});
    send(OrloEvent::NodesResetAll);
    EXPECT_NEAR(semitonesAbove(A * 1.5), 1.0, 1e-4);
    EXPECT_EQ(macroOf(2, 1), 100.0F / 127.0F);
    ASSERT_TRUE(rig.loadMainText("#N canvas 0 0 200 200 12;\n"));
    EXPECT_NEAR(semitonesAbove(A * 1.5), 1.0, 1e-4);
    send({{0x80, 60, 0}});
    EXPECT_EQ(sounding(), std::set<Ratio>());

    // A key that goes up while no patch is open.
    send({{0x90, 60, 100}, {0x91, 61, 1}});
    rig.underClock([&] { rig.player.unloadPatch(); });
    send({{0x80, 60, 0}});
    ASSERT_TRUE(rig.loadMainText("#N canvas 0 0 200 200 12;\n"));
    EXPECT_EQ(sounding(), std::set<Ratio>{FOURTH});
}

TEST_F(KeyPlaying, AnInputThatLosesMessagesOrGoesEndsItsKeys)
{
    const LogCatcher messages;
    setKeys({{60, FOURTH}}, 1);
    write({0x90, 60, 1}, 1);
    send({{0x90, 60, 1}, {0xE0, 0, 0x60}, sustain(true)});
    while (rings[0].write({0x90, 65, 1, 0})) {
    }
    rings[0].write({0x80, 65, 0, 0});
    for (int i = 0; i < 10; ++i)
        block();
    EXPECT_EQ(sounding(), std::set<Ratio>{FOURTH});
    QCoreApplication::processEvents();
    EXPECT_EQ(messages.count(QtWarningMsg, QStringLiteral("2 messages were dropped")), 1);
    send({{0x90, 60, 1}});
    EXPECT_NEAR(semitonesAbove(A * 1.5), 1.0, 1e-4);
    rings[0].markGone();
    block();
    EXPECT_EQ(sounding(), std::set<Ratio>{FOURTH});
    send({{0x90, 60, 1}});
    EXPECT_NEAR(semitonesAbove(A * 1.5), 0.0, 1e-4);
    play.setRing(0, nullptr);
    block();
    EXPECT_EQ(sounding(), std::set<Ratio>{FOURTH});
    rig.player.setKeySource(nullptr);
    block();
    EXPECT_EQ(sounding(), std::set<Ratio>());
}

TEST_F(KeyPlaying, AFloodIsPlayedInPortions)
{
    auto table = std::make_shared<KeyTable>();
    for (int channel = 0; channel < KeyTable::CHANNELS; ++channel) {
        for (int key = 0; key < KeyTable::KEYS; ++key)
            table->at(channel, key).ratio =
                OrloRatio(static_cast<unsigned long long>(channel * 3 + 1), 1ULL << (key % 32));
    }
    play.setTable(0, table);
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < 1000; ++i)
            write({0x90 + i % 16, i % 128, 1});
        ear.sounding.given.clear();
        write({0x90, 60, 1}, 1);
        block();
        EXPECT_LE(ear.sounding.given.size(), KeyPlay::STRIKES);
        for (int i = 0; i < 20; ++i)
            block();
        for (int i = 0; i < 1000; ++i)
            write({0x80 + i % 16, i % 128, 1});
        write({0x80, 60, 1}, 1);
        for (int i = 0; i < 20; ++i)
            block();
        EXPECT_EQ(sounding(), std::set<Ratio>());
    }
    std::array<MidiInMessage, 8192> taken;
    EXPECT_GE(play.takeMessages(taken), 4000U);
    EXPECT_EQ(play.takeMessages(taken), 0U);
    EXPECT_EQ(taken[1].status, 0x91);
}

// Keys without a note yet, and notes that other commands have ended under their keys: more than there are
// places for.
TEST_F(KeyPlaying, KeysOfNotesThatWereEndedTakeNoPlaces)
{
    setKeys({{60, FIFTH}, {61, FOURTH}});
    for (int i = 0; i < 3 * KeySource::NOTES; ++i) {
        write({0x90 + i % 16, 60, 1}, 0);
        block();
        send(OrloNoteEvent(OrloRatio(3, 2))); // ends it
        if (i % 16 == 15) {
            for (int channel = 0; channel < 16; ++channel)
                write({0x80 + channel, 60, 1});
        }
    }
    send({{0x90, 61, 1}, {0x80, 61, 1}});
    block();
    EXPECT_EQ(sounding(), std::set<Ratio>());
}

TEST_F(KeyPlaying, TablesAndSettingsChangeWhileABlockReadsThem)
{
    std::atomic<bool> running{true};
    std::thread audio([&] {
        while (running)
            block();
    });
    std::weak_ptr<const KeyTable> former;
    for (int i = 0; i < 200; ++i) {
        auto table = std::make_shared<KeyTable>();
        table->at(0, 60).ratio = OrloRatio(3, 2);
        play.setTable(0, table);
        play.setSettings({.bendSemitones = static_cast<std::uint8_t>(i % 50)});
        write({i % 2 == 0 ? 0x90 : 0x80, 60, 1});
        former = table;
    }
    play.setTable(0, nullptr);
    running = false;
    audio.join();
    std::array<MidiInMessage, 1> none;
    play.takeMessages(none);
    EXPECT_TRUE(former.expired());
}

// Without an ear, which allocates.
class KeyCost : public ::testing::Test, protected KeyRig
{
};

TEST_F(KeyCost, IsNoAllocationNoLockAndOneWake)
{
    if (!BlockCost::works())
        GTEST_SKIP() << "The costs cannot be counted in this build.";
    rig.orlo.initWithDefaults();
    PdPlayer::connectLattice(&rig.player, &rig.orlo);
    auto table = std::make_shared<KeyTable>();
    for (int key = 0; key < KeyTable::KEYS; ++key)
        table->at(0, key).ratio = OrloRatio(static_cast<unsigned long long>(key + 1), 64);
    for (int key = 0; key < KeyTable::KEYS; ++key)
        table->at(1, key).tempered = 1.0 + key / 128.0;
    play.setTable(0, table);
    play.setSettings({.pressureMacro = 2, .timbreMacro = 3});
    const auto all = [&](int status) {
        for (int key = 0; key < KeyTable::KEYS; ++key)
            write({status, key, 64});
    };
    for (const int channel : {0, 1}) { // libpd makes its symbols the first time
        all(0x90 + channel);
        send({{0xB0 + channel, 74, 1}, {0xD0 + channel, 1}, {0xE0 + channel, 1, 1}});
        all(0x80 + channel);
        block();
    }
    const auto libpdLock = BlockCost::of([] {}, [] { libpd_float("nobody", 0.0F); }).locks;
    const std::pair<const char*, std::function<void()>> rows[] = {
        {"nothing", [] {}},
        {"128 keys down", [&] { all(0x90); }},
        {"128 tempered keys down", [&] { all(0x91); }},
        {"128 keys steal", [&] { all(0x91), block(), all(0x90); }},
        {"128 keys up", [&] { all(0x90), block(), all(0x80); }},
        {"128 voices bend",
         [&] {
             all(0x90), block(), write({0xE0, 1, 1}), write({0xD0, 9}), write({0xB0, 74, 9});
         }},
        {"a pedal goes up",
         [&] {
             write({0xB0, 64, 127}), all(0x90), all(0x80), block(), write({0xB0, 64, 0});
         }},
        {"an input goes", [&] { all(0x90), block(), rings[0].markGone(); }},
    };
    for (const auto& [name, prepare] : rows) {
        SCOPED_TRACE(name);
        const BlockCost cost = BlockCost::of(prepare, [&] { block(); });
        EXPECT_EQ(cost.allocations, 0);
        if (!cost.locks.empty()) {
            EXPECT_EQ(cost.locks, libpdLock);
        }
        EXPECT_LE(cost.systemCalls.size(), 1U); // the wake
    }
}
