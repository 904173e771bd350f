#include "external/MidiDouble.h"
#include "sound/AudioLog.h"
#include "support/LogCatcher.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

class MpeOut : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(out.selectPort(0));
        out.setChannel(-1);
        take();
        out.mpeSetPitchBendRange(250);
        EXPECT_EQ(take(), bendRange("02", "32"));
    }
    std::string take() const { return out.system->take(); }
    std::string tune(const QList<int>& voices, const QList<float>& frequencies)
    {
        out.setKeyFrequency(voices, frequencies);
        return take();
    }

    MidiOutOverDouble out;
};

} // namespace

TEST_F(MpeOut, EachVoiceTakesTheNextChannel)
{
    EXPECT_EQ(tune({5}, {660.0F}), "E0 40 40"); // 1.955 of 250 cents: 64.5005
    out.voiceOn(5, 100);
    EXPECT_EQ(take(), "90 4C 64");
    EXPECT_EQ(tune({9, 2}, {440.0F, 550.0F}), "E1 00 40, E2 40 3C"); // -13.6863: 60.4963, 63.53
    out.voiceOn(2, 127);
    out.voiceOn(9, 300);
    out.voiceOn(77, 100); // has no channel
    EXPECT_EQ(take(), "92 49 7F, 91 45 2C");
    out.voiceOff(9);
    out.voiceOff(9);
    EXPECT_EQ(take(), "81 45 40");
    // 452.89298 Hz lies half a semitone above 440: midway is the upper key's.
    tune({10, 11}, {452.8930F, 452.8929F});
    EXPECT_EQ(out.mpeChannels.channelKey[1], 70);
    EXPECT_EQ(out.mpeChannels.channelKey[3], 69);
}

TEST_F(MpeOut, BendsAlongAGlissandoUpToTheLimit)
{
    const std::pair<float, const char*> rows[] = {
        {440.0F, "E0 00 40"},  {466.16376F, "E0 4D 59"}, // a semitone, 0.4: 89.6 and 76.8
        {2000.0F, "E0 1A 73"}, {2000.0F, "E0 1A 73"},    // held at 200 cents; sent again all the same
        {NAN, "E0 66 0C"},     {440.0F, "E0 00 40"},     // -0.8: 12.8 and 102.4
    };
    for (const auto& [frequency, bend] : rows)
        EXPECT_EQ(tune({0}, {frequency}), bend) << frequency;
    out.voiceOff(0); // with the key it was struck with
    EXPECT_EQ(take(), "80 45 40");
}

// The first free channel wins over a higher one that the voice has already.
TEST_F(MpeOut, AVoiceCanComeToHoldTwoChannels)
{
    tune({4, 5}, {440.0F, 660.0F});
    out.voiceOff(4);
    take();
    EXPECT_EQ(tune({5}, {550.0F}), "E0 40 3C"); // to the new channel alone
    out.bendVoices({4, 5}, {440.0F, 550.0F});
    EXPECT_EQ(take(), "E0 40 3C, E1 26 0D"); // -315.64 cents, held at -198.045 of 250: 13.3 and 38.4
    out.voiceOn(5, 64);
    EXPECT_EQ(take(), "90 49 40, 91 4C 40");
    out.voiceOff(5);
    EXPECT_EQ(take(), "80 49 40, 81 4C 40");
    EXPECT_FALSE(out.mpeChannels.channelActive[0] || out.mpeChannels.channelActive[1]);
}

TEST_F(MpeOut, ASeventeenthVoiceStaysSilent)
{
    QList<int> voices;
    for (int i = 0; i < 16; ++i)
        voices.append(100 + i);
    EXPECT_EQ(tune(voices, QList<float>(16, 440.0F)), onAllChannels(0xE0, "00 40"));
    // Once the search has failed, the others of the call are looked for on the last channel alone.
    EXPECT_EQ(tune({7, 103, 115, 8}, {440.0F, 440.0F, 440.0F, 440.0F}), "EF 00 40");
    EXPECT_EQ(tune({103}, {440.0F}), "E3 00 40"); // the next call searches all again
    out.voiceOn(7, 64);
    out.voiceOff(7);
    EXPECT_EQ(take(), "");

    // All off silences, but the channels stay with their voices until each is ended.
    out.mpeAllVoicesOff();
    EXPECT_EQ(take(), onAllChannels(0xB0, "7B 00") + ", " + onAllChannels(0xE0, "00 40"));
    EXPECT_EQ(tune({7}, {440.0F}), "");
    out.voiceOff(109);
    take();
    EXPECT_EQ(tune({7}, {440.0F}), "E9 00 40");
}

