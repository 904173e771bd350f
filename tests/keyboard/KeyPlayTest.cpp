// Keys that play the engine: what begins and ends a note, and what bends it.

#include "KeyRig.h"

#include "sound/OrloNodeSelectToggleEvent.h"
#include "sound/PatchEar.h"
#include "support/BlockCost.h"
#include "support/EngineLog.h"
#include "support/LogCatcher.h"

#include <QCoreApplication>

#include <z_libpd.h>

#include <atomic>
#include <cmath>
#include <functional>
#include <limits>
#include <thread>
#include <utility>

namespace {

using Ratio = KeyRig::Ratio;

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

} // namespace

TEST_F(KeyPlaying, APitchThatMayNotBeIsSilent)
{
    const LogCatcher messages;
    send(OrloEvent::PrimeEnabledToggle, 7.0F);
    send({{0x90, 64, 1}, {0x90, 60, 1}, {0x90, 65, 1}});
    EXPECT_EQ(sounding(), (std::set<Ratio>{FIFTH, {1, 1}}));
    send(OrloEvent::PrimeEnabledToggle, 3.0F);
    send({{0x90, 61, 1}, {0x80, 60, 0}});
    EXPECT_EQ(sounding(), (std::set<Ratio>{{1, 1}}));
    send({{0x80, 65, 0}, {0x90, 63, 1}}); // 37
    send(OrloTransposeEvent(OrloRatio(1ULL << 63, 1)));
    setKeys({{66, {2, 1}}});
    send({{0x90, 66, 1}, {0x80, 66, 0}});
    EXPECT_EQ(sounding(), std::set<Ratio>());
    QCoreApplication::processEvents();
    EXPECT_EQ(messages.count(QtWarningMsg, QStringLiteral("the pitch of a key, 2/1, does not fit")), 1);
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

TEST_F(KeyPlaying, TheExternalOutputHearsVelocityAndBends)
{
    const std::atomic<bool> open{true};
    rig.player.setPortOpenFlag(&open);
    EngineLog log(rig.player);
    send({{0xB0, 101, 0},
          {0xB0, 100, 0},
          {0xB0, 6, 12},
          {0x90, 60, 127},
          {0x90, 65, 0x7F},
          {0xE0, 0, 0},
          {0x80, 60, 0}});
    EXPECT_EQ(log.said(QStringLiteral("instruction")),
              "instruction 1 0 660 1; instruction 1 1 440 1; "
              "instruction 2 0|1 330|220 -1|-1; instruction -1 0 -1 -1");
    rig.player.setPortOpenFlag(nullptr);
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

TEST_F(KeyPlaying, AZoneBendsItsMembersEachAndAllByTheManager)
{
    const std::initializer_list<std::initializer_list<int>> lowerOfThree{
        {0xB0, 101, 0}, {0xB0, 100, 6}, {0xB0, 6, 3}};
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

    // A zone that ends takes no channels: the last member of a lower zone of 15 stays one.
    send({{0x8E, 60, 0}, {0xB0, 101, 0}, {0xB0, 100, 6}, {0xB0, 6, 15}});
    send({{0xBF, 101, 0}, {0xBF, 100, 6}, {0xBF, 6, 0}, {0x9F, 60, 1}, {0xEF, 0, 0x50}});
    EXPECT_NEAR(semitonesAbove(A * 1.5), 12.0 - 2.0, 1e-4);
    send({{0x8F, 60, 0}, {0xEF, 0, 0x40}, {0x9E, 60, 1}});

    play.setSettings({.mpe = false});
    block();
    send(lowerOfThree);
    send({{0x8E, 60, 0}, {0x91, 60, 1}, {0xE0, 0, 0}, {0xE1, 0, 0x50}});
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
    send({{0x90, 60, 1}, {0xE0, 0, 0x60}, {0xB0, 64, 127}});
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

// Keys without a note yet, and notes that other commands have ended under their keys: more than there are
// places for.
// More keys than there are places for notes, each of whose notes another command has ended.
TEST_F(KeyPlaying, AFloodIsPlayedInPortionsAndKeysWithoutANoteTakeNoPlaces)
{
    auto table = std::make_shared<KeyTable>();
    for (KeyTarget& target : table->targets)
        target.ratio = OrloRatio(3, 2);
    play.setTable(0, table);
    constexpr int MANY = 3 * KeySource::NOTES;
    for (int i = 0; i < MANY; ++i) {
        write({0x90 + i % 16, i / 16, 1});
        block();
        send(OrloEvent::AllNotesOffForced);
    }
    EXPECT_EQ(ear.sounding.given.size(), std::size_t{MANY});
    for (int i = 0; i < MANY; ++i)
        write({0x80 + i % 16, i / 16, 1});
    for (int i = 0; i < KeyPlay::STRIKES; ++i) { // one of them too many for a block
        write({0x90, 1, 1});
        write({0x80, 1, 1});
    }
    write({0x90, 2, 1});
    block();
    EXPECT_EQ(std::exchange(ear.sounding.given, {}).size(), std::size_t{MANY} + KeyPlay::STRIKES);
    block();
    EXPECT_EQ(ear.sounding.given.size(), 1U);
    EXPECT_EQ(sounding(), std::set<Ratio>{FIFTH});
    std::array<MidiInMessage, 8192> taken;
    EXPECT_EQ(play.takeMessages(taken), 2U * MANY + 2U * KeyPlay::STRIKES + 1U);
    EXPECT_EQ(taken[17].status, 0x91);
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
    for (int key = 0; key < KeyTable::KEYS; ++key) {
        table->at(0, key).ratio =
            OrloRatio(static_cast<unsigned long long>(key % 16 + 1), 1ULL << (key / 16));
        table->at(1, key).tempered = 1.0 + key / 128.0;
    }
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
