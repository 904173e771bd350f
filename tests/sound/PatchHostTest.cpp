#include "support/EngineLog.h"
#include "support/LogCatcher.h"
#include "support/SoundRig.h"

#include "end-to-end/Tone.h"
#include "sound/OrloNoteEvent.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>

#include <z_libpd.h>

#include <atomic>
#include <clocale>
#include <thread>

namespace {

const OrloRatio ROOT(1, 1);

/// Plays 1/1 for half a second and ends it. The part of the sound where it is steady.
std::vector<float> playRoot(SoundRig& rig)
{
    rig.send(OrloNoteEvent(ROOT));
    rig.render(20);
    std::vector<float> sound = rig.render(66);
    rig.send(OrloNoteEvent(ROOT));
    EXPECT_TRUE(rig.renderUntilSilent());
    return sound;
}

/// Hz; 0 for silence.
double pitchOfRoot(SoundRig& rig)
{
    return tone::pitch(playRoot(rig), SoundRig::RATE).value_or(0.0);
}

QStringList lines(std::initializer_list<const char*> texts)
{
    QStringList list;
    for (const char* text : texts)
        list.append(QString::fromLatin1(text));
    return list;
}

} // namespace

TEST(PatchHost, TellsTheMacrosOfThePatchAndTheVolumeToIt)
{
    SoundRig rig(4);
    rig.send(OrloEvent(OrloEvent::MasterVolumeSet, 0.5F));
    EngineLog log(rig.player);
    ASSERT_TRUE(rig.loadVoiceText(plainVoice("1", "A(0.25):B::C(x)")));
    EXPECT_EQ(log.take(), lines({"master-vol 0", "master-vol 0.5", "macroNamesReceived A|B||C",
                                 "macroDefaultsReceived [0.25 -1 -1 0]"})
                              << QStringLiteral("patchLoaded ") + rig.mainPatch().absoluteFilePath());
    // The defaults are what the next note gets.
    rig.send(OrloNoteEvent(ROOT));
    EXPECT_EQ(log.take().mid(0, 5), lines({"orlo-in 0.25 4 1", "orlo-in -1 5 1", "orlo-in -1 6 1",
                                           "orlo-in 0 7 1", "orlo-in 0 8 1"}));
    rig.underClock([&] { rig.player.unloadPatch(); });
    EXPECT_EQ(log.take(),
              lines({"master-vol 0", "orlo-in 0 1 1", "noteToggled 1/1 off", "macroNamesReceived "}));
}

TEST(PatchHost, KeepsTheSlidersWhenTheOptionSaysSo)
{
    SoundRig rig(4);
    rig.settings.maintainMacroParameters = true;
    rig.send(OrloEvent(OrloEvent::Macro1Set, 0.75F));
    ASSERT_TRUE(rig.loadVoiceText(plainVoice("1", "A(0.25)")));
    EngineLog log(rig.player);
    rig.send(OrloNoteEvent(ROOT));
    EXPECT_EQ(log.take().value(0), QStringLiteral("orlo-in 0.75 4 1"));
}

TEST(PatchHost, HearsOnlyWhatItAskedFor)
{
    SoundRig rig(4);
    ASSERT_TRUE(rig.loadVoiceText(plainVoice("1")));
    rig.send(OrloNoteEvent(ROOT));
    rig.send(OrloNoteEvent(ROOT));
    EngineLog log(rig.player);
    const auto say = [](const char* symbol, std::initializer_list<const char*> words) {
        libpd_start_message(4);
        for (const char* word : words)
            libpd_add_symbol(word);
        libpd_finish_list(symbol);
    };
    say("output-voice-info", {"macros", "Z"}); // nobody asked
    say("voice-stop", {"1"});                  // a symbol is no voice
    say("voice-stop", {});
    rig.queue(OrloNoteEvent(ROOT)); // in its release, so in another voice
    rig.player.processEvents();
    EXPECT_EQ(log.take(QStringLiteral("macroNames")), QStringList());
    rig.render();
    rig.send(OrloNoteEvent(ROOT));
    EXPECT_EQ(log.take(), lines({"orlo-in 0 1 2", "noteToggled 1/1 off"}));
}

