// The note logic, without sound: what goes to the patch and what is signalled, in which order.

#include "support/EngineLog.h"
#include "support/LogCatcher.h"
#include "support/SoundRig.h"

#include "sound/OrloNoteEvent.h"
#include "sound/OrloTransposeEvent.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

#include <cmath>

namespace {

// Reports each voice's end at once, inside the gate message itself.
const QByteArray PATCH_WITHOUT_RELEASE =
    "#N canvas 0 0 200 200 12;\n#X obj 20 20 r orlo-in;\n#X obj 20 50 route 0;\n#X obj 20 80 route 1;\n"
    "#X msg 20 110 list \\$1;\n#X obj 20 140 s voice-stop;\n"
    "#X connect 0 0 1 0;\n#X connect 1 0 2 0;\n#X connect 2 0 3 0;\n#X connect 3 0 4 0;\n";

const OrloRatio A(1, 1);
const OrloRatio B(3, 2);
const OrloRatio C(2, 1);

/// What a note-on sends to voice `voice`, counted from 1, and signals.
std::string started(int voice, const char* frequency, const char* ratio)
{
    const std::string number = std::to_string(voice);
    std::string lines;
    for (int type = 4; type <= 11; ++type)
        lines += "orlo-in 0 " + std::to_string(type) + ' ' + number + "; ";
    return lines + "orlo-in " + frequency + " 2 " + number + "; orlo-in 1 3 " + number + "; orlo-in 1 1 "
           + number + "; noteToggled " + ratio + " on";
}

std::string stopped(int voice, const char* ratio)
{
    return "orlo-in 0 1 " + std::to_string(voice) + "; noteToggled " + ratio + " off";
}

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

    void toggle(const OrloRatio& ratio, float value = 1.0F) { rig.send(OrloNoteEvent(ratio, value)); }
    void press(const char* path) { rig.send(OrloNoteEvent(QString::fromLatin1(path))); }
    void send(OrloEvent::Type type, float value = 0.0F) { rig.send(OrloEvent(type, value)); }
    /// What the engine did for a press of this one.
    std::string after(const OrloRatio& ratio)
    {
        log.take();
        toggle(ratio);
        return log.said();
    }

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
    EXPECT_EQ(after(B), "orlo-in 0.125 4 1; orlo-in 0.25 5 1; orlo-in 0.375 6 1; orlo-in 0.5 7 1; "
                        "orlo-in 0.625 8 1; orlo-in 0.75 9 1; orlo-in 0.875 10 1; orlo-in 1 11 1; "
                        "orlo-in 660 2 1; orlo-in 0.5 3 1; orlo-in 1 1 1; noteToggled 3/2 on");
    EXPECT_EQ(after(B), stopped(1, "3/2"));
}

TEST_F(Voices, AThirdNoteStealsTheOldestOfTwo)
{
    EXPECT_EQ(after(A), started(1, "440", "1/1"));
    EXPECT_EQ(after(B), started(2, "660", "3/2"));
    EXPECT_EQ(after(C), stopped(1, "1/1") + "; " + started(1, "880", "2/1"));
    // The patch's late report of the stolen voice must not end the new one.
    rig.reportVoiceStop(1);
    const auto sounding = rig.player.getAllSoundingRatios();
    EXPECT_EQ(sounding.size(), 2);
    EXPECT_TRUE(sounding.contains(B) && sounding.contains(C));
    EXPECT_EQ(log.said(), "");
    // A voice in release is stolen without a second gate; it is the older one here.
    toggle(B);
    EXPECT_EQ(after(A), started(2, "440", "1/1"));
}

TEST_F(Voices, OnlyAReportThatNamesItFreesAVoice)
{
    for (const OrloRatio& ratio : {A, A, B}) // slot 1 is releasing
        toggle(ratio);
    for (const float number : {0.0F, -1.0F, 129.0F, 1e30F, NAN})
        rig.reportVoiceStop(number);
    EXPECT_EQ(after(C), started(1, "880", "2/1")); // the oldest was still taken
    toggle(C);
    rig.reportVoiceStop(1);
    EXPECT_EQ(after(A), started(1, "440", "1/1")); // and now it is free, though B's is older
}

TEST_F(Voices, FrequenciesAtTheBoundsAreMarkedButNotGated)
{
    const std::pair<float, bool> rows[] = {
        {20.0F, false},    {std::nextafter(20.0F, 30.0F), true},   {0.0F, false},
        {20000.0F, false}, {std::nextafter(20000.0F, 0.0F), true}, {-440.0F, false},
    };
    for (const auto& [frequency, heard] : rows) {
        send(OrloEvent::BaseFrequencySet, frequency);
        const std::string said = after(A);
        EXPECT_EQ(said.find("orlo-in 1 1 1") != std::string::npos, heard) << frequency;
        EXPECT_TRUE(said.ends_with("noteToggled 1/1 on")) << said;
        toggle(A);
        rig.reportVoiceStop(1);
    }
}

TEST_F(Voices, WhatNoLongerFitsIn64BitsIsRefused)
{
    LogCatcher messages;
    rig.send(OrloTransposeEvent(OrloRatio(1ULL << 63, 1)));
    rig.send(OrloTransposeEvent(OrloRatio(2, 1)));
    send(OrloEvent::TransposeByPrimeStep, 2.0F);
    EXPECT_EQ(log.said(), "transposed 9223372036854775808/1 1000");
    press("/2");
    press("/3"); // cancels to 2^62 times 3
    EXPECT_EQ(log.said(QStringLiteral("noteToggled")), "noteToggled 13835058055282163712/1 on");
    QCoreApplication::processEvents(); // logs what the engine said
    EXPECT_EQ(messages.count(QtWarningMsg, QStringLiteral("does not fit")), 3);
    EXPECT_TRUE(messages.has(QtWarningMsg, QStringLiteral("the pitch of \"/2\" does not fit")));
    send(OrloEvent::TransposeByPrimeStep, 0.0F);
    EXPECT_EQ(log.said(), "transposed 1/1 0");
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
    EXPECT_EQ(after(A), started(1, "440", "1/1"));
}

TEST_F(Voices, MonophonicStartsEachNoteBesideTheReleaseOfTheOneBefore)
{
    toggle(A);
    send(OrloEvent::MonophonicSet, 1.0F);
    EXPECT_EQ(after(B), started(2, "660", "3/2")); // does not stop a voice from before the switch
    toggle(A);
    rig.reportVoiceStop(1);
    EXPECT_EQ(after(C), stopped(2, "3/2") + "; " + started(1, "880", "2/1"));
    send(OrloEvent::MonophonicSet, 0.0F);
    send(OrloEvent::MonophonicSet, 1.0F); // forgets the voice from before
    rig.reportVoiceStop(2);
    EXPECT_EQ(after(B), started(2, "660", "3/2"));
}
