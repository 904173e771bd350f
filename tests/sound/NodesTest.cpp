// Nodes and glissando: what is sent and signalled, and when. The values are RandomNodesTest's.

#include "sound/PatchEar.h"
#include "support/LogCatcher.h"
#include "support/SoundRig.h"

#include "sound/OrloNodeSelectToggleEvent.h"
#include "sound/OrloNoteEvent.h"

#include <gtest/gtest.h>

#include <QSignalSpy>

#include <atomic>
#include <cmath>

namespace {

const QByteArray SILENT_PATCH = "#N canvas 0 0 200 200 12;\n";
const OrloRatio A(1, 1);
const OrloRatio B(3, 2);
const OrloRatio C(5, 4);
const OrloRatio D(7, 4);
const float SEMITONE = std::exp2(1.0F / 12.0F); // the range of the fine glissando

} // namespace

class Nodes : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(rig.loadMainText(SILENT_PATCH)); }
    void send(OrloEvent::Type type, float value = 1.0F) { rig.send(OrloEvent(type, value)); }
    void toggle(const OrloRatio& ratio) { rig.send(OrloNoteEvent(ratio)); }
    void select(const OrloRatio& ratio) { rig.send(OrloNodeSelectToggleEvent(ratio)); }
    /// Closes it, and what is to follow is not there.
    void losePatch()
    {
        rig.underClock([this] { rig.player.loadPatch(QFileInfo(rig.home.path(QStringLiteral("no.pd")))); });
        ASSERT_FALSE(rig.player.isPatchOpen());
    }
    const PatchEar::Voice& voiceOf(const OrloRatio& ratio) const
    {
        return ear.voiceOf({ratio.numerator(), ratio.denominator()});
    }
    float frequencyOf(const OrloRatio& ratio) const { return voiceOf(ratio).frequency; }

    const LogCatcher quiet;
    SoundRig rig;
    PatchEar ear{rig.player};
};

TEST_F(Nodes, OneBendTellsOfAllSelectedVoices)
{
    std::atomic<bool> open{true};
    rig.player.setPortOpenFlag(&open);
    toggle(A);
    toggle(B);
    select(B);
    select(A);
    select(C); // silent
    QSignalSpy spy(&rig.player, &PdPlayer::instructionsToInterface);
    send(OrloEvent::GlissOneSet, 1.0F);
    ASSERT_EQ(spy.size(), 1);
    EXPECT_EQ(spy[0][0].toInt(), 2);
    EXPECT_EQ(spy[0][1].value<QList<int>>(), (QList<int>{1, 0})); // in the order of selection
    EXPECT_EQ(spy[0][2].value<QList<float>>(), (QList<float>{1320.0F, 880.0F}));
    EXPECT_EQ(spy[0][3].value<QList<float>>(), (QList<float>{-1.0F, -1.0F}));

    spy.clear();
    QSignalSpy selections(&rig.player, &PdPlayer::nodeSelected);
    send(OrloEvent::NodesDeselectAll);
    EXPECT_EQ(selections.size(), 3);
    send(OrloEvent::GlissOneSet, 0.5F);
    EXPECT_TRUE(spy.isEmpty());
    rig.player.setPortOpenFlag(nullptr);
}

TEST_F(Nodes, TogglingAllSelectedWaitsForTheNextBlockAndLosesNone)
{
    constexpr int many = 120; // with the rest more than a ring of commands holds
    const OrloEvent toggleAll(OrloEvent::NodesToggleAllSelected, 1.0F);
    const OrloEvent other(OrloEvent::VoiceVolumeSet, 1.0F);
    const auto renderFullRing = [&] {
        for (int i = 0; i < 250; ++i)
            rig.queue(other);
        rig.render();
        return rig.player.getAllSoundingRatios().size();
    };
    for (int i = 1; i <= many; ++i)
        select(OrloRatio(static_cast<unsigned>(i), 64));
    // From the device too, whose commands run first in a block.
    for (const bool fromDevice : {false, true}) {
        fromDevice ? rig.player.queueEventSerial(&toggleAll) : rig.player.queueEventGui(&toggleAll);
        EXPECT_EQ(renderFullRing(), 0);
        EXPECT_EQ(renderFullRing(), many);
        rig.send(toggleAll);
        EXPECT_EQ(renderFullRing(), 0);
    }
    EXPECT_EQ(quiet.count(QtWarningMsg, QStringLiteral("Command buffer full")), 0);
}

TEST_F(Nodes, WhatIsDoneWithoutAPatchHoldsInTheNext)
{
    rig.settings.maintainMacroParameters = true;
    send(OrloEvent::Macro1Set, 0.5F);
    toggle(A);
    toggle(C);
    select(A);
    losePatch();
    for (const OrloRatio& ratio : {B, C, D, D}) // C sounded before, D is let go again
        toggle(ratio);
    select(B);
    send(OrloEvent::GlissOneSet, 1.0F);
    send(OrloEvent::GlissTwoSet, 1.0F);

    QSignalSpy sliders(&rig.player, &PdPlayer::setMacroSliders);
    QSignalSpy toggled(&rig.player, &PdPlayer::noteToggled);
    ASSERT_TRUE(rig.loadMainText(SILENT_PATCH));
    ASSERT_EQ(sliders.size(), 1);
    EXPECT_EQ(sliders[0][0].value<QList<float>>(), (QList<float>{0.5F, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(toggled.size(), 5); // B and C end and start, A starts: each has one voice
    EXPECT_EQ(rig.player.getAllSoundingRatios(), (QList<OrloRatio>{A, C, B}));
    EXPECT_EQ(rig.player.getAllSelectedRatios(), (QList<OrloRatio>{B, A}));
    EXPECT_EQ(voiceOf(B).gate, 1.0F);
    EXPECT_NEAR(frequencyOf(B), 1320.0F * SEMITONE, 0.01F);
    // A was out of reach of the sliders, so it stands where it was, now with the sliders at their ends.
    EXPECT_EQ(frequencyOf(A), 440.0F);
    send(OrloEvent::GlissOneSet, 0.5F);
    send(OrloEvent::GlissTwoSet, 0.5F);
    EXPECT_EQ(frequencyOf(B), 660.0F);
    EXPECT_NEAR(frequencyOf(A), 220.0F / SEMITONE, 0.01F);
}

TEST_F(Nodes, AGlissandoResetWithoutAPatchHoldsInTheNext)
{
    toggle(B);
    select(B);
    QSignalSpy sliders(&rig.player, &PdPlayer::resetGlissSliders);
    const std::pair<OrloEvent::Type, short> rows[] = {{OrloEvent::GlissOneReset, 1},
                                                      {OrloEvent::GlissTwoReset, 2},
                                                      {OrloEvent::GlissBothReset, 0},
                                                      {OrloEvent::NodesResetAllAndControls, 0}};
    for (const auto& [reset, which] : rows) {
        send(OrloEvent::GlissOneSet, 1.0F);
        send(OrloEvent::GlissTwoSet, 1.0F);
        losePatch();
        sliders.clear();
        send(reset);
        ASSERT_EQ(sliders.size(), 1);
        EXPECT_EQ(sliders[0][0].value<short>(), which);
        ASSERT_TRUE(rig.loadMainText(SILENT_PATCH));
        // B stands where the sliders stand, reset or not, and moves with them.
        send(OrloEvent::GlissOneSet, 0.75F);
        send(OrloEvent::GlissTwoSet, 0.75F);
        EXPECT_NEAR(frequencyOf(B), 660.0F * std::exp2(650.0F / 1200.0F), 0.01F) << reset;
        send(OrloEvent::GlissBothReset);
    }
}