TEST(PatchHost, AMissingPatchFailsAndLeavesNothingBehind)
{
    SoundRig rig(4);
    ASSERT_TRUE(rig.loadVoiceText(plainVoice("1")));
    LogCatcher messages;
    bool loaded = true;
    rig.underClock(
        [&] { loaded = rig.player.loadPatch(QFileInfo(rig.home.path(QStringLiteral("patch/none.pd")))); });
    EXPECT_FALSE(loaded);
    EXPECT_FALSE(rig.player.isPatchOpen());
    EXPECT_EQ(messages.count(QtCriticalMsg, QStringLiteral("Opening PD patch failed: ")), 1);

    // The file appears, but nobody asks for it any more: an event alone opens nothing.
    rig.home.write(QStringLiteral("patch/none.pd"), "#N canvas 0 0 200 200 12;\n");
    rig.send(OrloEvent(OrloEvent::PatchOpen, 0.0F));
    EXPECT_FALSE(rig.player.isPatchOpen());
    EXPECT_TRUE(rig.load());
    EXPECT_NEAR(pitchOfRoot(rig), 440.0, 0.02);
}

TEST(PatchHost, EachLoadReadsTheFilesAnew)
{
    SoundRig rig(4);
    ASSERT_TRUE(rig.loadVoiceText(plainVoice("1", "One")));
    EXPECT_NEAR(pitchOfRoot(rig), 440.0, 0.02);
    EngineLog log(rig.player);
    ASSERT_TRUE(rig.loadVoiceText(plainVoice("2", "Two")));
    EXPECT_TRUE(log.take().contains(QStringLiteral("macroNamesReceived Two")));
    EXPECT_NEAR(pitchOfRoot(rig), 880.0, 0.04);
    // The same files again: one patch sounds, not two.
    const double level = tone::level(playRoot(rig));
    ASSERT_TRUE(rig.load());
    EXPECT_NEAR(tone::level(playRoot(rig)) / level, 1.0, 0.01);
}

TEST(PatchHost, GetsOverBrokenVoicesAtOnce)
{
    SoundRig rig(4);
    ASSERT_TRUE(rig.loadVoice(QStringLiteral("Sine.pd")));
    const double level = tone::level(playRoot(rig));
    ASSERT_GT(level, 0.01);
    const QByteArray brokenVoices[] = {
        "",
        "this is no patch",
        QByteArray(5000, '\xff'),
        "#N canvas 0 0 200 200 12;\n#X obj 1 1 no_such_object;\n#X connect 0 0 7 3;\n",
        "#N canvas 0 0 200 200 12;\n#N canvas 0 0 200 200 never-closed 0;\n#X obj 1 1 inlet;\n",
        plainVoice("1", "1:2:3:4:5:6:7:8:9(0.5)"), // a macro too many
        plainVoice("1", "A(1"),
    };
    for (const QByteArray& voice : brokenVoices) {
        SCOPED_TRACE(voice.left(60).toStdString());
        rig.loadVoiceText(voice); // whether it opens or not
        rig.send(OrloNoteEvent(ROOT));
        EXPECT_LE(peak(rig.render(50)), 1.0F);
        rig.send(OrloNoteEvent(ROOT));
        ASSERT_TRUE(rig.loadVoice(QStringLiteral("Sine.pd")));
        EXPECT_NEAR(tone::level(playRoot(rig)) / level, 1.0, 0.01);
    }
    ASSERT_TRUE(QFile::remove(rig.home.path(QStringLiteral("patch/orlo_voice.pd"))));
    rig.load();
    ASSERT_TRUE(rig.loadVoice(QStringLiteral("Sine.pd")));
    EXPECT_NEAR(tone::level(playRoot(rig)) / level, 1.0, 0.01);
}

TEST(PatchHost, NotesEndWithoutAClickWhenThePatchChanges)
{
    SoundRig rig;
    ASSERT_TRUE(rig.loadVoice(QStringLiteral("Sine.pd")));
    for (const auto& ratio : {ROOT, OrloRatio(3, 2), OrloRatio(5, 4)})
        rig.send(OrloNoteEvent(ratio));
    std::vector<float> sound = rig.render(86);
    const float before = peak(sound);
    EXPECT_GT(before, 0.1F);
    std::vector<float> cut = sound;
    cut.resize(cut.size() + 4096, 0.0F);
    EXPECT_GT(clickLevel({cut.end() - 8192, cut.end()}), -50.0) << "the measure does not see a bare cut";

    EngineLog log(rig.player);
    rig.setVoiceText(plainVoice("1"));
    const std::vector<float> change =
        rig.underClock([&] { EXPECT_TRUE(rig.player.loadPatch(rig.mainPatch())); });
    QStringList off = log.take(QStringLiteral("noteToggled"));
    off.sort();
    EXPECT_EQ(off, lines({"noteToggled 1/1 off", "noteToggled 3/2 off", "noteToggled 5/4 off"}));
    EXPECT_TRUE(rig.player.getAllSoundingRatios().isEmpty());
    std::vector<float> whole(sound.end() - 4096, sound.end());
    whole.insert(whole.end(), change.begin(), change.end());
    EXPECT_LE(peak(whole), before * 1.01F);
    EXPECT_LT(clickLevel(whole), -65.0);
    EXPECT_LT(peak({whole.end() - 2048, whole.end()}), 1e-4F);
    EXPECT_NEAR(pitchOfRoot(rig), 440.0, 0.02);
}

