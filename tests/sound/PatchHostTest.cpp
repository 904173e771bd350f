#include "support/EngineLog.h"
#include "support/LocaleTest.h"
#include "support/LogCatcher.h"
#include "support/SoundRig.h"
#include "support/Tone.h"

#include "app/EndRequest.h"
#include "sound/OrloNoteEvent.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>

#include <z_libpd.h>

#include <atomic>
#include <cstdlib>
#include <thread>

namespace {

const OrloRatio ROOT(1, 1);
constexpr int TIMEOUT_MS = 6000; // of a change with no stream at all

class PatchHost : public ::testing::Test
{
protected:
    /// Plays 1/1 for half a second and ends it. The part of the sound where it is steady.
    std::vector<float> playRoot()
    {
        rig.send(OrloNoteEvent(ROOT));
        rig.render(20);
        std::vector<float> sound = rig.render(66);
        rig.send(OrloNoteEvent(ROOT));
        EXPECT_TRUE(rig.renderUntilSilent());
        return sound;
    }
    void expectRootAt(double frequency)
    {
        EXPECT_NEAR(tone::pitchOfSine(playRoot(), frequency, SoundRig::RATE).value_or(0.0), frequency,
                    frequency * 0.000045);
    }
    double levelOfRoot() { return tone::level(playRoot()); }

    SoundRig rig{4};
};

using PatchHostLocale = LocaleTest;

} // namespace

TEST_F(PatchHost, TellsTheMacrosOfThePatchAndTheVolumeToIt)
{
    rig.send(OrloEvent(OrloEvent::MasterVolumeSet, 0.5F));
    for (int macro = OrloEvent::Macro1Set; macro <= OrloEvent::Macro8Set; ++macro)
        rig.send(OrloEvent(static_cast<OrloEvent::Type>(macro), 0.5F));
    EngineLog log(rig.player);
    ASSERT_TRUE(rig.loadVoiceText(plainVoice("1", "A(0.25):B::C(x)")));
    EXPECT_EQ(log.said(), "master-vol 0; master-vol 0.5; macroNamesReceived A|B||C; "
                          "macroDefaultsReceived 0.25|-1|-1|0; patchLoaded "
                              + rig.mainPatch().absoluteFilePath().toStdString());
    // The defaults are what the next note gets, and the sliders' values where there is none.
    rig.send(OrloNoteEvent(ROOT));
    EXPECT_TRUE(log.said().starts_with(
        "orlo-in 0.25 4 1; orlo-in 0.5 5 1; orlo-in 0.5 6 1; orlo-in 0 7 1; orlo-in 0.5 8 1"));
    rig.underClock([&] { rig.player.unloadPatch(); });
    EXPECT_EQ(log.said(), "master-vol 0; orlo-in 0 1 1; noteToggled 1/1 off; macroNamesReceived ");

    // Unless the option says that the sliders stay. The note of before starts anew with them.
    rig.settings.maintainMacroParameters = true;
    rig.send(OrloEvent(OrloEvent::Macro1Set, 0.75F));
    log.take();
    ASSERT_TRUE(rig.loadVoiceText(plainVoice("1", "A(0.25)")));
    EXPECT_NE(log.said().find("orlo-in 0.75 4 "), std::string::npos);
    ASSERT_TRUE(rig.load());
    EXPECT_EQ(log.said(QStringLiteral("setMacroSliders")), "setMacroSliders 0.75|0.5|0.5|0|0.5|0.5|0.5|0.5");
}

TEST_F(PatchHost, HearsOnlyWhatItAskedFor)
{
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
    EXPECT_EQ(log.said(QStringLiteral("macroNames")), "");
    rig.render();
    rig.send(OrloNoteEvent(ROOT));
    EXPECT_EQ(log.said(), "orlo-in 0 1 2; noteToggled 1/1 off");
}

TEST_F(PatchHost, AMissingPatchFailsAndLeavesNothingBehind)
{
    ASSERT_TRUE(rig.loadVoiceText(plainVoice("1")));
    LogCatcher messages;
    const QFileInfo missing(rig.home.path(QStringLiteral("patch/none.pd")));
    rig.underClock([&] { EXPECT_FALSE(rig.player.loadPatch(missing)); });
    EXPECT_FALSE(rig.player.isPatchOpen());
    EXPECT_EQ(messages.count(QtCriticalMsg, QStringLiteral("Opening PD patch failed: ")), 1);

    // The file appears, but nobody asks for it any more: an event alone opens nothing.
    rig.home.write(QStringLiteral("patch/none.pd"), "#N canvas 0 0 200 200 12;\n");
    rig.send(OrloEvent(OrloEvent::PatchOpen, 0.0F));
    EXPECT_FALSE(rig.player.isPatchOpen());
    EXPECT_TRUE(rig.load());
    expectRootAt(440.0);
}

