#include "external/Interface.h"

#include "external/MidiDouble.h"
#include "sound/OrloNodeSelectToggleEvent.h"
#include "sound/OrloNoteEvent.h"
#include "support/SoundRig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

namespace {

const std::string TUNE_440 = "F0 7F 7F 08 02 00 01 20 45 00 00 F7";

/// A synthesiser at the other end, with one tuning for each key and one bend for each channel.
struct Synth
{
    void hear(std::span<const midi::Byte> message)
    {
        const int channel = message[0] & 0x0F;
        const std::pair<int, int> note(channel, message[1]);
        switch (message[0] & 0xF0) {
        case 0x80: notes.erase(note); break;
        case 0x90:
            notes.insert(note);
            ++starts;
            break;
        case 0xE0: bends[channel] = (message[1] + message[2] * 128) / 8192.0 - 1.0; break;
        case 0xF0:
            for (size_t at = 7; at + 4 < message.size(); at += 4)
                keys[message[at]] = message[at + 1] + message[at + 2] / 128.0 + message[at + 3] / 16384.0;
            break;
        default: break;
        }
    }
    /// In cents above 440 Hz, rising.
    std::vector<double> pitches(double bendRange) const
    {
        std::vector<double> cents;
        for (const auto& [channel, key] : notes) {
            const double tuned = keys.contains(key) ? keys.at(key) : key;
            const double bend = bends.contains(channel) ? bends.at(channel) : 0.0;
            cents.push_back((tuned - 69.0) * 100.0 + bend * bendRange);
        }
        std::ranges::sort(cents);
        return cents;
    }