TEST(PatchHost, WithNoStreamNothingWaitsForEver)
{
    SoundRig rig(4);
    rig.setVoiceText(plainVoice("1"));
    QElapsedTimer timer;
    timer.start();
    EXPECT_TRUE(rig.player.loadPatch(rig.mainPatch()));
    EXPECT_TRUE(rig.player.isPatchOpen());
    rig.player.unloadPatch();
    EXPECT_FALSE(rig.player.isPatchOpen());
    EXPECT_LT(timer.restart(), 6000);

    // Nor with a ring so full that the event of the hand-over does not fit in.
    LogCatcher messages;
    for (int i = 0; i < 255; ++i)
        rig.queue(OrloEvent(OrloEvent::Macro1Set, 0.5F));
    EXPECT_TRUE(rig.player.loadPatch(rig.mainPatch()));
    EXPECT_TRUE(messages.has(QtWarningMsg, QStringLiteral("Command buffer full")));
    EXPECT_LT(timer.restart(), 6000);
    rig.player.term();
    EXPECT_FALSE(rig.player.isPatchOpen());
    EXPECT_LT(timer.elapsed(), 6000);
}

TEST(PatchHost, AFullRingDoesNotStopAHandOver)
{
    SoundRig rig(4);
    rig.setVoiceText(plainVoice("1"));
    LogCatcher messages;
    for (int i = 0; i < 255; ++i)
        rig.queue(OrloEvent(OrloEvent::Macro1Set, 0.5F));
    bool loaded = false;
    // The stream comes late, so that the event is refused; then it drains what was queued.
    rig.underClock([&] { loaded = rig.player.loadPatch(rig.mainPatch()); }, 200);
    EXPECT_TRUE(messages.has(QtWarningMsg, QStringLiteral("Command buffer full")));
    EXPECT_TRUE(loaded);
    EXPECT_NEAR(pitchOfRoot(rig), 440.0, 0.02);
}

TEST(PatchHost, AStreamThatDiesInTheMiddleDoesNotStopAHandOver)
{
    SoundRig rig(4);
    for (const int endMs : {20, 101, 150, 202, 210, 250}) {
        SCOPED_TRACE(endMs);
        QElapsedTimer timer;
        timer.start();
        rig.setVoiceText(plainVoice("1"));
        bool loaded = false;
        rig.underClock([&] { loaded = rig.player.loadPatch(rig.mainPatch()); }, 0, endMs);
        EXPECT_TRUE(loaded);
        EXPECT_LT(timer.elapsed(), 4000);
        EXPECT_GT(peak(playRoot(rig)), 0.01F);
    }
}

TEST(PatchHost, AnswersOfAnotherChangeDoNotEndTheWait)
{
    using Change = PatchHandOver::Change;
    PatchHandOver handOver;
    std::atomic<bool> queued{false};
    std::atomic<bool> opened{false};
    std::thread audio([&] {
        int blocks = 0;
        while (!opened) {
            if (handOver.enterBlock()) {
                if (queued)
                    ++blocks;
                if (blocks == 1 || blocks == 50) {
                    handOver.lock();
                    opened = blocks == 50;
                    handOver.finish(opened ? Change::Open : Change::Close);
                    handOver.unlock();
                }
                handOver.leaveBlock();
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    EXPECT_TRUE(handOver.request(
        Change::Open, [&] { queued = true; }, [] {}));
    EXPECT_TRUE(opened);
    audio.join();
}

TEST(PatchHost, ACommaAsDecimalPointChangesNoNumberOfAPatch)
{
    SoundRig rig(4);
    const std::string former = std::setlocale(LC_ALL, nullptr);
    const char* comma = nullptr;
    for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "es_ES.UTF-8", "pt_BR.UTF-8", "nl_NL.UTF-8"}) {
        if (!comma && std::setlocale(LC_ALL, name) && std::localeconv()->decimal_point[0] == ',')
            comma = name;
    }
    if (!comma)
        GTEST_SKIP() << "No locale with a decimal comma is installed.";
    EXPECT_TRUE(rig.loadVoiceText(plainVoice("0.25", "A(0.25)")));
    EngineLog log(rig.player);
    EXPECT_NEAR(pitchOfRoot(rig), 110.0, 0.01);
    EXPECT_EQ(log.take().value(0), QStringLiteral("orlo-in 0.25 4 1"));
    EXPECT_EQ(std::localeconv()->decimal_point[0], ',') << "the program's own locale was changed";
    std::setlocale(LC_ALL, former.c_str());
}
