// The note logic, without sound: what goes to the patch and what is signalled, in which order.

#include "support/EngineLog.h"
#include "support/LogCatcher.h"
#include "support/SoundRig.h"

#include "sound/OrloNodeRemoveEvent.h"
#include "sound/OrloNoteEvent.h"
#include "sound/OrloTransposeEvent.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <set>

namespace {

// A patch that is open and does nothing, so that the test speaks for it.
const QByteArray SILENT_PATCH = "#N canvas 0 0 200 200 12;\n";

// Reports each voice's end at once, inside the gate message itself.
const QByteArray PATCH_WITHOUT_RELEASE = "#N canvas 0 0 200 200 12;\n"
                                         "#X obj 20 20 r orlo-in;\n"
                                         "#X obj 20 50 route 0;\n"
                                         "#X obj 20 80 route 1;\n"
                                         "#X msg 20 110 list \\$1;\n"
                                         "#X obj 20 140 s voice-stop;\n"
                                         "#X connect 0 0 1 0;\n#X connect 1 0 2 0;\n"
                                         "#X connect 2 0 3 0;\n#X connect 3 0 4 0;\n";

const OrloRatio A(1, 1);
const OrloRatio B(3, 2);
const OrloRatio C(2, 1);

QString line(const char* text)
{
    return QString::fromLatin1(text);
}

/// What a note-on sends to voice `voice`, counted from 1, and signals.
QStringList startLines(int voice, const char* frequency, const char* ratio)
{
    QStringList lines;
    for (int type = 4; type <= 11; ++type)
        lines.append(QStringLiteral("orlo-in 0 %1 %2").arg(type).arg(voice));
    lines.append(QStringLiteral("orlo-in %1 2 %2").arg(line(frequency)).arg(voice));
    lines.append(QStringLiteral("orlo-in 1 3 %1").arg(voice));
    lines.append(QStringLiteral("orlo-in 1 1 %1").arg(voice));
    lines.append(QStringLiteral("noteToggled %1 on").arg(line(ratio)));
    return lines;
}

QStringList stopLines(int voice, const char* ratio)
{
    return {QStringLiteral("orlo-in 0 1 %1").arg(voice),
            QStringLiteral("noteToggled %1 off").arg(line(ratio))};
}

std::set<std::pair<quint64, quint64>> sounding(PdPlayer& player)
{
    std::set<std::pair<quint64, quint64>> set;
    for (const OrloRatio& ratio : player.getAllSoundingRatios())
        set.insert({ratio.numerator(), ratio.denominator()});
    return set;
}

class Voices : public ::testing::Test
{
protected:
    explicit Voices(int voices = 2)
        : rig(voices)
        , log(rig.player)
    {
        EXPECT_TRUE(rig.loadMainText(SILENT_PATCH));
        log.take();
    }

    void toggle(const OrloRatio& ratio, float value = 1.0F) { rig.send(OrloNoteEvent(ratio, value)); }
    void press(const char* path) { rig.send(OrloNoteEvent(line(path))); }
    void send(OrloEvent::Type type, float value = 0.0F) { rig.send(OrloEvent(type, value)); }

    SoundRig rig;
    EngineLog log;
};

class ManyVoices : public Voices
{
protected:
    ManyVoices()
        : Voices(128)
    {
    }
};

} // namespace

TEST_F(Voices, ANoteSendsMacrosThenFrequencyVolumeAndGate)
{
    for (int macro = 1; macro <= 8; ++macro)
        send(static_cast<OrloEvent::Type>(OrloEvent::Macro1Set + macro - 1),
             static_cast<float>(macro) / 8.0F);
    send(OrloEvent::VoiceVolumeSet, 0.5F);
    log.take();
    toggle(B);
    const QStringList start{
        line("orlo-in 0.125 4 1"),  line("orlo-in 0.25 5 1"),  line("orlo-in 0.375 6 1"),
        line("orlo-in 0.5 7 1"),    line("orlo-in 0.625 8 1"), line("orlo-in 0.75 9 1"),
        line("orlo-in 0.875 10 1"), line("orlo-in 1 11 1"),    line("orlo-in 660 2 1"),
        line("orlo-in 0.5 3 1"),    line("orlo-in 1 1 1"),     line("noteToggled 3/2 on")};
    EXPECT_EQ(log.take(), start);
    toggle(B);
    EXPECT_EQ(log.take(), stopLines(1, "3/2"));
}