    std::set<std::pair<int, int>> notes; // channel and key
    std::map<int, double> keys;          // as fractions of a semitone
    std::map<int, double> bends;         // -1 to 1
    int starts = 0;
};

/// The player, the router and the MIDI output behind it.
class Router : public ::testing::Test
{
protected:
    void SetUp() override
    {
        router.midiOutput = &out;
        rig.player.setPortOpenFlag(&out.portOpen);
        QObject::connect(&rig.player, &PdPlayer::instructionsToInterface, &router,
                         &Interface::receiveInstructions, Qt::DirectConnection);
        QObject::connect(&rig.player, &PdPlayer::notesRetuned, &router, &Interface::receiveRetuning,
                         Qt::DirectConnection);
        ASSERT_TRUE(out.selectPort(0));
        out.system->take();
    }
    std::string receive(int parameter, const QList<int>& voices, const QList<float>& value1,
                        const QList<float>& value2)
    {
        router.receiveInstructions(parameter, voices, value1, value2);
        return out.system->take();
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

TEST_F(Router, TunesFirstAndStartsThen)
{
    EXPECT_EQ(receive(1, {0}, {440.0F}, {1.0F}), TUNE_440 + ", 90 20 7F");
    EXPECT_EQ(receive(1, {0}, {440.0F}, {0.5F}), TUNE_440 + ", 90 20 3F");
    EXPECT_EQ(receive(1, {0}, {440.0F}, {}), TUNE_440 + ", 90 20 00");
    EXPECT_EQ(receive(2, {0, 1}, {440.0F, 660.0F}, {-1.0F, -1.0F}),
              "F0 7F 7F 08 02 00 02 20 45 00 00 21 4C 02 40 F7");
    EXPECT_EQ(receive(-1, {3, 0}, {-1.0F, -1.0F}, {-1.0F, -1.0F}), "80 23 40");
    // The macro of a device's map can be anything.
    for (const float velocity : {NAN, INFINITY, -INFINITY, 3e38F, -1.0F})
        EXPECT_TRUE(receive(1, {0}, {440.0F}, {velocity}).starts_with(TUNE_440 + ", 90 20 ")) << velocity;

    for (const int unknown : {0, 3})
        EXPECT_EQ(receive(unknown, {0}, {440.0F}, {1.0F}), "");
    EXPECT_EQ(receive(1, {}, {}, {}), "");
    router.setRestricted(true);
    EXPECT_EQ(receive(1, {0}, {440.0F}, {1.0F}), "B0 7B 00"); // only what sounded has ended

    router.setRestricted(false);
    out.setChannel(-1);
    receive(1, {0}, {440.0F}, {1.0F});
    router.setRestricted(true);
    EXPECT_EQ(receive(-1, {0}, {-1.0F}, {-1.0F}),
              onAllChannels(0xB0, "7B 00") + ", " + onAllChannels(0xE0, "00 40"));
    router.setRestricted(false);
    EXPECT_EQ(receive(1, {1}, {440.0F}, {1.0F}), "E0 00 40, 90 45 7F"); // no channel is taken
}

TEST_F(Router, EachVoiceOfThePlayerHasAKeyOfItsOwn)
{
    const OrloEvent macro(OrloEvent::Macro1Set, 0.5F);
    rig.player.queueEventGui(&macro);
    press(1, 1);
    press(3, 2);
    press(1, 1);
    press(1, 1000); // 0.44 Hz: not heard, and not sent
    EXPECT_EQ(out.system->take(),
              TUNE_440 + ", 90 20 3F, F0 7F 7F 08 02 00 01 21 4C 02 40 F7, 90 21 3F, 80 20 40");
    out.selectPort(-1);
    out.system->take();
    press(3, 2);
    press(5, 4);
    EXPECT_EQ(out.system->take(), "");
}

TEST_F(Router, NotesThatSoundFollowAChangeOfOneToOneWhenAsked)
{
    constexpr int bendRange = 200; // cents
    const double glide = 1200.0 * std::log2(5.0 / 4.0);
    struct Step
    {
        OrloEvent event;
        bool asks;
        double base;               // Hz, of what sounds then
        double glissando;          // cents of 5/4
        std::array<int, 2> starts; // by MTS and MPE
    };
    const auto base = [](float frequency) { return OrloEvent(OrloEvent::BaseFrequencySet, frequency); };
    const Step steps[] = {
        {{OrloEvent::GlissTwoSet, 0.75F}, true, 440.0, 50.0, {3, 3}},
        {base(450.0F), false, 440.0, 50.0, {3, 3}},
        {{}, true, 450.0, 50.0, {3, 3}},
        {base(600.0F), true, 600.0, 50.0, {3, 6}}, // further than a bend reaches
        {{OrloEvent::GlissTwoSet, 1.0F}, false, 600.0, 100.0, {3, 6}},
        {base(439.0F), true, 439.0, 100.0, {3, 9}},
    };
    for (const int channel : {0, MidiOutput::MPE}) {
        SCOPED_TRACE(channel);
        const bool isMpe = channel == MidiOutput::MPE;
        out.setChannel(channel);
        out.mpeSetPitchBendRange(bendRange);
        out.system->take();
        Synth synth;
        out.system->listener = [&synth](std::span<const midi::Byte> message) { synth.hear(message); };
        const auto run = [&](const OrloEvent& event) {
            rig.queue(event);
            rig.player.processEvents();
            out.system->take();
        };
        run(base(440.0F));
        press(1, 1);
        press(3, 2);
        press(5, 4);
        run(OrloNodeSelectToggleEvent(OrloRatio(5, 4)));
        for (const Step& step : steps) {
            SCOPED_TRACE(::testing::Message() << step.base << " Hz, " << step.glissando << " cents");
            if (step.asks)
                rig.player.retuneNotes();
            run(step.event);
            const double root = 1200.0 * std::log2(step.base / 440.0);
            const double expected[] = {root, root + glide + step.glissando, root + 1200.0 * std::log2(1.5)};
            // Half of the last bit, and what a frequency in single precision leaves open.
            const double tolerance = (isMpe ? bendRange / 8192.0 : 100.0 / 16384.0) / 2.0 + 0.0005;
            const std::vector<double> pitches = synth.pitches(isMpe ? bendRange : 0);
            ASSERT_EQ(pitches.size(), std::size(expected));
            for (size_t i = 0; i < pitches.size(); ++i)
                EXPECT_NEAR(pitches[i], expected[i], tolerance);
            EXPECT_EQ(synth.starts, step.starts.at(isMpe ? 1 : 0));
        }
        // A note that leaves the range of pitches is silent until it is back.
        for (const auto& [frequency, notes] : {std::pair(20.0F, 2U), {15.0F, 1U}, {440.0F, 3U}}) {
            rig.player.retuneNotes();
            run(base(frequency));
            EXPECT_EQ(synth.notes.size(), notes) << frequency;
        }
        run({OrloEvent::AllNotesOffForced, 0.0F});
        EXPECT_TRUE(synth.notes.empty());
        run({OrloEvent::NodesResetAllAndControlsDeselect, 0.0F});
        out.system->listener = nullptr;
    }
}
