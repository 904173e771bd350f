// What a device's map can do to the player: any command, with any value.

#include "external/RfidMap.h"
#include "sound/OrloNoteEvent.h"
#include "support/EngineLog.h"
#include "support/LogCatcher.h"
#include "support/SoundRig.h"

#include <gtest/gtest.h>

#include <QRegularExpression>

#include <atomic>
#include <cmath>
#include <limits>
#include <thread>

namespace {

constexpr float LARGEST = std::numeric_limits<float>::max();
constexpr float ODD_VALUES[] = {0.0F,  -0.0F, 1.0F,    -1.0F,    0.5F,     2.0F,      3.0F,
                                31.0F, 32.0F, -2.5F,   127.0F,   128.0F,   1e-42F,    1e9F,
                                -1e9F, 1e20F, LARGEST, -LARGEST, INFINITY, -INFINITY, NAN};
const OrloRatio FIFTH(3, 2);
const QRegularExpression NO_NUMBER(QStringLiteral("\\b(nan|inf)\\b"));

OrloEvent command(int type, float value)
{
    return OrloEvent(static_cast<OrloEvent::Type>(type), value);
}

class Hardening : public ::testing::Test
{
protected:
    void serial(const OrloEvent& event)
    {
        rig.player.queueEventSerial(&event);
        rig.player.processEvents();
    }
    /// What a player does to come back to a plain state.
    void restore()
    {
        const std::pair<int, float> commands[] = {
            {OrloEvent::AllNotesOffForced, 0.0F},    {OrloEvent::NodesHold, 0.0F},
            {OrloEvent::TransposeByPrimeStep, 0.0F}, {OrloEvent::BaseFrequencySet, 440.0F},
            {OrloEvent::MasterVolumeSet, 0.75F},     {OrloEvent::VoiceVolumeSet, 1.0F},
            {OrloEvent::MonophonicSet, 0.0F},        {OrloEvent::NodesResetAllAndControlsDeselect, 0.0F},
        };
        for (const auto& [type, value] : commands)
            serial(command(type, value));
        for (int macro = OrloEvent::Macro1Set; macro <= OrloEvent::Macro8Set; ++macro)
            serial(command(macro, macro == OrloEvent::Macro1Set ? 0.8F : 0.5F));
    }

    SoundRig rig{4};
};

} // namespace

// The filters and delays of the patch must not keep what a wild value put there.
TEST_F(Hardening, NoCommandWithAnyValueHarmsThePlayer)
{
    ASSERT_TRUE(rig.loadVoice(QStringLiteral("Sine.pd")));
    EngineLog log(rig.player);
    const auto levelOfANote = [&] {
        restore();
        EXPECT_TRUE(rig.renderUntilSilent()); // of voices that fade as wildly as they were told
        serial(OrloNoteEvent(FIFTH));
        rig.render(100);
        const float level = peak(rig.render(100));
        serial(OrloNoteEvent(FIFTH));
        return level;
    };
    const float before = levelOfANote();
    ASSERT_GT(before, 0.01F);
    for (int type = -2; type <= OrloEvent::TYPE_COUNT; ++type) {
        SCOPED_TRACE(type);
        for (const float value : ODD_VALUES) {
            SCOPED_TRACE(value);
            // With nothing sounding, with a note, and on what the first time left behind.
            for (const OrloEvent& event : {command(type, value), command(type, value)}) {
                serial(event);
                serial(OrloNoteEvent(FIFTH));
                rig.render(4);
            }
            serial(command(type, value));
            for (const QString& line : log.take())
                EXPECT_FALSE(line.contains(NO_NUMBER)) << line.toStdString();
        }
        EXPECT_NEAR(levelOfANote() / before, 1.0F, 0.02F);
    }
}

TEST_F(Hardening, ADeviceThatOpensAndClosesThePatchChangesNothing)
{
    LogCatcher messages;
    std::atomic<bool> flooding{true};
    std::thread device([&] {
        for (int i = 0; flooding; ++i) {
            const OrloEvent event(i % 2 == 0 ? OrloEvent::PatchClose : OrloEvent::PatchOpen, 0.0F);
            rig.player.queueEventSerial(&event);
            std::this_thread::sleep_for(std::chrono::microseconds(i % 3 * 200));
        }
    });
    for (int i = 0; i < 4; ++i) {
        EXPECT_TRUE(rig.loadVoice(QStringLiteral("Sine.pd")));
        EXPECT_TRUE(rig.player.isPatchOpen());
        rig.queue(OrloNoteEvent(FIFTH));
        EXPECT_GT(peak(rig.render(50)), 0.01F);
    }
    flooding = false;
    device.join();
    // One opening and one closing for each load, but for the last.
    EXPECT_EQ(messages.count(QtWarningMsg, QStringLiteral("Opening PD patch")), 4);
    EXPECT_EQ(messages.count(QtWarningMsg, QStringLiteral("Closing PD patch")), 3);
}
