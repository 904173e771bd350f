#include "end-to-end/PlayingFixture.h"
#include "end-to-end/Waiting.h"

#include <csignal>

/// Chord memory by real presses, measured in the recording.
class Chords : public PlayingFixture
{
protected:
    static constexpr double FIFTH = ROOT * 3.0 / 2.0;
    static constexpr double OCTAVE = ROOT * 2.0;
    static constexpr double BELOW = ROOT / 2.0;

    /// Of the four tones exactly these.
    ::testing::AssertionResult sound(const QList<double>& wanted)
    {
        for (const double tone : {ROOT, FIFTH, OCTAVE, BELOW}) {
            const bool on = wanted.contains(tone);
            if (!(on ? hears(tone) : hearsNoMore(tone)))
                return ::testing::AssertionFailure() << tone << (on ? " Hz is missing" : " Hz sounds");
        }
        return ::testing::AssertionSuccess();
    }

    void clickOn(const char* widget) { ASSERT_TRUE(program->click(screen->widget(widget))); }
    void key(const char* keys) { ASSERT_TRUE(program->type(QLatin1StringView(keys))); }
    /// Plays these balls alone, which sound so, and stores them.
    void store(const char* chordButton, const QList<const char*>& balls, const QList<double>& tones)
    {
        key("ctrl+Escape");
        ASSERT_TRUE(recorder->waitForSilence());
        for (const char* ball : balls)
            ASSERT_TRUE(press(ball));
        ASSERT_TRUE(sound(tones));
        clickOn("chordStoreToButton");
        clickOn(chordButton);
        clickOn("chordStoreToButton");
    }

    QByteArray runningChords() const { return home.read(QStringLiteral(".temp.btoc")); }
};

TEST_F(Chords, ComeBackAfterARestartAndAreRecalledInThreeModes)
{
    start();
    store("chordButton_01", {"/", "/3"}, {ROOT, FIFTH});
    store("chordButton_02", {"/3", "/2"}, {FIFTH, OCTAVE});
    store("chordButton_12", {"/-2"}, {BELOW});
    ASSERT_EQ(program->quit(), 0);
    EXPECT_EQ(runningChords().count('\n'), 20);

    start();
    key("1");
    EXPECT_TRUE(sound({ROOT, FIFTH}));
    clickOn("chordButton_02");
    EXPECT_TRUE(sound({FIFTH, OCTAVE})); // the chord and nothing else
    clickOn("chordAdditiveRecallButton");
    key("1");
    EXPECT_TRUE(sound({OCTAVE})); // of what sounds of it nothing is left
    clickOn("chordAlternatingRecallButton");
    key("2");
    EXPECT_TRUE(sound({FIFTH}));
    key("j");
    key("2"); // of the second row
    EXPECT_TRUE(sound({FIFTH, BELOW}));
    EXPECT_EQ(program->quit(), 0);
}

TEST_F(Chords, AKilledProgramLeavesTheChordsOfItsLastSave)
{
    // The ratio that is none does not keep the program from starting.
    const QByteArray kept = "1/1 3/2 0\n3/0 0\n" + QByteArray("0\n").repeated(18);
    home.write(QStringLiteral(".temp.btoc"), kept);
    start();
    EXPECT_TRUE(log().contains(QStringLiteral("\"3/0\"")));
    store("chordButton_05", {"/-2"}, {BELOW});
    ::kill(static_cast<pid_t>(program->processId()), SIGKILL);
    ASSERT_EQ(program->waitForExit(), std::nullopt);
    EXPECT_EQ(runningChords(), kept);

    start();
    key("1");
    EXPECT_TRUE(sound({ROOT, FIFTH}));
    EXPECT_EQ(program->quit(), 0);
    EXPECT_EQ(runningChords().left(10).count('/'), 2);
}

TEST_F(Chords, ASelectedNoteGlidesByTheSlider)
{
    start();
    ASSERT_TRUE(press("/"));
    ASSERT_TRUE(soundsAt(ROOT));
    key("alt+a"); // select what sounds
    clickOn("glissButton");
    // The groove's top end takes the slider there in steps of a page.
    const QPoint slider = screen->widget("glissButton");
    for (int i = 0; i < 30; ++i)
        ASSERT_TRUE(program->click(QPoint(slider.x() + 4, slider.y() + 30)));
    EXPECT_TRUE(soundsAt(OCTAVE)); // 1200 cents
    key("alt+ctrl+n");             // all nodes reset and deselected
    EXPECT_TRUE(soundsAt(ROOT));
    EXPECT_EQ(program->quit(), 0);
}
