#include "end-to-end/PlayingFixture.h"
#include "end-to-end/Waiting.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

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
            if (!waitUntil([&] { return on ? amplitudeNow(tone) > 0.01 : amplitudeNow(tone) < 0.0001; }))
                return ::testing::AssertionFailure() << tone << (on ? " Hz is missing" : " Hz sounds");
        }
        return ::testing::AssertionSuccess();
    }

    void press(const char* ball) { ASSERT_TRUE(program->click(screen->ball(ball))); }
    void clickOn(const char* widget) { ASSERT_TRUE(program->click(screen->widget(widget))); }
    void key(const char* keys) { ASSERT_TRUE(program->type(QLatin1StringView(keys))); }
    void storeByMouse(const char* chordButton)
    {
        clickOn("chordStoreToButton");
        clickOn(chordButton);
        clickOn("chordStoreToButton");
    }
    void silence()
    {
        key("ctrl+Escape");
        ASSERT_TRUE(recorder->waitForSilence());
    }

    /// Types into the box of this title and confirms it.
    void typeInto(const char* title, const char* text)
    {
        const auto box = [&] { return desk.window(QLatin1StringView(title)); };
        ASSERT_TRUE(waitUntil([&] { return box().has_value(); })) << title;
        QStringList words{QStringLiteral("windowfocus"), QString::number(box()->id), QStringLiteral("type"),
                          QLatin1StringView(text)};
        ASSERT_TRUE(desk.act(words));
        ASSERT_TRUE(desk.act({QStringLiteral("key"), QStringLiteral("Return")}));
        ASSERT_TRUE(waitUntil([&] { return !box(); }));
        ASSERT_TRUE(program->waitForWindow()); // has the keys again
    }
    /// The item so many places below the one that shows.
    void chooseBelow(const char* menu, int places)
    {
        clickOn(menu);
        for (int i = 0; i < places; ++i)
            key("Down");
        key("Return");
    }

    QByteArray runningChords() const { return home.read(QStringLiteral(".temp.btoc")); }
};

TEST_F(Chords, ComeBackAfterARestartAndAreRecalledInThreeModes)
{
    start();
    press("/");
    press("/3");
    ASSERT_TRUE(sound({ROOT, FIFTH}));
    storeByMouse("chordButton_01");
    silence();
    press("/3");
    press("/2");
    ASSERT_TRUE(sound({FIFTH, OCTAVE}));
    storeByMouse("chordButton_02");
    silence();
    press("/-2");
    ASSERT_TRUE(sound({BELOW}));
    storeByMouse("chordButton_12");
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
    key("1");
    EXPECT_TRUE(sound({ROOT, FIFTH, OCTAVE}));
    clickOn("chordAlternatingRecallButton");
    key("2");
    EXPECT_TRUE(sound({ROOT}));
    key("j");
    key("2"); // of the second row
    EXPECT_TRUE(sound({ROOT, BELOW}));
    EXPECT_EQ(program->quit(), 0);
}

TEST_F(Chords, APresetSavedInABankLoadsInAnotherRun)
{
    start();
    chooseBelow("saveChordBankMenu", 1);
    typeInto("New bank", "Mine");
    chooseBelow("saveChordSetMenu", 1);
    typeInto("New preset", "Evening");
    press("/");
    press("/2");
    ASSERT_TRUE(sound({ROOT, OCTAVE}));
    storeByMouse("chordButton_03");
    clickOn("saveChordSetSaveButton");
    const QString file = QStringLiteral("chord_presets/Mine/Evening.btoc");
    ASSERT_TRUE(waitUntil([&] { return home.read(file).count('\n') == 20; }));
    ASSERT_EQ(program->quit(), 0);

    ASSERT_TRUE(QFile::remove(home.path(QStringLiteral(".temp.btoc"))));
    start();
    key("3");
    EXPECT_TRUE(sound({}));
    chooseBelow("saveChordBankMenu", 1);
    chooseBelow("saveChordSetMenu", 1);
    clickOn("saveChordSetLoadButton");
    key("3");
    EXPECT_TRUE(sound({ROOT, OCTAVE}));
    EXPECT_EQ(program->quit(), 0);
}

TEST_F(Chords, AKilledProgramLeavesTheChordsOfItsLastSave)
{
    QByteArray kept = "1/1 3/2 0\n";
    for (int slot = 2; slot <= 20; ++slot)
        kept += "0\n";
    home.write(QStringLiteral(".temp.btoc"), kept);
    start();
    press("/-2");
    ASSERT_TRUE(sound({BELOW}));
    storeByMouse("chordButton_05");
    ::kill(static_cast<pid_t>(program->processId()), SIGKILL);
    ASSERT_EQ(program->waitForExit(), std::nullopt);
    EXPECT_EQ(runningChords(), kept);

    start();
    key("1");
    EXPECT_TRUE(sound({ROOT, FIFTH}));
    EXPECT_EQ(program->quit(), 0);
    EXPECT_EQ(runningChords().left(10).count('/'), 2);
}

TEST_F(Chords, ARatioThatIsNoneDoesNotKeepTheProgramFromStarting)
{
    home.write(QStringLiteral(".temp.btoc"), "3/0 0\n1/1 0\n");
    start();
    EXPECT_TRUE(log().contains(QStringLiteral("CRITICAL")));
    EXPECT_TRUE(log().contains(QStringLiteral("\"3/0\"")));
    key("2");
    EXPECT_TRUE(sound({ROOT}));
    EXPECT_EQ(program->quit(), 0);
}

TEST_F(Chords, ASelectedNoteGlidesByTheSlider)
{
    start();
    press("/");
    ASSERT_TRUE(soundsAt(ROOT));
    key("alt+a"); // select what sounds
    clickOn("glissButton");
    // The groove's top end takes the slider there in steps of a page.
    const QPoint slider = screen->widget("glissButton");
    for (int i = 0; i < 30; ++i)
        ASSERT_TRUE(program->click(QPoint(slider.x() + 4, slider.y() + 30)));
    EXPECT_TRUE(soundsAt(OCTAVE)); // 1200 cents
    key("alt+ctrl+n"); // all nodes reset and deselected
    EXPECT_TRUE(soundsAt(ROOT));
    EXPECT_EQ(program->quit(), 0);
}
