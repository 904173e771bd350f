#include "end-to-end/PlayingFixture.h"
#include "support/Tone.h"
#include "end-to-end/Waiting.h"

#include <cmath>

namespace {

struct Pressed
{
    const char* path;
    // Each step of 2 is an octave; a step of another prime is that prime over the largest power of 2
    // below it, a step down its reciprocal.
    double ratio;
};

/// Of the first over the second.
double decibels(double amplitude, double reference)
{
    return 20.0 * std::log10(amplitude / reference);
}

} // namespace

using Playing = PlayingFixture;

TEST_F(Playing, EachPressedBallSoundsAtItsRatioUntilPressedAgain)
{
    start();
    const Pressed grapes[] = {
        {"/", 1.0},                         //
        {"/3", 3.0 / 2.0},                  //
        {"/2", 2.0},                        //
        {"/-2/-2/3/3", 9.0 / 16.0},         // two octaves down, two fifths up
        {"/-3/-3/-3", 8.0 / 27.0},          //
        {"/5", 5.0 / 4.0},                  // leaves from here
        {"/2/3/-7", 2.0 * 3 / 2 * 4 / 7},   //
        {"/2/-3/31", 2.0 * 2 / 3 * 31 / 16} //
    };
    for (const auto& [path, ratio] : grapes) {
        SCOPED_TRACE(path);
        const QPoint ball = screen->ball(path);
        ASSERT_TRUE(program->click(ball));
        EXPECT_TRUE(soundsAt(ROOT * ratio));
        EXPECT_GT(recorder->level(1), 0.001) << "The right side is silent.";
        ASSERT_TRUE(program->click(ball));
        ASSERT_TRUE(recorder->waitForSilence());
    }

    // The other view has its leaves elsewhere; a note goes on through the change.
    ASSERT_TRUE(program->click(screen->ball("/3")));
    ASSERT_TRUE(soundsAt(ROOT * 3.0 / 2.0));
    ASSERT_TRUE(program->click(screen->widget("circlesViewButton")));
    EXPECT_TRUE(soundsAt(ROOT * 3.0 / 2.0));
    ASSERT_TRUE(program->click(screen->ball("/3", "circles")));
    ASSERT_TRUE(recorder->waitForSilence());
    const Pressed circles[] = {{"/-3/11", 2.0 / 3 * 11 / 8}, {"/-2/-13", 1.0 / 2 * 8 / 13}};
    for (const auto& [path, ratio] : circles) {
        SCOPED_TRACE(path);
        const QPoint ball = screen->ball(path, "circles");
        ASSERT_TRUE(program->click(ball));
        EXPECT_TRUE(soundsAt(ROOT * ratio));
        ASSERT_TRUE(program->click(ball));
        ASSERT_TRUE(recorder->waitForSilence());
    }
    EXPECT_EQ(program->quit(), 0);
}