TEST_F(Voices, AnOpenPortHearsOfEachNoteBeforeTheSignal)
{
    std::atomic<bool> open{true};
    rig.player.setPortOpenFlag(&open);
    send(OrloEvent::Macro1Set, 0.75F);
    toggle(A);
    log.take();
    toggle(B);
    EXPECT_EQ(log.take().mid(8),
              (QStringList{line("orlo-in 660 2 2"), line("orlo-in 1 3 2"), line("orlo-in 1 1 2"),
                           line("instruction 1 [1] [660] [0.75]"), line("noteToggled 3/2 on")}));
    toggle(B);
    EXPECT_EQ(log.take(), (QStringList{line("orlo-in 0 1 2"), line("instruction -1 [1] [-1] [-1]"),
                                       line("noteToggled 3/2 off")}));
    open = false;
    toggle(A);
    EXPECT_EQ(log.take(), stopLines(1, "1/1"));
    rig.player.setPortOpenFlag(nullptr);
}

TEST_F(Voices, AThirdNoteStealsTheOldestOfTwo)
{
    toggle(A);
    EXPECT_EQ(log.take(), startLines(1, "440", "1/1"));
    toggle(B);
    EXPECT_EQ(log.take(), startLines(2, "660", "3/2"));
    toggle(C);
    EXPECT_EQ(log.take(), stopLines(1, "1/1") + startLines(1, "880", "2/1"));
    EXPECT_EQ(sounding(rig.player), (decltype(sounding(rig.player)){{3, 2}, {2, 1}}));

    // The patch's late report of the stolen voice must not end the new one.
    rig.reportVoiceStop(1);
    EXPECT_EQ(sounding(rig.player), (decltype(sounding(rig.player)){{3, 2}, {2, 1}}));
    EXPECT_TRUE(log.take().isEmpty());

    // A voice in release is stolen without a second gate; it is the older one here.
    toggle(B);
    log.take();
    toggle(A);
    EXPECT_EQ(log.take(), startLines(2, "440", "1/1"));
}

TEST_F(Voices, AReportedVoiceIsTheNextToBeUsed)
{
    toggle(A);
    toggle(B);
    toggle(A); // off
    rig.reportVoiceStop(1);
    log.take();
    toggle(C);
    EXPECT_EQ(log.take(), startLines(1, "880", "2/1"));
}

TEST_F(Voices, ReportsThatNameNoVoiceAreIgnored)
{
    toggle(A);
    toggle(A); // releasing in slot 1
    for (const float number : {0.0F, -1.0F, 129.0F, 1e30F, NAN})
        rig.reportVoiceStop(number);
    toggle(B);
    log.take();
    toggle(C); // slot 1 is still taken, and the oldest
    EXPECT_EQ(log.take(), startLines(1, "880", "2/1"));
}

TEST_F(ManyVoices, ANotePlayedAgainInItsReleaseTakesAnotherVoice)
{
    toggle(A);
    toggle(A); // off
    log.take();
    toggle(A);
    EXPECT_EQ(log.take(), startLines(2, "440", "1/1"));
    rig.reportVoiceStop(1);
    EXPECT_EQ(sounding(rig.player).size(), 1U); // the map still points to voice 2
    toggle(A);
    EXPECT_EQ(log.take(), stopLines(2, "1/1"));
}

