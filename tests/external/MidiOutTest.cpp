#include "external/MidiDouble.h"
#include "support/LogCatcher.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

#include <cmath>

namespace {

const QString DEACTIVATED = QStringLiteral("- deactivated -");
const std::string LEAVING_MPE =
    onAllChannels(0xB0, "7B 00") + ", " + onAllChannels(0xE0, "00 40") + ", " + bendRange("02", "00");

class MidiOut : public ::testing::Test
{
protected:
    void openFirst()
    {
        ASSERT_TRUE(out.selectPort(0));
        take();
    }
    std::string take() const { return out.system->take(); }
    bool isClosed() const { return !out.portOpen && out.portName == DEACTIVATED; }

    MidiOutOverDouble out;
};

} // namespace

TEST(MidiOutInit, TriesTheDefaultApiAndThenEachThatIsCompiled)
{
    std::vector<RtMidi::Api> apis;
    RtMidi::getCompiledApi(apis);
    QList<int> expected{RtMidi::UNSPECIFIED};
    for (const RtMidi::Api api : apis)
        expected.append(api);

    for (int failing = 0; failing < expected.size(); ++failing) {
        MidiOutOverDouble out(failing, false);
        EXPECT_TRUE(out.init());
        EXPECT_EQ(out.system->apisTried, expected.mid(0, failing + 1));
        EXPECT_TRUE(out.selectPort(0)) << "after " << failing;
    }
    ::testing::GTEST_FLAG(death_test_style) = "threadsafe";
    EXPECT_EXIT(MidiOutOverDouble(1000, false).init(), ::testing::ExitedWithCode(1), "no MIDI here 1");
}

// ---------------------------------------------------------------- ports

TEST_F(MidiOut, OpensAPortByItsExactName)
{
    EXPECT_TRUE(isClosed());
    EXPECT_TRUE(out.selectPort(QStringLiteral("Other:in")));
    EXPECT_EQ(take(), "open 1 as RtMidi Output"); // the first of that name
    EXPECT_TRUE(out.portOpen);
    EXPECT_TRUE(out.selectPort(3));
    EXPECT_EQ(out.portName, QStringLiteral("Third:in"));
    EXPECT_EQ(take(), "B0 7B 00, close, open 3 as RtMidi Output");

    for (const char* name : {"other:in", "Other", "", "deactivated"}) {
        openFirst();
        EXPECT_FALSE(out.selectPort(QString::fromLatin1(name))) << name;
        EXPECT_TRUE(isClosed());
    }
    for (const int index : {-1, -7, 4, 1000000}) {
        openFirst();
        EXPECT_FALSE(out.selectPort(index)) << index;
        EXPECT_EQ(take(), "B0 7B 00, close");
        EXPECT_TRUE(isClosed());
    }
    EXPECT_FALSE(out.selectPort(-1));
    EXPECT_EQ(take(), "");
}

TEST_F(MidiOut, SilencesThePortThatItLeaves)
{
    openFirst();
    out.setChannel(5);
    out.setKeyFrequency({0, 3, 0}, {440.0F, 660.0F, 441.0F});
    take();
    out.selectPort(1);
    // Each altered key back on its own pitch, in order of its first tuning.
    EXPECT_EQ(take(),
              "B5 7B 00, F0 7F 7F 08 02 00 02 20 20 00 00 23 23 00 00 F7, close, open 1 as RtMidi Output");
    out.selectPort(1);
    EXPECT_EQ(take(), "B5 7B 00, close, open 1 as RtMidi Output");

    out.setChannel(-1);
    take();
    out.selectPort(0);
    EXPECT_EQ(take(), LEAVING_MPE + ", close, open 0 as RtMidi Output, " + bendRange("00", "32"));
    out.term();
    EXPECT_EQ(take(), LEAVING_MPE + ", close");
}

// ---------------------------------------------------------------- one channel

TEST_F(MidiOut, TunesAChordInOneMessage)
{
    openFirst();
    out.setKeyFrequency({0, 1}, {440.0F, 660.0F});
    EXPECT_EQ(take(), "F0 7F 7F 08 02 00 02 20 45 00 00 21 4C 02 40 F7");
    out.setKeyFrequency({}, {});
    EXPECT_EQ(take(), "");
    out.setKeyFrequency({1, 127}, {441.0F, 440.0F});
    EXPECT_EQ(take(), "F0 7F 7F 08 02 00 02 21 45 05 04 9F 45 00 00 F7");
    out.voiceOff(1); // keeps its tuning
    EXPECT_EQ(out.tunedKeys, QList<int>({32, 33, 159}));
    // Keys and velocities are cut to a byte.
    out.voiceOn(95, 0);
    out.voiceOn(96, 300);
    EXPECT_EQ(take(), "80 21 40, 90 7F 00, 90 80 2C");
}

