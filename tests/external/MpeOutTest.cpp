#include "app/DebugLog.h"
#include "external/MidiDouble.h"
#include "support/LogCatcher.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

QStringList lines(std::initializer_list<const char*> texts)
{
    QStringList list;
    for (const char* text : texts)
        list.append(QString::fromLatin1(text));
    return list;
}

class MpeOut : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(out.selectPort(0));
        out.setChannel(-1);
        out.mpeSetPitchBendRange(250);
        out.system->take();
    }
    QStringList tune(const QList<int>& voices, const QList<float>& frequencies)
    {
        out.setKeyFrequency(voices, frequencies);
        return out.system->take();
    }

    MidiOutOverDouble out;
};

} // namespace

TEST_F(MpeOut, EachVoiceTakesTheNextChannel)
{
    EXPECT_EQ(tune({5}, {660.0F}), lines({"E0 40 40"})); // 1.955 of 250 cents: 64.5005
    out.voiceOn(5, 100);
    EXPECT_EQ(out.system->take(), lines({"90 4C 64"}));
    EXPECT_EQ(tune({9, 2}, {440.0F, 550.0F}), lines({"E1 00 40", "E2 40 3C"})); // -13.6863: 60.4963, 63.53
    out.voiceOn(2, 127);
    out.voiceOn(9, 300);
    out.voiceOn(77, 100); // has no channel
    EXPECT_EQ(out.system->take(), lines({"92 49 7F", "91 45 2C"}));
    out.voiceOff(9);
    out.voiceOff(9);
    EXPECT_EQ(out.system->take(), lines({"81 45 40"}));
    EXPECT_EQ(tune({}, {}), QStringList());
}

TEST_F(MpeOut, WithTheNarrowestRangeOnlyTheKeyIsCorrected)
{
    out.mpeSetPitchBendRange(50);
    out.system->take();
    EXPECT_EQ(tune({0}, {660.0F}), lines({"E0 40 42"})); // 1.955 of 50 cents: 66.5024
}

TEST_F(MpeOut, BendsAlongAGlissandoUpToTheLimit)
{
    EXPECT_EQ(tune({0}, {440.0F}), lines({"E0 00 40"}));
    out.voiceOn(0, 90);
    out.system->take();
    EXPECT_EQ(tune({0}, {466.16376F}), lines({"E0 4D 59"})); // a semitone, 0.4: 89.6 and 76.8
    EXPECT_EQ(tune({0}, {2000.0F}), lines({"E0 1A 73"}));    // held at 200 cents
    EXPECT_EQ(tune({0}, {2000.0F}), lines({"E0 1A 73"}));    // sent again all the same
    EXPECT_EQ(tune({0}, {100.0F}), lines({"E0 66 0C"}));     // -0.8: 12.8 and 102.4
    EXPECT_EQ(tune({0}, {NAN}), lines({"E0 66 0C"}));
    EXPECT_EQ(tune({0}, {INFINITY}), lines({"E0 1A 73"}));
    EXPECT_EQ(tune({0}, {440.0F}), lines({"E0 00 40"}));
    out.voiceOff(0); // with the key it was struck with
    EXPECT_EQ(out.system->take(), lines({"80 45 40"}));
}

// The first free channel wins over a higher one that the voice has already.
TEST_F(MpeOut, AVoiceCanComeToHoldTwoChannels)
{
    tune({4, 5}, {440.0F, 660.0F});
    out.voiceOn(4, 64);
    out.voiceOn(5, 64);
    out.voiceOff(4);
    out.system->take();
    EXPECT_EQ(tune({5}, {550.0F}), lines({"E0 40 3C"}));
    EXPECT_EQ(tune({5}, {660.0F}).size(), 1); // to the new channel alone
    out.voiceOn(5, 64);
    EXPECT_EQ(out.system->take(), lines({"90 49 40", "91 4C 40"}));
    out.voiceOff(5);
    EXPECT_EQ(out.system->take(), lines({"80 49 40", "81 4C 40"}));
    EXPECT_FALSE(out.channelActive[0] || out.channelActive[1]);
}