TEST_F(Voices, FrequenciesAtTheBoundsAreMarkedButNotGated)
{
    struct Row
    {
        float frequency;
        bool heard;
    };
    const Row rows[] = {
        {20.0F, false},    {std::nextafter(20.0F, 30.0F), true},
        {20000.0F, false}, {std::nextafter(20000.0F, 0.0F), true},
        {0.0F, false},     {-440.0F, false},
    };
    for (const Row& row : rows) {
        send(OrloEvent::BaseFrequencySet, row.frequency);
        log.take();
        toggle(A);
        const QStringList lines = log.take();
        EXPECT_EQ(lines.size(), row.heard ? 12 : 9) << row.frequency;
        EXPECT_EQ(lines.contains(line("orlo-in 1 1 1")), row.heard) << row.frequency;
        EXPECT_EQ(lines.last(), line("noteToggled 1/1 on"));
        toggle(A);
        rig.reportVoiceStop(1);
    }
}

TEST_F(Voices, StoppingWhatDoesNotSoundSaysNothing)
{
    rig.player.noteOff(A);
    EXPECT_TRUE(log.take().isEmpty());
    rig.send(OrloNodeRemoveEvent(A));
    EXPECT_EQ(log.take(), QStringList{line("removeNodeInStack 1/1")});
    toggle(A);
    log.take();
    rig.send(OrloNodeRemoveEvent(A));
    EXPECT_EQ(log.take(), stopLines(1, "1/1") + QStringList{line("removeNodeInStack 1/1")});
}

TEST_F(ManyVoices, OnlyTheLastStepOfAPathMeetsThePrimeGate)
{
    send(OrloEvent::PrimeEnabledToggle, 5.0F);
    log.take();
    press("/3/5");
    press("/-5");
    EXPECT_TRUE(log.take().isEmpty());
    press("/5/3"); // 5/4 times 3/2
    EXPECT_EQ(log.take(QStringLiteral("note")), QStringList{line("noteToggled 15/8 on")});
    press("/");
    EXPECT_EQ(log.take(QStringLiteral("note")), QStringList{line("noteToggled 1/1 on")});
    press("/4"); // no prime
    EXPECT_TRUE(log.take().isEmpty());
    send(OrloEvent::PrimeEnabledToggle, 5.0F);
    press("/-5"); // 4/5
    EXPECT_EQ(log.take(QStringLiteral("note")), QStringList{line("noteToggled 4/5 on")});
}

TEST_F(ManyVoices, APressSoundsAtTheTransposedPitchAndTransposingLeavesNotesAlone)
{
    press("/3");
    rig.send(OrloTransposeEvent(OrloRatio(7, 4)));
    send(OrloEvent::TransposeByPrimeStep, -3.0F);
    EXPECT_EQ(log.take().mid(12), (QStringList{line("transposed 7/4 1000"), line("transposed 7/6 -3")}));
    press("/3"); // 7/6 times 3/2 is 7/4: 770 Hz
    EXPECT_EQ(log.take(), startLines(2, "770", "7/4"));
    toggle(B); // absolute: the first note
    EXPECT_EQ(log.take(), stopLines(1, "3/2"));
}

TEST_F(Voices, WhatNoLongerFitsIn64BitsIsRefused)
{
    LogCatcher messages;
    rig.send(OrloTransposeEvent(OrloRatio(1ULL << 63, 1)));
    EXPECT_EQ(log.take(), QStringList{line("transposed 9223372036854775808/1 1000")});
    rig.send(OrloTransposeEvent(OrloRatio(2, 1)));
    send(OrloEvent::TransposeByPrimeStep, 2.0F);
    press("/2");
    press("/3"); // cancels to 2^62 times 3
    EXPECT_EQ(log.take(QStringLiteral("noteToggled")),
              QStringList{line("noteToggled 13835058055282163712/1 on")});
    EXPECT_EQ(messages.count(QtWarningMsg, QStringLiteral("does not fit")), 3);
    send(OrloEvent::TransposeByPrimeStep, 0.0F);
    EXPECT_EQ(log.take(), QStringList{line("transposed 1/1 0")});
}

