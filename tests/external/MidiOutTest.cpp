#include "app/DebugLog.h"
#include "external/MidiDouble.h"
#include "support/LogCatcher.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

namespace {

const QString DEACTIVATED = QStringLiteral("- deactivated -");
const QStringList RANGE_200{QStringLiteral("B0 64 00"), QStringLiteral("B0 65 00"), QStringLiteral("B0 06 02"),
                            QStringLiteral("B0 26 00"), QStringLiteral("B0 64 7F"), QStringLiteral("B0 65 7F")};
const QStringList RANGE_50{QStringLiteral("B0 64 00"), QStringLiteral("B0 65 00"), QStringLiteral("B0 06 00"),
                           QStringLiteral("B0 26 32"), QStringLiteral("B0 64 7F"), QStringLiteral("B0 65 7F")};

QStringList lines(std::initializer_list<const char*> texts)
{
    QStringList list;
    for (const char* text : texts)
        list.append(QString::fromLatin1(text));
    return list;
}

const QStringList LEAVING_MPE = onAllChannels(0xB0, "7B 00") + onAllChannels(0xE0, "00 40") + RANGE_200;

/// While it lives, debug texts are built.
struct Listening
{
    Listening() { app::debugListening = true; }
    ~Listening() { app::debugListening = false; }
};

class MidiOut : public ::testing::Test
{
protected:
    void openFirst()
    {
        ASSERT_TRUE(out.selectPort(0));
        out.system->take();
    }

    MidiOutOverDouble out;
};

} // namespace

// ---------------------------------------------------------------- coming up

TEST(MidiOutInit, TriesTheDefaultApiAndThenEachThatIsCompiled)
{
    std::vector<RtMidi::Api> apis;
    RtMidi::getCompiledApi(apis);
    const auto all = static_cast<int>(apis.size());
    QList<int> expected{RtMidi::UNSPECIFIED};
    for (const RtMidi::Api api : apis)
        expected.append(api);

    for (int failing = 0; failing <= all; ++failing) {
        MidiOutOverDouble out(failing);
        EXPECT_TRUE(out.init());
        EXPECT_EQ(out.system->apisTried, expected.mid(0, failing + 1));
        EXPECT_TRUE(out.selectPort(0)) << "after " << failing;
    }
}

TEST(MidiOutInit, EndsTheProgramWhenNoApiComesUp)
{
    ::testing::GTEST_FLAG(death_test_style) = "threadsafe";
    EXPECT_EXIT(MidiOutOverDouble(1000).init(), ::testing::ExitedWithCode(1), "no MIDI here 1");
}

// ---------------------------------------------------------------- ports

TEST_F(MidiOut, OpensAPortByItsExactName)
{
    EXPECT_EQ(out.portName, DEACTIVATED);
    EXPECT_FALSE(out.portOpen);
    EXPECT_EQ(out.availablePorts(), lines({"Synth:in", "Other:in", "Other:in", "Third:in"}));

    EXPECT_TRUE(out.selectPort(QStringLiteral("Other:in")));
    EXPECT_EQ(out.system->take(), lines({"open 1 as RtMidi Output"})); // the first of that name
    EXPECT_EQ(out.portName, QStringLiteral("Other:in"));
    EXPECT_TRUE(out.portOpen);
    EXPECT_TRUE(out.selectPort(3));
    EXPECT_EQ(out.portName, QStringLiteral("Third:in"));
    EXPECT_EQ(out.system->take(), lines({"B0 7B 00", "close", "open 3 as RtMidi Output"}));

    for (const char* name : {"other:in", "Other", "", "deactivated"}) {
        ASSERT_TRUE(out.selectPort(0));
        EXPECT_FALSE(out.selectPort(QString::fromLatin1(name))) << name;
        EXPECT_FALSE(out.portOpen);
        EXPECT_EQ(out.portName, DEACTIVATED);
    }
}

TEST_F(MidiOut, ClosesForAnIndexThatIsNone)
{
    for (const int index : {-1, -7, 4, 1000000}) {
        ASSERT_TRUE(out.selectPort(0));
        out.system->take();
        EXPECT_FALSE(out.selectPort(index)) << index;
        EXPECT_EQ(out.system->take(), lines({"B0 7B 00", "close"}));
        EXPECT_EQ(out.portName, DEACTIVATED);
        EXPECT_FALSE(out.portOpen);
    }
    const LogCatcher log;
    EXPECT_FALSE(out.selectPort(-1));
    EXPECT_TRUE(out.system->take().isEmpty());
    EXPECT_EQ(log.count(QtDebugMsg, QStringLiteral("Midi-Out port closed")), 1);
}

