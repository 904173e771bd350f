#include "external/Interface.h"

#include "app/DebugLog.h"
#include "external/MidiDouble.h"
#include "sound/OrloNoteEvent.h"
#include "support/AllocationCounter.h"
#include "support/LogCatcher.h"
#include "support/SoundRig.h"

#include <gtest/gtest.h>

namespace {

class Router : public ::testing::Test
{
protected:
    void SetUp() override
    {
        router.midiOutput = &out;
        ASSERT_TRUE(out.selectPort(0));
        out.system->take();
    }
    QStringList receive(int parameter, const QList<int>& voices, const QList<float>& value1,
                        const QList<float>& value2)
    {
        router.receiveInstructions(parameter, voices, value1, value2);
        return out.system->take();
    }

    MidiOutOverDouble out;
    Interface router;
};

const QString TUNE_440 = QStringLiteral("F0 7F 7F 08 02 00 01 20 45 00 00 F7");

} // namespace

TEST_F(Router, TunesFirstAndStartsThen)
{
    EXPECT_EQ(receive(1, {0}, {440.0F}, {1.0F}), QStringList({TUNE_440, QStringLiteral("90 20 7F")}));
    EXPECT_EQ(receive(1, {0}, {440.0F}, {0.5F}).last(), QStringLiteral("90 20 3F"));
    EXPECT_EQ(receive(1, {0}, {440.0F}, {0.0F}).last(), QStringLiteral("90 20 00"));
    EXPECT_EQ(receive(2, {0, 1}, {440.0F, 660.0F}, {-1.0F, -1.0F}),
              QStringList(QStringLiteral("F0 7F 7F 08 02 00 02 20 45 00 00 21 4C 02 40 F7")));
    EXPECT_EQ(receive(-1, {3, 0}, {-1.0F, -1.0F}, {-1.0F, -1.0F}), QStringList(QStringLiteral("80 23 40")));
    // The macro of a device's map can be anything.
    for (const float velocity : {NAN, INFINITY, -INFINITY, 3e38F})
        EXPECT_EQ(receive(1, {0}, {440.0F}, {velocity}).size(), 2);
    EXPECT_EQ(receive(1, {0}, {440.0F}, {}).last(), QStringLiteral("90 20 00"));
}

TEST_F(Router, SendsNothingForWhatItDoesNotKnowOrMayNotSend)
{
    app::debugListening = true;
    LogCatcher log;
    const auto received = [&log] { return log.count(QtDebugMsg, QStringLiteral("Interface: Received: parameter")); };
    EXPECT_TRUE(receive(0, {0}, {440.0F}, {1.0F}).isEmpty());
    EXPECT_TRUE(receive(3, {0}, {440.0F}, {1.0F}).isEmpty());
    EXPECT_TRUE(receive(1, {}, {}, {}).isEmpty());
    EXPECT_EQ(received(), 3);
    router.restricted = true;
    EXPECT_TRUE(receive(1, {0}, {440.0F}, {1.0F}).isEmpty());
    EXPECT_EQ(log.count(QtDebugMsg, QStringLiteral("External Protocol Interface: Output restricted and off.")), 1);
    router.restricted = false;
    out.selectPort(-1);
    out.system->take();
    log.clear();
    EXPECT_TRUE(receive(1, {0}, {440.0F}, {1.0F}).isEmpty());
    EXPECT_EQ(log.lines().size(), 1);
    app::debugListening = false;
}

// ---------------------------------------------------------------- behind the player

namespace {

class PlayerToMidi : public ::testing::Test
{
protected:
    void SetUp() override
    {
        router.midiOutput = &out;
        rig.player.setPortOpenFlag(&out.portOpen);
        QObject::connect(&rig.player, &PdPlayer::instructionsToInterface, &router, &Interface::receiveInstructions,
                         Qt::DirectConnection);
    }
    void press(unsigned long long numerator, unsigned long long denominator)
    {
        const OrloNoteEvent event(OrloRatio(numerator, denominator));
        rig.player.queueEventGui(&event);
        rig.player.processEvents();
    }

    MidiOutOverDouble out;
    Interface router;
    SoundRig rig{4};
};

} // namespace

TEST_F(PlayerToMidi, EachVoiceHasAKeyOfItsOwn)
{
    ASSERT_TRUE(out.selectPort(0));
    out.system->take();
    const OrloEvent macro(OrloEvent::Macro1Set, 0.5F);
    rig.player.queueEventGui(&macro);
    press(1, 1);
    press(3, 2);
    press(1, 1);
    press(1, 1000); // 0.44 Hz: not heard, and not sent
    EXPECT_EQ(out.system->take(),
              QStringList({TUNE_440, QStringLiteral("90 20 3F"),
                           QStringLiteral("F0 7F 7F 08 02 00 01 21 4C 02 40 F7"), QStringLiteral("90 21 3F"),
                           QStringLiteral("80 20 40")}));
    out.selectPort(-1);
    out.system->take();
    press(3, 2);
    press(5, 4);
    EXPECT_TRUE(out.system->take().isEmpty());
}

TEST_F(PlayerToMidi, ANoteAllocatesNothingForMidi)
{
    if (!AllocationCounter::WORKS)
        GTEST_SKIP() << "Allocations cannot be counted in this build.";
    for (const int channel : {0, -1}) {
        out.setChannel(channel);
        const auto allocationsOfAPress = [this](unsigned long long numerator) {
            press(numerator, 8); // everything that grows once has grown
            press(numerator, 8);
            out.system->sent.clear();
            const AllocationCounter counter;
            press(numerator, 8);
            press(numerator, 8);
            return counter.count();
        };
        out.selectPort(-1);
        const int without = allocationsOfAPress(11);
        ASSERT_TRUE(out.selectPort(0));
        out.system->discard = true;
        EXPECT_EQ(allocationsOfAPress(13), without) << "channel " << channel;
        out.system->discard = false;
    }
}