TEST_F(ManyVoices, HoldStandsAgainstTogglesByRatioOnly)
{
    toggle(A);
    toggle(B);
    toggle(C);
    toggle(C); // releasing: not held
    log.take();
    send(OrloEvent::NodesHold, 1.0F);
    QStringList lines = log.take();
    lines.sort();
    EXPECT_EQ(lines, (QStringList{line("nodeHold 1/1 on"), line("nodeHold 3/2 on")}));

    toggle(A); // held
    EXPECT_TRUE(log.take().isEmpty());
    toggle(A, 2.0F);
    EXPECT_EQ(log.take(), stopLines(1, "1/1"));
    press("/3");
    EXPECT_EQ(log.take(), stopLines(2, "3/2"));
    toggle(OrloRatio(5, 4)); // came after the hold
    log.take();
    toggle(OrloRatio(5, 4));
    EXPECT_EQ(log.take(), stopLines(4, "5/4"));
}

TEST_F(ManyVoices, AllNotesOffSparesHeldNotesUnlessForced)
{
    toggle(A);
    send(OrloEvent::NodesHold, 1.0F);
    toggle(B);
    log.take();
    send(OrloEvent::AllNotesOff);
    EXPECT_EQ(log.take(), stopLines(2, "3/2"));
    rig.reportVoiceStop(2);
    send(OrloEvent::AllNotesOffForced);
    EXPECT_EQ(log.take(), stopLines(1, "1/1"));

    // What is held stays so until hold ends or begins anew.
    toggle(C);
    log.take();
    send(OrloEvent::NodesHold, 1.0F);
    EXPECT_EQ(log.take(), (QStringList{line("nodeHold 1/1 off"), line("nodeHold 2/1 on")}));
    send(OrloEvent::NodesHold, 0.999F);
    EXPECT_EQ(log.take(), QStringList{line("nodeHold 2/1 off")});
    toggle(C);
    EXPECT_EQ(log.take(), stopLines(2, "2/1"));
}

TEST_F(ManyVoices, AllNotesEndThoughThePatchReportsThemAtOnce)
{
    ASSERT_TRUE(rig.loadMainText(PATCH_WITHOUT_RELEASE));
    // Squares, which meet in few places of a hash table: there an erasure moves other entries.
    for (unsigned long long n = 1; n <= 100; ++n)
        toggle(OrloRatio(1000 + n * n, 997));
    ASSERT_EQ(sounding(rig.player).size(), 100U);
    log.take();
    send(OrloEvent::AllNotesOffForced);
    EXPECT_TRUE(sounding(rig.player).empty());
    EXPECT_EQ(log.take(QStringLiteral("noteToggled")).size(), 100);
    toggle(A);
    EXPECT_EQ(log.take(), startLines(1, "440", "1/1"));
}

TEST_F(Voices, MonophonicStartsEachNoteBesideTheReleaseOfTheOneBefore)
{
    toggle(A);
    send(OrloEvent::MonophonicSet, 1.0F);
    log.take();
    toggle(B); // does not stop a voice from before the switch
    EXPECT_EQ(log.take(), startLines(2, "660", "3/2"));
    toggle(A);
    rig.reportVoiceStop(1);
    log.take();
    toggle(C);
    EXPECT_EQ(log.take(), stopLines(2, "3/2") + startLines(1, "880", "2/1"));
    send(OrloEvent::MonophonicSet, 0.0F);
    rig.reportVoiceStop(2);
    log.take();
    toggle(B);
    EXPECT_EQ(log.take(), startLines(2, "660", "3/2"));
}

TEST_F(Voices, MonophonicWithNoVoiceFreeStealsTheOneItWouldStop)
{
    send(OrloEvent::MonophonicSet, 1.0F);
    toggle(A);
    toggle(B); // voice 1 releases
    log.take();
    toggle(C); // steals voice 1, stops voice 2
    EXPECT_EQ(log.take(), stopLines(2, "3/2") + startLines(1, "880", "2/1"));
}
