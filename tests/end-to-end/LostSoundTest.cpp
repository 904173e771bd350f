#include "end-to-end/PlayingFixture.h"
#include "end-to-end/Waiting.h"

#include <QElapsedTimer>

#include <csignal>

using namespace Qt::StringLiterals;

/// What happens when the sound device goes away or stands still under the running program.
class LostSound : public PlayingFixture
{
protected:
    void play()
    {
        start();
        ASSERT_TRUE(press("/") && soundsAt(ROOT));
    }
    /// The keys still work: what changes here is saved.
    void expectOrderlyEnd()
    {
        ASSERT_TRUE(program->type(u"f"_s));
        QElapsedTimer timer;
        timer.start();
        ::kill(static_cast<pid_t>(program->processId()), SIGTERM);
        EXPECT_EQ(program->waitForExit(), 0);
        EXPECT_LT(timer.elapsed(), 5000);
        EXPECT_TRUE(options()[u"circlesView"_s].toBool());
    }
    /// The recorder cannot leave a server that stands still.
    void TearDown() override { desk.thawSound(); }
};

TEST_F(LostSound, EndsInOrderAfterTheSoundServerDied)
{
    ASSERT_NO_FATAL_FAILURE(play());
    desk.killSound();
    expectOrderlyEnd();
}

TEST_F(LostSound, ComesBackWithItsNoteAsOftenAsTheServerDoes)
{
    ASSERT_NO_FATAL_FAILURE(play());
    for (int restart = 0; restart < 2; ++restart) {
        desk.killSound();
        recorder.reset(); // its client would keep this process from the next server
        EXPECT_TRUE(waitUntil([&] { return log().count(u"The sound device is gone: "_s) == restart + 1; }));
        ASSERT_TRUE(desk.restartSound());
        recorder = std::make_unique<Recorder>(desk.soundServer());
        ASSERT_TRUE(recorder->connectToProgram());
        EXPECT_TRUE(soundsAt(ROOT));
    }
    ASSERT_TRUE(press("/") && recorder->waitForSilence());
    expectOrderlyEnd();
}

TEST_F(LostSound, ChangesThePatchAndEndsWhileTheSoundServerStandsStill)
{
    ASSERT_NO_FATAL_FAILURE(play());
    desk.freezeSound();
    const auto openings = [this] { return log().count(u"Opening PD patch: "_s); };
    const auto before = openings();
    ASSERT_TRUE(program->type(patchKey(u"Sine"_s)));
    EXPECT_TRUE(waitUntil([&] { return openings() > before; }));
    EXPECT_TRUE(log().contains(u"No audio stream is running"_s));
    desk.thawSound();

    // The note goes on under the new patch, and ends as any other.
    EXPECT_TRUE(soundsAt(ROOT));
    ASSERT_TRUE(press("/") && recorder->waitForSilence() && press("/3"));
    EXPECT_TRUE(soundsAt(ROOT * 3.0 / 2.0));
    desk.freezeSound();
    expectOrderlyEnd();
    EXPECT_EQ(options()[u"audioDevice"_s].toInt(-1), 0) << "the lost device is not forgotten";
}