TEST_F(PatchHost, EachLoadReadsTheFilesAnew)
{
    EngineLog log(rig.player);
    for (const char* number : {"1", "2"}) {
        ASSERT_TRUE(rig.loadVoiceText(plainVoice(number, QByteArray("Macro") + number)));
        EXPECT_TRUE(log.said(QStringLiteral("macroNames")).ends_with(std::string(" Macro") + number));
        expectRootAt(440.0 * std::atoi(number));
    }
    // The same files again: one patch sounds, not two.
    const double level = levelOfRoot();
    ASSERT_TRUE(rig.load());
    EXPECT_NEAR(levelOfRoot() / level, 1.0, 0.01);
}

TEST_F(PatchHost, GetsOverBrokenVoicesAtOnce)
{
    const QString good = QStringLiteral("Sine.pd");
    ASSERT_TRUE(rig.loadVoice(good));
    const double level = levelOfRoot();
    ASSERT_GT(level, 0.01);
    const QByteArray brokenVoices[] = {
        "",
        QByteArray(5000, '\xff'),
        "#N canvas 0 0 200 200 12;\n#N canvas 0 0 200 200 never-closed 0;\n#X obj 1 1 inlet;\n",
        plainVoice("1", "1:2:3:4:5:6:7:8:9(0.5)"), // a macro too many
        plainVoice("1", "A(1"),
        QByteArray(), // no file at all
    };
    for (const QByteArray& voice : brokenVoices) {
        SCOPED_TRACE(voice.left(60).toStdString());
        rig.setVoiceText(voice);
        if (voice.isNull())
            QFile::remove(rig.home.path(QStringLiteral("patch/orlo_voice.pd")));
        rig.load(); // whether it opens or not
        rig.send(OrloNoteEvent(ROOT));
        EXPECT_LE(peak(rig.render(50)), 1.0F);
        rig.send(OrloNoteEvent(ROOT));
        ASSERT_TRUE(rig.loadVoice(good));
        EXPECT_NEAR(levelOfRoot() / level, 1.0, 0.01);
    }
}

TEST_F(PatchHost, NotesGoOnWithoutAClickWhenThePatchChanges)
{
    // A late callback finds the mute and the change behind it at once.
    for (const int lateMs : {0, 400}) {
        SCOPED_TRACE(lateMs);
        ASSERT_TRUE(rig.loadVoice(QStringLiteral("Sine.pd")));
        for (const auto& ratio : {ROOT, OrloRatio(3, 2), OrloRatio(5, 4)})
            rig.send(OrloNoteEvent(ratio));
        const std::vector<float> sound = rig.render(86);
        const float before = peak(sound);
        EXPECT_GT(before, 0.1F);
        std::vector<float> whole(sound.end() - 4096, sound.end());
        std::vector<float> cut = whole;
        cut.resize(8192, 0.0F);
        EXPECT_GT(clickLevel(cut), -50.0) << "the measure does not see a bare cut";

        EngineLog log(rig.player);
        rig.setVoiceText(plainVoice("1"));
        const std::vector<float> change =
            rig.underClock([&] { EXPECT_TRUE(rig.player.loadPatch(rig.mainPatch())); }, lateMs);
        const std::vector<float> after = rig.render(20);
        QStringList toggled = log.take(QStringLiteral("noteToggled"));
        toggled.sort();
        EXPECT_EQ(toggled.join(u' ').toStdString(),
                  "noteToggled 1/1 off noteToggled 1/1 on noteToggled 3/2 off noteToggled 3/2 on "
                  "noteToggled 5/4 off noteToggled 5/4 on");
        EXPECT_EQ(rig.player.getAllSoundingRatios().size(), 3);
        whole.insert(whole.end(), change.begin(), change.end());
        whole.insert(whole.end(), after.begin(), after.end());
        EXPECT_LE(peak(whole), before * 1.01F);
        EXPECT_LT(clickLevel(whole), -65.0);
        EXPECT_GT(peak({whole.end() - 2048, whole.end()}), 0.01F);
        rig.send(OrloEvent(OrloEvent::AllNotesOffForced, 1.0F));
        expectRootAt(440.0);
    }
}

TEST_F(PatchHost, WithNoStreamNothingWaitsForEver)
{
    rig.setVoiceText(plainVoice("1"));
    QElapsedTimer timer;
    timer.start();
    EXPECT_TRUE(rig.player.loadPatch(rig.mainPatch()));
    rig.player.unloadPatch();
    EXPECT_FALSE(rig.player.isPatchOpen());
    EXPECT_LT(timer.restart(), TIMEOUT_MS);

    // Nor with a ring so full that the event of the hand-over does not fit in.
    LogCatcher messages;
    for (int i = 0; i < 255; ++i)
        rig.queue(OrloEvent(OrloEvent::Macro1Set, 0.5F));
    EXPECT_TRUE(rig.player.loadPatch(rig.mainPatch()));
    EXPECT_TRUE(messages.has(QtWarningMsg, QStringLiteral("Command buffer full")));
    EXPECT_LT(timer.restart(), TIMEOUT_MS);
    rig.player.term();
    EXPECT_FALSE(rig.player.isPatchOpen());
    EXPECT_LT(timer.elapsed(), TIMEOUT_MS);
}