TEST_F(MpeOut, OnlyAVoiceThatHoldsAChannelIsBent)
{
    const auto bend = [this](const QList<int>& voices, const QList<float>& frequencies) {
        out.bendVoices(voices, frequencies);
        return take();
    };
    tune({4, 5}, {440.0F, 660.0F});
    out.voiceOff(4);
    take();
    EXPECT_EQ(bend({4, 5, 6}, {440.0F, 660.0F, 550.0F}), "E1 40 40"); // no lower channel is taken
    EXPECT_FALSE(out.mpeChannels.channelActive[0]);
    // The device has been silenced.
    out.selectPort(3);
    EXPECT_NE(take(), "");
    EXPECT_EQ(bend({5}, {660.0F}), "");
    tune({5}, {330.0F});
    out.setChannel(2);
    out.setChannel(-1);
    take();
    EXPECT_EQ(bend({5}, {660.0F}), "");
    EXPECT_EQ(tune({5}, {440.0F}), "E0 00 40"); // with a key of its own, not the former one
}

TEST_F(MpeOut, AVoiceIsRetunedByItsBendOrByANewKey)
{
    tune({0}, {440.0F});
    const auto retune = [this](float frequency) {
        out.retuneVoices({0, 1}, {frequency, 550.0F}, {0.8F, 0.8F}); // the second has no channel
        return take();
    };
    EXPECT_EQ(retune(441.0F), "E0 01 41");       // 3.9302 of 250 cents: 65.0061
    EXPECT_EQ(tune({0}, {2000.0F}), "E0 1A 74"); // held at 200 cents from there: 116.206
    EXPECT_EQ(retune(660.0F), "80 45 40, E0 40 40, 90 4C 65");
}

TEST_F(MpeOut, TheRangeGoesToChannelZeroAlone)
{
    out.mpeSetPitchBendRange(1250);
    EXPECT_EQ(take(), bendRange("0C", "32"));
    out.mpeResetPitchBendRange();
    EXPECT_EQ(take(), bendRange("02", "00"));
    EXPECT_EQ(out.pitchBendRangeCents, 1250);

    // In the other mode it is only stored.
    out.setChannel(0);
    take();
    out.mpeSetPitchBendRange(60);
    EXPECT_EQ(take(), "");
    EXPECT_EQ(out.pitchBendRangeCents, 60);
}

TEST_F(MpeOut, AFrequencyAboveTheRangeTakesAKeyThatIsNoneAndStaysSilent)
{
    tune({0, 1}, {1.0F, 20000.0F});
    EXPECT_EQ(out.mpeChannels.channelKey[0], 0);
    EXPECT_EQ(out.mpeChannels.channelKey[1], 128); // the nearest to 127.99999
    out.voiceOn(1, 100);
    EXPECT_EQ(take(), "");
}

TEST_F(MpeOut, ABendBeyondTheRangeIsToldOfOnceForEachRange)
{
    out.mpeSetPitchBendRange(50); // the narrowest: only the key is corrected
    take();
    EXPECT_EQ(tune({0}, {660.0F}), "E0 40 42"); // 1.955 of 50 cents: 66.5024
    tune({1}, {452.0F});
    for (const int cents : {-100, 1}) {
        out.mpeSetPitchBendRange(cents);
        const LogCatcher log;
        tune({1}, {880.0F});
        tune({1}, {881.0F});
        AudioLog::drain();
        EXPECT_EQ(log.count(QtWarningMsg, QStringLiteral("MPE Pitch-bend factor exceeds +-1.")), 1) << cents;
    }
}
