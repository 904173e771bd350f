// The notes without sound: what goes out in which order. Which voices there are is RandomNodesTest's.

#include "support/EngineLog.h"
#include "support/LogCatcher.h"
#include "support/SoundRig.h"

#include "sound/OrloNodeSelectToggleEvent.h"
#include "sound/OrloNoteEvent.h"
#include "sound/OrloTransposeEvent.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

#include <atomic>

namespace {

// Reports each voice's end at once, inside the gate message itself.
const QByteArray PATCH_WITHOUT_RELEASE =
    "#N canvas 0 0 200 200 12;\n#X obj 20 20 r orlo-in;\n#X obj 20 50 route 0;\n#X obj 20 80 route 1;\n"
    "#X msg 20 110 list \\$1;\n#X obj 20 140 s voice-stop;\n"
    "#X connect 0 0 1 0;\n#X connect 1 0 2 0;\n#X connect 2 0 3 0;\n#X connect 3 0 4 0;\n";

const OrloRatio A(1, 1);
const OrloRatio B(3, 2);

class Voices : public ::testing::Test
{
protected:
    Voices()
    {
        rig.player.setMaxVoices(2);
        // Open, and silent, so that the test speaks for it.
        EXPECT_TRUE(rig.loadMainText("#N canvas 0 0 200 200 12;\n"));
        log.take();
    }

    void toggle(const OrloRatio& ratio) { rig.send(OrloNoteEvent(ratio)); }
    void send(OrloEvent::Type type, float value = 0.0F) { rig.send(OrloEvent(type, value)); }

    SoundRig rig;
    EngineLog log{rig.player};
};

} // namespace

TEST_F(Voices, ANoteSendsMacrosThenFrequencyVolumeAndGate)
{
    for (int macro = 0; macro < 8; ++macro)
        send(static_cast<OrloEvent::Type>(OrloEvent::Macro1Set + macro),
             static_cast<float>(macro + 1) / 8.0F);
    send(OrloEvent::VoiceVolumeSet, 0.5F);
    log.take();
    toggle(B);
    EXPECT_EQ(log.said(), "orlo-in 0.125 4 1; orlo-in 0.25 5 1; orlo-in 0.375 6 1; orlo-in 0.5 7 1; "
                          "orlo-in 0.625 8 1; orlo-in 0.75 9 1; orlo-in 0.875 10 1; orlo-in 1 11 1; "
                          "orlo-in 660 2 1; orlo-in 0.5 3 1; orlo-in 1 1 1; noteToggled 3/2 on");
    toggle(B);
    EXPECT_EQ(log.said(), "orlo-in 0 1 1; noteToggled 3/2 off");
}

TEST_F(Voices, WhatNoLongerFitsIn64BitsIsLogged)
{
    const LogCatcher messages;
    rig.send(OrloTransposeEvent(OrloRatio(1ULL << 63, 1)));
    send(OrloEvent::TransposeByPrimeStep, 2.0F);
    rig.send(OrloNoteEvent(QStringLiteral("/2")));
    EXPECT_EQ(log.said(), "transposed 9223372036854775808/1 1000");
    QCoreApplication::processEvents(); // logs what the engine said
    EXPECT_EQ(messages.count(QtWarningMsg, QStringLiteral("does not fit")), 2);
    EXPECT_TRUE(messages.has(QtWarningMsg, QStringLiteral("the pitch of \"/2\" does not fit")));
}

TEST_F(Voices, AllNotesEndThoughThePatchReportsThemAtOnce)
{
    rig.player.setMaxVoices(128);
    ASSERT_TRUE(rig.loadMainText(PATCH_WITHOUT_RELEASE));
    // Squares, which meet in few places of a hash table: there an erasure moves other entries.
    for (unsigned long long n = 1; n <= 100; ++n)
        toggle(OrloRatio(1000 + n * n, 997));
    ASSERT_EQ(rig.player.getAllSoundingRatios().size(), 100);
    log.take();
    send(OrloEvent::AllNotesOffForced);
    EXPECT_TRUE(rig.player.getAllSoundingRatios().isEmpty());
    EXPECT_EQ(log.take(QStringLiteral("noteToggled")).size(), 100);
    toggle(A);
    EXPECT_TRUE(log.said().ends_with("orlo-in 440 2 1; orlo-in 1 3 1; orlo-in 1 1 1; noteToggled 1/1 on"));
}

TEST_F(Voices, OneBendTellsOfAllSelectedVoices)
{
    std::atomic<bool> open{true};
    rig.player.setPortOpenFlag(&open);
    toggle(A);
    toggle(B);
    for (const OrloRatio& ratio : {B, A, OrloRatio(5, 4)}) // in the order of selection; the last is silent
        rig.send(OrloNodeSelectToggleEvent(ratio));
    log.take();
    send(OrloEvent::GlissOneSet, 1.0F);
    EXPECT_EQ(log.said(QStringLiteral("instruction")), "instruction 2 1|0 1320|880 -1|-1");
    send(OrloEvent::NodesDeselectAll);
    send(OrloEvent::GlissOneSet, 0.5F);
    EXPECT_EQ(log.said(QStringLiteral("instruction")), "");
    rig.player.setPortOpenFlag(nullptr);
}