TEST_F(PatchHost, AStreamThatDiesInTheMiddleDoesNotStopAHandOver)
{
    rig.setVoiceText(plainVoice("1"));
    for (const int endMs : {20, 101, 150, 202, 210, 250}) {
        SCOPED_TRACE(endMs);
        QElapsedTimer timer;
        timer.start();
        rig.underClock([&] { EXPECT_TRUE(rig.player.loadPatch(rig.mainPatch())); }, 0, endMs);
        EXPECT_LT(timer.elapsed(), 4000);
        EXPECT_GT(peak(playRoot()), 0.01F);
    }
}

TEST(PatchHandOver, NeitherALostEventNorAnotherAnswerEndsTheWait)
{
    using Change = PatchHandOver::Change;
    PatchHandOver handOver;
    std::atomic<int> queued{0};
    std::atomic<bool> opened{false};
    std::thread audio([&] {
        for (; !opened; std::this_thread::sleep_for(std::chrono::milliseconds(1))) {
            if (!handOver.enterBlock())
                continue;
            EXPECT_FALSE(handOver.isAwaiting(Change::Close));
            handOver.finish(Change::Close);
            opened = queued >= 2; // the first found the ring full
            if (opened)
                handOver.finish(Change::Open);
            handOver.leaveBlock();
        }
    });
    EXPECT_TRUE(handOver.request(
        Change::Open, [&] { ++queued; }, [] {}));
    EXPECT_TRUE(opened);
    audio.join();
}

namespace {

const char* const LOOPING_VOICE = "#N canvas 0 0 300 200 12;\n"
                                  "#X obj 10 10 inlet;\n#X obj 10 40 inlet~;\n#X obj 10 70 outlet~;\n"
                                  "#X obj 90 10 loadbang;\n#X obj 90 40 until;\n#X connect 3 0 4 0;\n";

bool loadUnclocked(SoundRig& rig, const QByteArray& voice)
{
    rig.setVoiceText(voice);
    return rig.player.loadPatch(rig.mainPatch());
}

/// The player's view of an engine that is caught in a voice. Exits, since nothing may be destroyed then.
[[noreturn]] void loadALoopingVoice(bool stream)
{
    SoundRig rig(4);
    if (stream)
        std::thread([&rig] {
            for (std::vector<float> sound;; std::this_thread::sleep_for(std::chrono::milliseconds(1)))
                rig.renderInto(sound);
        }).detach();
    rig.player.handOver().setLimits(
        {.change = std::chrono::milliseconds(1000), .work = std::chrono::milliseconds(500)});
    EXPECT_TRUE(loadUnclocked(rig, plainVoice("1")));
    EXPECT_FALSE(rig.player.waitForRoom(300)) << "what never comes is waited for";
    EXPECT_FALSE(rig.player.isSoundOver());
    rig.player.handOver().setLimits({});
    std::thread([] {
        std::this_thread::sleep_for(std::chrono::milliseconds(700));
        EndRequest::isMade = true;
    }).detach();
    QElapsedTimer timer;
    timer.start();
    EXPECT_FALSE(loadUnclocked(rig, LOOPING_VOICE));
    EXPECT_TRUE(rig.player.isSoundOver());
    EXPECT_LT(timer.elapsed(), 5000) << "the end was asked for";

    timer.start();
    EXPECT_FALSE(loadUnclocked(rig, plainVoice("1")));
    EXPECT_FALSE(rig.player.waitForRoom(1));
    EXPECT_FALSE(rig.player.handOver().runInBlock([] {}));
    rig.player.term();
    EXPECT_LT(timer.elapsed(), 100) << "something was waited for";
    rig.home.configDir().removeRecursively();
    std::_Exit(::testing::Test::HasFailure() ? 1 : 0);
}

} // namespace

TEST(PatchHandOverDeathTest, AVoiceThatNeverComesUpEndsTheSoundAndNothingElse)
{
    for (const bool stream : {true, false})
        EXPECT_EXIT(loadALoopingVoice(stream), ::testing::ExitedWithCode(0), "no more sound") << stream;
}

TEST_F(PatchHostLocale, ChangesNoNumberOfAPatch)
{
    SoundRig rig(4);
    const std::string point = std::localeconv()->decimal_point;
    EXPECT_TRUE(rig.loadVoiceText(plainVoice("0.25", "A(0.25)")));
    EngineLog log(rig.player);
    rig.send(OrloNoteEvent(ROOT));
    EXPECT_EQ(log.take().value(0), QStringLiteral("orlo-in 0.25 4 1"));
    rig.render(20);
    EXPECT_NEAR(tone::pitchOfSine(rig.render(66), 110.0, SoundRig::RATE).value_or(0.0), 110.0, 0.01);
    EXPECT_EQ(std::localeconv()->decimal_point, point) << "the program's own locale was changed";
}

TEST_F(PatchHost, KnowsPureDatasExtraObjectsButTheOneThatStartsAProcess)
{
    for (const char* name : {"bob~", "bonk~", "fiddle~", "loop~", "lrshift~", "pique", "sigmund~", "pd~"})
        EXPECT_EQ(zgetfn(&pd_objectmaker, gensym(name)) != nullptr, std::string(name) != "pd~") << name;
}
