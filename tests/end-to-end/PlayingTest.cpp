#include "end-to-end/PlayingFixture.h"
#include "support/Waiting.h"

using namespace Qt::StringLiterals;

using Playing = PlayingFixture;
// A path and its ratio. Each step of 2 is an octave; a step of another prime is that prime over the
// largest power of 2 below it, a step down its reciprocal.
using Presses = std::vector<std::pair<const char*, double>>;

TEST_F(Playing, EachPressedBallSoundsAtItsRatioUntilPressedAgain)
{
    start();
    const auto play = [this](const char* view, const Presses& presses) {
        for (const auto& [path, ratio] : presses) {
            SCOPED_TRACE(path);
            ASSERT_TRUE(press(path, view));
            EXPECT_TRUE(soundsAt(ROOT * ratio));
            EXPECT_GT(recorder->level(1), 0.001) << "The right side is silent.";
            ASSERT_TRUE(press(path, view) && recorder->waitForSilence());
        }
    };
    play("grapes", {{"/", 1.0},
                    {"/-2/-2/3/3", 9.0 / 16},
                    {"/-3/-3/-3", 8.0 / 27},
                    {"/2/3/-7", 2.0 * 3 / 2 * 4 / 7},
                    {"/2/-3/31", 2.0 * 2 / 3 * 31 / 16}});
    // A note goes on through the change of the view.
    ASSERT_TRUE(press("/3") && soundsAt(FIFTH) && clickOn("circlesViewButton"));
    EXPECT_TRUE(soundsAt(FIFTH));
    ASSERT_TRUE(press("/3", "circles") && recorder->waitForSilence());
    play("circles", {{"/-3/11", 2.0 / 3 * 11 / 8}, {"/-2/-13", 1.0 / 2 * 8 / 13}});
    EXPECT_EQ(program->quit(), 0);
}

TEST_F(Playing, AStoredChordComesBackAfterACrash)
{
    start();
    ASSERT_TRUE(press("/") && press("/3") && hears(ROOT) && hears(FIFTH));
    for (const char* button : {"chordStoreToButton", "chordButton_01", "chordStoreToButton"})
        ASSERT_TRUE(clickOn(button));
    EXPECT_TRUE(waitUntil([this] { return home.read(u".temp.btoc"_s).startsWith("1/1 3/2 0\n0\n"); }, 3000));
    program->killNow();

    start();
    ASSERT_TRUE(press("/2") && hears(ROOT * 2.0));
    ASSERT_TRUE(program->type(u"1"_s));
    EXPECT_TRUE(hears(ROOT) && hears(FIFTH) && hearsNoMore(ROOT * 2.0)) << "the chord and nothing else";
    ASSERT_TRUE(clickOn("chordAdditiveRecallButton") && program->type(u"1"_s));
    EXPECT_TRUE(hearsNoMore(ROOT) && hearsNoMore(FIFTH)) << "what sounds of it ends";
    EXPECT_EQ(program->quit(), 0);
}
