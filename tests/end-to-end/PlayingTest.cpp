#include "end-to-end/PlayingFixture.h"
#include "end-to-end/Waiting.h"

using namespace Qt::StringLiterals;

namespace {

struct Pressed
{
    const char* path;
    // Each step of 2 is an octave; a step of another prime is that prime over the largest power of 2
    // below it, a step down its reciprocal.
    double ratio;
    const char* view = "grapes";
};

} // namespace

using Playing = PlayingFixture;

TEST_F(Playing, EachPressedBallSoundsAtItsRatioUntilPressedAgain)
{
    start();
    const Pressed balls[] = {
        {"/", 1.0},
        {"/3", 3.0 / 2},
        {"/2", 2.0},
        {"/-2/-2/3/3", 9.0 / 16},
        {"/-3/-3/-3", 8.0 / 27},
        {"/5", 5.0 / 4},
        {"/2/3/-7", 2.0 * 3 / 2 * 4 / 7},
        {"/2/-3/31", 2.0 * 2 / 3 * 31 / 16}, // leaves
        // The other view has its leaves elsewhere.
        {"/-3/11", 2.0 / 3 * 11 / 8, "circles"},
        {"/-2/-13", 1.0 / 2 * 8 / 13, "circles"},
    };
    const char* view = "grapes";
    for (const Pressed& ball : balls) {
        SCOPED_TRACE(ball.path);
        if (view != std::string(ball.view)) {
            // A note goes on through the change.
            ASSERT_TRUE(press("/3") && soundsAt(ROOT * 3.0 / 2.0));
            ASSERT_TRUE(program->click(screen->widget("circlesViewButton")));
            EXPECT_TRUE(soundsAt(ROOT * 3.0 / 2.0));
            view = ball.view;
            ASSERT_TRUE(press("/3", view) && recorder->waitForSilence());
        }
        ASSERT_TRUE(press(ball.path, view));
        EXPECT_TRUE(soundsAt(ROOT * ball.ratio));
        EXPECT_GT(recorder->level(1), 0.001) << "The right side is silent.";
        ASSERT_TRUE(press(ball.path, view) && recorder->waitForSilence());
    }
    EXPECT_EQ(program->quit(), 0);
}

TEST_F(Playing, AFadedNoteFreesItsVoice)
{
    // Of four voices three are held. A voice that was not freed would make a later note steal the
    // oldest, which is a held one.
    writeOptions({{u"mainPatchNumberOfVoices"_s, 4}});
    start();
    const Pressed held[] = {{"/", 1.0}, {"/3", 3.0 / 2}, {"/2", 2.0}};
    const Pressed passing[] = {{"/-2", 1.0 / 2}, {"/2/3", 3.0}, {"/3/3", 9.0 / 4}, {"/-2/3", 3.0 / 4}};
    for (const Pressed& note : held)
        ASSERT_TRUE(press(note.path) && hears(ROOT * note.ratio)) << note.path;
    for (const Pressed& note : passing) {
        ASSERT_TRUE(press(note.path) && hears(ROOT * note.ratio)) << note.path;
        ASSERT_TRUE(press(note.path) && hearsNoMore(ROOT * note.ratio)) << note.path;
    }
    for (const Pressed& note : held)
        EXPECT_GT(amplitudeNow(ROOT * note.ratio), 0.01) << note.path;
    // There really are four only: the fifth takes the oldest one's place.
    ASSERT_TRUE(press(passing[0].path) && press(passing[1].path));
    EXPECT_TRUE(hearsNoMore(ROOT));
    for (const Pressed& note : {passing[0], passing[1], held[1]})
        EXPECT_GT(amplitudeNow(ROOT * note.ratio), 0.01) << note.path;
}