TEST_F(MidiOut, FrequenciesOutsideTheRangeStayAtItsEnds)
{
    openFirst();
    const LogCatcher log;
    // Key 0 is 8.1758 Hz, key 128 would be 13289.75.
    out.setKeyFrequency({0, 1, 2}, {8.1F, 440.0F, 13290.0F});
    EXPECT_EQ(take(), "F0 7F 7F 08 02 00 03 20 00 00 00 21 45 00 00 22 7F 7F 7F F7");
    EXPECT_EQ(log.count(QtWarningMsg, QStringLiteral("below MIDI range:  QList(8.1, 440, 13290)")), 1);
    EXPECT_EQ(log.count(QtWarningMsg, QStringLiteral("above MIDI range:  QList(8.1, 440, 13290)")), 1);
    out.setKeyFrequency({0, 1, 2, 3}, {NAN, -440.0F, INFINITY, 0.0F});
    EXPECT_EQ(take(), "F0 7F 7F 08 02 00 04 20 00 00 00 21 00 00 00 22 7F 7F 7F 23 00 00 00 F7");
}

// ---------------------------------------------------------------- the channel

TEST_F(MidiOut, EnteringAndLeavingMpeSilencesTheFormerMode)
{
    openFirst();
    out.setChannel(3);
    for (const int none : {16, 99, -2}) {
        out.setChannel(none);
        EXPECT_EQ(out.channel, 3) << none;
    }
    EXPECT_EQ(take(), "");
    out.setChannel(-1);
    EXPECT_EQ(take(), "B3 7B 00, " + bendRange("00", "32")); // still on the old channel
    out.setChannel(-1);
    EXPECT_EQ(take(), "");

    // A number that is no channel leaves MPE all the same.
    out.setChannel(16);
    EXPECT_EQ(take(), LEAVING_MPE);
    EXPECT_EQ(out.channel, -1);
    out.setKeyFrequency({7}, {440.0F});
    EXPECT_EQ(take(), "F0 7F 7F 08 02 00 01 27 45 00 00 F7");
    out.setChannel(2);
    EXPECT_EQ(take(), LEAVING_MPE); // the channel was -1 still
    out.setChannel(4);
    EXPECT_EQ(take(), "");

    // With a closed port only the mode changes.
    out.selectPort(-1);
    take();
    out.setChannel(-1);
    out.mpeSetPitchBendRange(150);
    EXPECT_EQ(take(), "");
    out.selectPort(0);
    EXPECT_EQ(take(), "open 0 as RtMidi Output, " + bendRange("01", "32"));
}

// ---------------------------------------------------------------- a port that fails

TEST_F(MidiOut, APortThatDoesNotOpenStaysClosed)
{
    out.system->opensFail = true;
    const LogCatcher log;
    EXPECT_FALSE(out.selectPort(0));
    EXPECT_TRUE(isClosed());
    EXPECT_EQ(log.count(QtCriticalMsg, QStringLiteral("no such device")), 1);
    out.system->opensFail = false;
    EXPECT_TRUE(out.selectPort(0));
}

TEST_F(MidiOut, APortThatVanishesIsClosedAndToldOfOnce)
{
    QStringList lost;
    QObject::connect(&out, &MidiOutput::portLost, &out, [&lost](const QString& name) { lost.append(name); });
    const LogCatcher log;
    for (int round = 1; round <= 2; ++round) {
        out.system->sendsFail = false;
        openFirst();
        out.system->sendsFail = true;
        EXPECT_NO_THROW(out.setKeyFrequency({0}, {440.0F}));
        EXPECT_NO_THROW(out.voiceOn(0, 64));
        EXPECT_FALSE(out.portOpen);
        EXPECT_EQ(log.count(QtCriticalMsg, QStringLiteral("the device is gone")), round);
        EXPECT_EQ(lost.size(), round - 1) << "the rest is left to the graphical thread";
        QCoreApplication::processEvents();
        EXPECT_TRUE(isClosed());
        EXPECT_EQ(lost.size(), round);
        EXPECT_EQ(take(), "close");
    }
    // Another port that is chosen meanwhile stays open.
    out.system->sendsFail = false;
    openFirst();
    out.system->sendsFail = true;
    out.voiceOn(0, 64);
    out.system->sendsFail = false;
    EXPECT_TRUE(out.selectPort(3));
    QCoreApplication::processEvents();
    EXPECT_TRUE(out.portOpen);
    EXPECT_EQ(out.portName, QStringLiteral("Third:in"));
}
