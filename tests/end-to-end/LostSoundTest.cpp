#include "end-to-end/PlayingFixture.h"
#include "end-to-end/Waiting.h"

// What happens when the sound device goes away or stands still under the running program.

class LostSound : public PlayingFixture
{
protected:
    /// The recorder cannot leave a server that stands still.
    void TearDown() override { desk.thawSound(); }
};

TEST_F(LostSound, EndsInOrderAfterTheSoundServerDied)
{
    start();
    ASSERT_TRUE(program->click(screen->ball("/")));
    ASSERT_TRUE(soundsAt(ROOT));
    desk.killSound();
    // The keys still work: what changes here is saved.
    ASSERT_TRUE(program->type(QStringLiteral("f")));
    EXPECT_EQ(program->quit(), 0);
    EXPECT_TRUE(options()[QStringLiteral("circlesView")].toBool());
}

TEST_F(LostSound, EndsInOrderWhileTheSoundServerStandsStill)
{
    start();
    ASSERT_TRUE(program->click(screen->ball("/")));
    ASSERT_TRUE(soundsAt(ROOT));
    desk.freezeSound();
    ASSERT_TRUE(program->type(QStringLiteral("f")));
    EXPECT_EQ(program->quit(), 0);
    EXPECT_TRUE(options()[QStringLiteral("circlesView")].toBool());
}

TEST_F(LostSound, ChangesThePatchWhileTheSoundServerStandsStill)
{
    start();
    ASSERT_TRUE(program->click(screen->ball("/")));
    ASSERT_TRUE(soundsAt(ROOT));
    desk.freezeSound();
    const auto openings = [this] { return log().count(QStringLiteral("Opening PD patch: ")); };
    const auto before = openings();
    ASSERT_TRUE(program->type(patchKey(QStringLiteral("Sine"))));
    EXPECT_TRUE(waitUntil([&] { return openings() > before; }));
    EXPECT_TRUE(log().contains(QStringLiteral("No audio stream is running")));
    desk.thawSound();

    // The note goes on under the new patch, and ends as any other.
    EXPECT_TRUE(soundsAt(ROOT));
    ASSERT_TRUE(program->click(screen->ball("/")));
    ASSERT_TRUE(recorder->waitForSilence());
    ASSERT_TRUE(program->click(screen->ball("/3")));
    EXPECT_TRUE(soundsAt(ROOT * 3.0 / 2.0));
    EXPECT_EQ(program->quit(), 0);
}
