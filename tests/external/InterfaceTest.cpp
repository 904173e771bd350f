#include "external/Interface.h"

#include "external/MidiDouble.h"
#include "sound/OrloNoteEvent.h"
#include "support/SoundRig.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

const std::string TUNE_440 = "F0 7F 7F 08 02 00 01 20 45 00 00 F7";

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

TEST_F(Router, SoundingNotesFollowAChangeOfOneToOneWhenAsked)
{
    press(1, 1);
    press(3, 2);
    press(3, 2); // fades
    out.system->take();
    const std::pair<float, std::string> rows[] = {
        {441.0F, "F0 7F 7F 08 02 00 01 20 45 05 04 F7"},
        {441.0F, ""},
        {20.0F, "80 20 40"}, // out of range
        {440.0F, TUNE_440 + ", 90 20 00"},
    };
    for (const auto& [base, sent] : rows) {
        rig.queue(OrloEvent(OrloEvent::BaseFrequencySet, base));
        rig.player.processEvents();
        EXPECT_EQ(out.system->take(), "");
        rig.player.retuneNotes();
        rig.player.processEvents();
        EXPECT_EQ(out.system->take(), sent) << base;
    }
    // A slider that is moved before does not hide the change.
    rig.queue(OrloEvent(OrloEvent::NodesSelectAllSounding, 1.0F));
    rig.queue(OrloEvent(OrloEvent::BaseFrequencySet, 441.0F));
    rig.queue(OrloEvent(OrloEvent::GlissOneSet, 0.75F));
    rig.player.processEvents();
    EXPECT_NE(out.system->take(), "");
    rig.player.retuneNotes();
    rig.player.processEvents();
    EXPECT_NE(out.system->take(), "");
}