TEST_F(Playing, AFadedNoteFreesItsVoice)
{
    // Of four voices three are held. A voice that was not freed would make a later note steal the
    // oldest, which is a held one.
    writeOptions({{QStringLiteral("mainPatchNumberOfVoices"), 4}});
    start();
    const Pressed held[] = {{"/", 1.0}, {"/3", 3.0 / 2.0}, {"/2", 2.0}};
    for (const Pressed& note : held)
        ASSERT_TRUE(program->click(screen->ball(note.path)));
    double before[3];
    for (size_t i = 0; i < 3; ++i) {
        ASSERT_TRUE(waitUntil([&] { return amplitudeNow(ROOT * held[i].ratio) > 0.01; })) << held[i].path;
        before[i] = amplitudeNow(ROOT * held[i].ratio);
    }

    const Pressed passing[] = {{"/-2", 1.0 / 2}, {"/2/3", 3.0}, {"/3/3", 9.0 / 4}, {"/-2/3", 3.0 / 4}};
    for (int round = 0; round < 8; ++round) {
        const Pressed& note = passing[round % 4];
        SCOPED_TRACE(note.path);
        const auto sounds = [&] { return amplitudeNow(ROOT * note.ratio); };
        ASSERT_TRUE(program->click(screen->ball(note.path)));
        ASSERT_TRUE(waitUntil([&] { return sounds() > 0.01; }));
        ASSERT_TRUE(program->click(screen->ball(note.path)));
        ASSERT_TRUE(waitUntil([&] { return sounds() < 0.0001; }));
    }
    for (size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(decibels(amplitudeNow(ROOT * held[i].ratio), before[i]), 0.0, 1.0) << held[i].path;

    // There really are four only: the fifth takes the oldest one's place.
    for (const Pressed* note : {&passing[0], &passing[1]})
        ASSERT_TRUE(program->click(screen->ball(note->path)));
    EXPECT_TRUE(waitUntil([&] { return amplitudeNow(ROOT) < 0.0001; }));
    EXPECT_GT(amplitudeNow(ROOT * passing[0].ratio), 0.01);
    EXPECT_GT(amplitudeNow(ROOT * passing[1].ratio), 0.01);
    EXPECT_GT(amplitudeNow(ROOT * held[1].ratio), 0.01);
}

TEST_F(Playing, ADoubleClickIsOneToggle)
{
    start();
    const QPoint root = screen->ball("/");
    ASSERT_TRUE(program->doubleClick(root));
    ASSERT_TRUE(soundsAt(ROOT));
    EXPECT_TRUE(soundsAt(ROOT)); // a second toggle would have faded it by now
    ASSERT_TRUE(program->doubleClick(root));
    EXPECT_TRUE(recorder->waitForSilence());
    EXPECT_NEAR(recorder->level(), 0.0, 1e-5); // and it does not come back
}

TEST_F(Playing, KeysStopNotesAndChooseMonoAndPoly)
{
    start();
    const double fifth = ROOT * 3.0 / 2.0;
    for (const char* stop : {"Escape", "ctrl+Escape"}) {
        SCOPED_TRACE(stop);
        ASSERT_TRUE(program->click(screen->ball("/")));
        ASSERT_TRUE(program->click(screen->ball("/3")));
        ASSERT_TRUE(waitUntil([&] { return amplitudeNow(ROOT) > 0.01 && amplitudeNow(fifth) > 0.01; }));
        ASSERT_TRUE(program->type(QLatin1StringView(stop)));
        ASSERT_TRUE(recorder->waitForSilence());
    }

    ASSERT_TRUE(program->type(QStringLiteral("m")));
    ASSERT_TRUE(program->click(screen->ball("/")));
    ASSERT_TRUE(soundsAt(ROOT));
    ASSERT_TRUE(program->click(screen->ball("/3")));
    ASSERT_TRUE(waitUntil([&] { return amplitudeNow(ROOT) < 0.0001; }));
    EXPECT_TRUE(soundsAt(fifth));

    ASSERT_TRUE(program->type(QStringLiteral("p")));
    ASSERT_TRUE(program->click(screen->ball("/")));
    ASSERT_TRUE(waitUntil([&] { return amplitudeNow(ROOT) > 0.01; }));
    EXPECT_GT(amplitudeNow(fifth), 0.01);
}

TEST_F(Playing, VolumeKeysChangeTheLevel)
{
    start();
    ASSERT_TRUE(program->click(screen->ball("/")));
    ASSERT_TRUE(soundsAt(ROOT));
    // The slider goes from 0 to 140, and three quarters of it are 105.
    const auto steady = [this] {
        double last = -1.0;
        double now = amplitudeNow(ROOT);
        waitUntil([&] {
            last = now;
            now = amplitudeNow(ROOT);
            return std::abs(now - last) <= 0.01 * now + 1e-6;
        });
        return now;
    };
    const double atStart = steady();
    for (int i = 0; i < 20; ++i)
        ASSERT_TRUE(program->type(QStringLiteral("k"))); // 105 - 40 = 65
    const double lower = steady();
    EXPECT_LT(decibels(lower, atStart), -3.0);
    for (int i = 0; i < 20; ++i)
        ASSERT_TRUE(program->type(QStringLiteral("o")));
    EXPECT_NEAR(decibels(steady(), atStart), 0.0, 0.3);

    ASSERT_TRUE(program->type(QStringLiteral("ctrl+k")));
    EXPECT_TRUE(recorder->waitForSilence());
    ASSERT_TRUE(program->type(QStringLiteral("ctrl+o")));
    ASSERT_TRUE(recorder->waitForSound());
    EXPECT_NEAR(decibels(steady(), atStart), 0.0, 0.3);
    EXPECT_TRUE(soundsAt(ROOT));
}
