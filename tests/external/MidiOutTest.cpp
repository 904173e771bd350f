#include "external/MidiDouble.h"
#include "sound/AudioLog.h"
#include "sound/JackEpoch.h"
#include "support/LogCatcher.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>

#include <cmath>

using namespace Qt::StringLiterals;

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
    out.setKeyFrequency({1, 127}, {441.0F, 440.0F}); // there is no key 159
    EXPECT_EQ(take(), "F0 7F 7F 08 02 00 01 21 45 05 04 F7");
    out.voiceOff(1); // keeps its tuning
    EXPECT_EQ(out.mtsKeys.tunedKeys, QList<int>({32, 33}));
    // Velocities are cut to a byte; a byte above 127 would be the status of another message.
    out.voiceOn(95, 0);
    out.voiceOn(95, 300);
    out.voiceOn(95, 128);
    out.voiceOn(95, -1);
    out.voiceOn(96, 100);
    out.setKeyFrequency({96}, {440.0F});
    EXPECT_EQ(take(), "80 21 40, 90 7F 00, 90 7F 2C, 90 7F 7F, 90 7F 00");
}

TEST_F(MidiOut, FrequenciesOutsideTheRangeStayAtItsEnds)
{
    openFirst();
    AudioLog::drain(); // what other tests have left
    const LogCatcher log;
    // Key 0 is 8.1758 Hz, key 128 would be 13289.75.
    out.setKeyFrequency({0, 1, 2}, {8.1F, 440.0F, 13290.0F});
    EXPECT_EQ(take(), "F0 7F 7F 08 02 00 03 20 00 00 00 21 45 00 00 22 7F 7F 7F F7");
    out.setKeyFrequency({0, 1, 2}, {8.0F, 440.0F, 13300.0F}); // each note once
    out.voiceOff(2);
    out.setKeyFrequency({2}, {13310.0F});
    take();
    AudioLog::drain();
    QStringList warnings;
    for (const LogCatcher::Line& line : log.lines())
        if (line.type == QtWarningMsg)
            warnings.append(line.text);
    EXPECT_EQ(warnings, QStringList({QStringLiteral("MTS: Freq sent to MIDI below MIDI range: 8.1"),
                                     QStringLiteral("MTS: Freq sent to MIDI above MIDI range: 13290"),
                                     QStringLiteral("MTS: Freq sent to MIDI above MIDI range: 13310")}));
    out.setKeyFrequency({0, 1, 2}, {NAN, -440.0F, INFINITY});
    EXPECT_EQ(take(), "F0 7F 7F 08 02 00 03 20 00 00 00 21 00 00 00 22 7F 7F 7F F7");
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
    out.voiceOn(7, 64); // there is no such channel
    out.voiceOff(7);
    out.allVoicesOff();
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

// Lost by an error, lost without one (over JACK), not there at the start, and chosen by index.
TEST_F(MidiOut, APortThatIsLostIsToldOfOnceAndOpenedAgainWhenItIsBack)
{
    const QString name = QStringLiteral("Third:in");
    const QList<std::string> all = out.system->portNames();
    std::array<MidiOutOverDouble, 3> outs;
    std::array<QStringList, 3> told;
    for (size_t i = 0; i < outs.size(); ++i) {
        QObject::connect(&outs[i], &MidiOutput::portLost, &out,
                         [&, i](const QString& lost) { told[i].append(u"lost "_s + lost); });
        QObject::connect(&outs[i], &MidiOutput::portBack, &out,
                         [&, i](const QString& back) { told[i].append(u"back "_s + back); });
    }
    auto& [failing, vanishing, late] = outs;
    const LogCatcher log;
    late.system->setPorts({});
    vanishing.system->api = RtMidi::UNIX_JACK;
    EXPECT_FALSE(late.selectPort(name));
    EXPECT_TRUE(failing.selectPort(name));
    EXPECT_TRUE(vanishing.selectPort(3));
    vanishing.setChannel(-1);
    failing.system->sendsFail = true;
    failing.voiceOn(0, 64);
    failing.voiceOn(0, 64);
    vanishing.system->setPorts({});
    ASSERT_TRUE(waitUntil([&] { return !failing.portOpen && !vanishing.portOpen; }));
    for (MidiOutOverDouble& each : outs) {
        EXPECT_EQ(each.portName, DEACTIVATED);
        EXPECT_EQ(each.missingPort(), name);
    }
    EXPECT_EQ(failing.system->take(), "open 3 as RtMidi Output, close");
    failing.system->sendsFail = false; // only now, as the sender may not have closed it before
    EXPECT_TRUE(vanishing.system->take().ends_with(onAllChannels(0xB0, "7B 00") + ", close"));
    EXPECT_EQ(log.count(QtCriticalMsg, QStringLiteral("the device is gone")), 1);

    vanishing.system->setPorts({"Other:in", "Third:in"}); // at another place
    late.system->setPorts(all);
    ASSERT_TRUE(waitUntil([&] { return failing.portOpen && vanishing.portOpen && late.portOpen; }));
    EXPECT_EQ(failing.system->take(), "open 3 as RtMidi Output");
    EXPECT_EQ(vanishing.system->take(), "open 1 as RtMidi Output, " + bendRange("00", "32"));
    EXPECT_EQ(vanishing.system->apisTried.last(), RtMidi::UNIX_JACK); // not of another that has ports now
    for (size_t i = 0; i < outs.size(); ++i) {
        EXPECT_EQ(outs[i].missingPort(), QString());
        const QStringList lost = &outs[i] == &late ? QStringList() : QStringList(u"lost "_s + name);
        EXPECT_EQ(told[i], lost + QStringList(u"back "_s + name)) << i;
    }
    // What the player chooses meanwhile ends the waiting.
    failing.system->sendsFail = true;
    failing.voiceOn(0, 64);
    ASSERT_TRUE(waitUntil([&] { return !failing.portOpen; }));
    failing.system->sendsFail = false;
    EXPECT_FALSE(failing.selectPort(-1));
    EXPECT_EQ(failing.missingPort(), QString());
    EXPECT_FALSE(waitUntil([&] { return failing.portOpen.load(); }, 2500));
}

// As JACK's server does when it is frozen. A listing waits for it too; a second one takes a new sender.
TEST_F(MidiOut, ASenderThatSticksIsGivenUp)
{
    constexpr int slowMachine = 8000; // ms; it takes up to 3500, and without an end for ever
    for (const int listings : {0, 2}) {
        openFirst();
        out.system->sendsHang = true;
        QElapsedTimer timer;
        timer.start();
        for (int i = 0; i < 20000; ++i) // far more than has room
            out.voiceOn(0, 64);
        EXPECT_LT(timer.elapsed(), MidiSender::CALL_LIMIT.count()) << "the player waits";
        for (int i = 0; i < listings; ++i)
            EXPECT_EQ(out.availablePorts().isEmpty(), i == 0);
        ASSERT_TRUE(waitUntil([&] { return !out.portOpen; })) << listings;
        EXPECT_LT(timer.elapsed(), slowMachine);
        EXPECT_EQ(out.missingPort(), QStringLiteral("Synth:in"));

        // The one that hangs ends the notes of its port when it comes back, which nobody waits for.
        timer.start();
        ASSERT_TRUE(out.selectPort(3));
        EXPECT_LT(timer.elapsed(), slowMachine);
        out.system->sendsHang = false;
        ASSERT_TRUE(waitUntil([&] { return MidiSender::lostThreads() == 0; }));
        take();
        out.voiceOn(0, 64);
        EXPECT_EQ(take(), "90 20 40");
    }
    // A choice does not wait for it to be noticed.
    openFirst();
    out.system->sendsHang = true;
    out.voiceOn(0, 64);
    EXPECT_TRUE(out.selectPort(u"Third:in"_s));
    out.system->sendsHang = false;
    EXPECT_TRUE(waitUntil([] { return MidiSender::lostThreads() == 0; }));
}

TEST_F(MidiOut, AListingAfterTheDeathOfJackAsksNoDeadClient)
{
    out.system->api = RtMidi::UNIX_JACK;
    openFirst();
    JackEpoch::end(JackEpoch::current());
    EXPECT_EQ(out.availablePorts(), QStringList());
    EXPECT_TRUE(waitUntil([this] { return !out.portOpen; }));
}

// No window may wait longer, and the notes of an engine that never comes back cannot be ended.
TEST_F(MidiOut, AnEngineThatHangsDoesNotKeepThePort)
{
    openFirst();
    out.setEngineRunner([](const std::function<void()>&) { return false; });
    out.setChannel(-1);
    EXPECT_EQ(take(), "close");
    EXPECT_TRUE(isClosed());
    EXPECT_EQ(out.channel, -1);
    EXPECT_FALSE(out.selectPort(1));
    EXPECT_EQ(take(), "open 1 as RtMidi Output, close");
    EXPECT_TRUE(isClosed());
}