TEST_F(MidiOut, SilencesThePortThatItLeaves)
{
    openFirst();
    out.setChannel(5);
    out.setKeyFrequency({0, 3, 0}, {440.0F, 660.0F, 441.0F});
    out.voiceOn(0, 100);
    out.system->take();
    out.selectPort(1);
    // Each altered key back on its own pitch, in order of its first tuning.
    EXPECT_EQ(out.system->take(), lines({"B5 7B 00", "F0 7F 7F 08 02 00 02 20 20 00 00 23 23 00 00 F7", "close",
                                         "open 1 as RtMidi Output"}));
    out.selectPort(1);
    EXPECT_EQ(out.system->take(), lines({"B5 7B 00", "close", "open 1 as RtMidi Output"}));

    out.setChannel(-1);
    out.system->take();
    out.selectPort(0);
    EXPECT_EQ(out.system->take(), LEAVING_MPE + lines({"close", "open 0 as RtMidi Output"}) + RANGE_50);
    out.term();
    EXPECT_EQ(out.system->take(), LEAVING_MPE + lines({"close"}));
}

TEST_F(MidiOut, TellsInTheLogWhatItDoes)
{
    const Listening listening;
    const LogCatcher log;
    out.selectPort(QStringLiteral("Third:in"));
    out.setKeyFrequency({1}, {440.0F});
    out.selectPort(-1);
    QStringList texts;
    for (const LogCatcher::Line& line : log.lines()) {
        EXPECT_EQ(line.type, QtDebugMsg);
        texts.append(line.text.simplified());
    }
    EXPECT_EQ(texts,
              lines({"Midi Output ports available:", "Output Port #1: Synth:in", "Output Port #2: Other:in",
                     "Output Port #3: Other:in", "Output Port #4: Third:in", "Midi-Out port closed",
                     "Midi-Out port opened: Third:in",
                     "MTS Midi message sent: QList(240, 127, 127, 8, 2, 0, 1, 33, 69, 0, 0, 247)",
                     "Midi message sent to reset MTS to standard for previously altered voices: QList(240, 127, 127, "
                     "8, 2, 0, 1, 33, 33, 0, 0, 247)",
                     "Midi-Out port closed"}));
}

// ---------------------------------------------------------------- one channel

TEST_F(MidiOut, TunesAChordInOneMessage)
{
    openFirst();
    out.setKeyFrequency({0, 1}, {440.0F, 660.0F});
    EXPECT_EQ(out.system->take(), lines({"F0 7F 7F 08 02 00 02 20 45 00 00 21 4C 02 40 F7"}));
    out.setKeyFrequency({}, {});
    out.resetTuningAllVoices();
    EXPECT_TRUE(out.system->take().isEmpty());

    out.setKeyFrequency({1, 127}, {441.0F, 440.0F});
    EXPECT_EQ(out.system->take(), lines({"F0 7F 7F 08 02 00 02 21 45 05 04 9F 45 00 00 F7"}));
    EXPECT_EQ(out.tunedKeys, QList<int>({32, 33, 159}));
}

TEST_F(MidiOut, KeysAndVelocitiesAreCutToAByte)
{
    openFirst();
    out.setChannel(9);
    out.voiceOn(0, 127);
    out.voiceOn(95, 0);
    out.voiceOn(96, 300);
    out.voiceOff(2);
    out.allVoicesOff();
    EXPECT_EQ(out.system->take(), lines({"99 20 7F", "99 7F 00", "99 80 2C", "89 22 40", "B9 7B 00"}));
}

TEST_F(MidiOut, AVoiceThatEndsKeepsItsTuning)
{
    openFirst();
    out.setKeyFrequency({4}, {440.0F});
    out.voiceOff(4);
    EXPECT_EQ(out.tunedKeys, QList<int>({36}));
    out.system->take();
    out.resetTuningAlteredVoices();
    EXPECT_EQ(out.system->take(), lines({"F0 7F 7F 08 02 00 01 24 24 00 00 F7"}));
    out.resetTuningAlteredVoices();
    EXPECT_TRUE(out.system->take().isEmpty());
}

TEST_F(MidiOut, FrequenciesOutsideTheRangeStayAtItsEnds)
{
    openFirst();
    LogCatcher log;
    // Key 0 is 8.1758 Hz, key 128 would be 13289.75.
    out.setKeyFrequency({0, 1, 2}, {8.1F, 440.0F, 13290.0F});
    EXPECT_EQ(out.system->take(), lines({"F0 7F 7F 08 02 00 03 20 00 00 00 21 45 00 00 22 7F 7F 7F F7"}));
    EXPECT_EQ(log.count(QtWarningMsg, QStringLiteral("MTS: Freq sent to MIDI below MIDI range: ")), 1);
    EXPECT_EQ(log.count(QtWarningMsg, QStringLiteral("MTS: Freq sent to MIDI above MIDI range: ")), 1);
    for (const LogCatcher::Line& line : log.lines())
        EXPECT_TRUE(line.text.contains(QStringLiteral("(8.1, 440, 13290)"))) << line.text.toStdString();

    out.setKeyFrequency({0, 1, 2, 3}, {NAN, -440.0F, INFINITY, 0.0F});
    EXPECT_EQ(out.system->take(),
              lines({"F0 7F 7F 08 02 00 04 20 00 00 00 21 00 00 00 22 7F 7F 7F 23 00 00 00 F7"}));
}