TEST_F(MpeOut, ASeventeenthVoiceStaysSilent)
{
    QList<int> voices;
    QList<float> frequencies;
    for (int i = 0; i < 16; ++i) {
        voices.append(100 + i);
        frequencies.append(440.0F);
    }
    EXPECT_EQ(tune(voices, frequencies), onAllChannels(0xE0, "00 40"));

    app::debugListening = true;
    LogCatcher log;
    // Once the search has failed, the others of the call are looked for on the last channel alone.
    EXPECT_EQ(tune({7, 103, 115, 8}, {440.0F, 440.0F, 440.0F, 440.0F}), lines({"EF 00 40"}));
    app::debugListening = false;
    EXPECT_EQ(log.count(QtDebugMsg, QStringLiteral("Cannot add PdPlayer voice")), 3);
    EXPECT_TRUE(log.has(QtDebugMsg, QStringLiteral("QList(7, 103, 115, 8) . All MPE channels in use!")));
    EXPECT_EQ(tune({103}, {440.0F}), lines({"E3 00 40"})); // the next call searches all again
    out.voiceOn(7, 64);
    out.voiceOff(7);
    EXPECT_TRUE(out.system->take().isEmpty());

    // All off silences, but the channels stay with their voices until each is ended.
    out.mpeAllVoicesOff();
    EXPECT_EQ(out.system->take(), onAllChannels(0xB0, "7B 00") + onAllChannels(0xE0, "00 40"));
    EXPECT_TRUE(tune({7}, {440.0F}).isEmpty());
    out.voiceOff(109);
    out.system->take();
    EXPECT_EQ(tune({7}, {440.0F}), lines({"E9 00 40"}));
}

TEST_F(MpeOut, AFrequencyMidwayTakesTheUpperKey)
{
    // 452.89298 Hz lies half a semitone above 440.
    tune({0, 1}, {452.8930F, 452.8929F});
    EXPECT_EQ(out.channelKey[0], 70);
    EXPECT_EQ(out.channelKey[1], 69);
}

TEST_F(MpeOut, FrequenciesOutsideTheRangeAreClampedOnce)
{
    LogCatcher log;
    EXPECT_EQ(tune({0, 1}, {1.0F, 20000.0F}).size(), 2);
    EXPECT_EQ(out.channelKey[0], 0);
    EXPECT_EQ(out.channelKey[1], 128); // the nearest to 127.99999
    EXPECT_EQ(log.count(QtWarningMsg, QStringLiteral("MTS: Freq sent to MIDI below MIDI range:  1")), 1);
    EXPECT_EQ(log.count(QtWarningMsg, QStringLiteral("MTS: Freq sent to MIDI above MIDI range:  20000")), 1);
    log.clear();
    tune({0, 1}, {1.0F, 20000.0F});
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST_F(MpeOut, TheRangeGoesToChannelZeroAlone)
{
    out.mpeSetPitchBendRange(1250);
    EXPECT_EQ(out.system->take(),
              lines({"B0 64 00", "B0 65 00", "B0 06 0C", "B0 26 32", "B0 64 7F", "B0 65 7F"}));
    out.mpeResetPitchBendRange();
    EXPECT_EQ(out.system->take().mid(2, 2), lines({"B0 06 02", "B0 26 00"}));
    EXPECT_EQ(out.pitchBendRangeCents, 1250);

    // In the other mode it is only stored.
    out.setChannel(0);
    out.system->take();
    out.mpeSetPitchBendRange(60);
    EXPECT_TRUE(out.system->take().isEmpty());
    EXPECT_EQ(out.pitchBendRangeCents, 60);
}

TEST_F(MpeOut, ARangeWithoutSenseSaturates)
{
    tune({0}, {452.0F});
    for (const int cents : {0, -100, 1}) {
        out.mpeSetPitchBendRange(cents);
        out.system->take();
        LogCatcher log;
        EXPECT_EQ(tune({0}, {880.0F}).size(), 1) << cents;
        EXPECT_EQ(log.count(QtWarningMsg, QStringLiteral("MPE Pitch-bend factor exceeds +-1.")), 1);
    }
}

TEST_F(MpeOut, TellsEachBendInTheLog)
{
    app::debugListening = true;
    LogCatcher log;
    tune({3}, {2000.0F});
    out.voiceOn(3, 64);
    out.voiceOff(3);
    app::debugListening = false;
    QStringList texts;
    for (const LogCatcher::Line& line : log.lines())
        texts.append(line.text.simplified());
    ASSERT_EQ(texts.size(), 4);
    EXPECT_EQ(texts[0], QStringLiteral("MPE pitch-bend message sent:"));
    // 2000 Hz is 95.2131 as a note: 21.31 cents of 250 above its key.
    EXPECT_TRUE(texts[1].startsWith(QStringLiteral(
        "channel, voice, exact note, range cents, bend cents, factor, message MSB, LSB 0 95 95.213")))
        << texts[1].toStdString();
    EXPECT_EQ(texts[2], QStringLiteral("MPE Voice On: Channel, voice: 0 95"));
    EXPECT_EQ(texts[3], QStringLiteral("MPE Voice Off: Channel, voice: 0 95"));
}