// ---------------------------------------------------------------- the channel

TEST_F(MidiOut, AChangeOfChannelSendsNothing)
{
    openFirst();
    out.setKeyFrequency({0}, {440.0F});
    out.voiceOn(0, 64);
    out.system->take();
    out.setChannel(15);
    EXPECT_TRUE(out.system->take().isEmpty());
    EXPECT_EQ(out.tunedKeys.size(), 1);
    for (const int none : {16, 99, -2}) {
        out.setChannel(none);
        EXPECT_EQ(out.channel, 15) << none;
    }
    out.voiceOff(0);
    EXPECT_EQ(out.system->take(), lines({"8F 20 40"}));
}

TEST_F(MidiOut, EnteringAndLeavingMpeSilencesTheFormerMode)
{
    openFirst();
    out.setChannel(3);
    out.setChannel(-1);
    EXPECT_EQ(out.system->take(), lines({"B3 7B 00"}) + RANGE_50); // still on the old channel
    out.setChannel(-1);
    EXPECT_TRUE(out.system->take().isEmpty());
    out.setKeyFrequency({7}, {440.0F});
    EXPECT_EQ(out.system->take(), lines({"E0 00 40"}));

    // A number that is no channel leaves MPE all the same.
    out.setChannel(16);
    EXPECT_EQ(out.system->take(), LEAVING_MPE);
    EXPECT_EQ(out.channel, -1);
    out.setKeyFrequency({7}, {440.0F});
    EXPECT_EQ(out.system->take(), lines({"F0 7F 7F 08 02 00 01 27 45 00 00 F7"}));
    out.setChannel(2);
    EXPECT_EQ(out.system->take(), LEAVING_MPE); // the channel was -1 still
    out.setChannel(4);
    EXPECT_TRUE(out.system->take().isEmpty());
}

TEST_F(MidiOut, WithAClosedPortOnlyTheModeChanges)
{
    out.setChannel(-1);
    out.mpeSetPitchBendRange(250);
    out.setChannel(3);
    out.setChannel(-1);
    EXPECT_TRUE(out.system->take().isEmpty());
    EXPECT_EQ(out.channel, -1);
    EXPECT_EQ(out.pitchBendRangeCents, 250);
}

// What the application does with the options.
TEST_F(MidiOut, StartsWithThreeCallsInMpe)
{
    out.selectPort(QStringLiteral("Synth:in"));
    out.setChannel(-1);
    out.mpeSetPitchBendRange(150);
    EXPECT_EQ(out.system->take(),
              lines({"open 0 as RtMidi Output", "B0 7B 00"}) + RANGE_50
                  + lines({"B0 64 00", "B0 65 00", "B0 06 01", "B0 26 32", "B0 64 7F", "B0 65 7F"}));
}

// ---------------------------------------------------------------- a port that fails

TEST_F(MidiOut, APortThatDoesNotOpenStaysClosed)
{
    out.system->opensFail = true;
    LogCatcher log;
    EXPECT_FALSE(out.selectPort(0));
    EXPECT_FALSE(out.portOpen);
    EXPECT_EQ(out.portName, DEACTIVATED);
    EXPECT_EQ(log.count(QtCriticalMsg, QStringLiteral("no such device")), 1);
    out.system->opensFail = false;
    EXPECT_TRUE(out.selectPort(0));
}

TEST_F(MidiOut, APortThatVanishesIsClosedAndToldOfOnce)
{
    QStringList lost;
    QObject::connect(&out, &MidiOutput::portLost, &out, [&lost](const QString& name) { lost.append(name); });
    LogCatcher log;
    for (int round = 1; round <= 2; ++round) {
        out.system->sendsFail = false;
        openFirst();
        out.system->sendsFail = true;
        EXPECT_NO_THROW(out.setKeyFrequency({0}, {440.0F}));
        EXPECT_NO_THROW(out.voiceOn(0, 64));
        EXPECT_FALSE(out.portOpen);
        EXPECT_EQ(log.count(QtCriticalMsg, QStringLiteral("the device is gone")), round);
        // The rest is left to the graphical thread.
        EXPECT_EQ(out.portName, QStringLiteral("Synth:in"));
        QCoreApplication::processEvents();
        EXPECT_EQ(out.portName, DEACTIVATED);
        EXPECT_EQ(lost.size(), round);
        EXPECT_EQ(out.system->take(), lines({"close"}));
    }
}

TEST_F(MidiOut, AnotherPortChosenMeanwhileStaysOpen)
{
    openFirst();
    out.system->sendsFail = true;
    out.voiceOn(0, 64);
    out.system->sendsFail = false;
    EXPECT_TRUE(out.selectPort(3));
    QCoreApplication::processEvents();
    EXPECT_TRUE(out.portOpen);
    EXPECT_EQ(out.portName, QStringLiteral("Third:in"));
}
