// What playing from MIDI keeps in its files, and what it says of keys. Ports are played end to end.

#include "keyboard/MidiPlaying.h"
#include "files/SetAside.h"
#include "keyboard/KeyLearning.h"
#include "keyboard/KeyTable.h"
#include "keyboard/KeysOfPitch.h"
#include "support/LogCatcher.h"
#include "support/SoundRig.h"
#include "support/TestHome.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QSignalSpy>

using namespace Qt::StringLiterals;

namespace {

class MidiPlayingTest : public ::testing::Test
{
protected:
    static QList<Layout> named(const QString& name) { return {Layout{.name = name}}; }

    SoundRig rig;
    const TestHome home;
    const QString folder = home.configDir().path();
    MidiPlaying playing{rig.player};
};

TEST_F(MidiPlayingTest, WritesNothingBeforeItIsUsedAndThenAllOfIt)
{
    playing.load(folder);
    playing.save();
    EXPECT_FALSE(QFile::exists(playing.path()));
    EXPECT_FALSE(QFile::exists(playing.layoutsPath()));

    const KeySettings settings{.bendSemitones = 12, .mpe = false, .pressureMacro = 3, .timbreMacro = 8};
    const QJsonObject controllers{{u"any"_s, 1}};
    playing.setSettings(settings);
    playing.setShowsKeys(true);
    playing.setControllers(controllers);
    playing.setLayouts(named(u"mine"_s));
    playing.save();

    MidiPlaying next(rig.player);
    next.load(folder);
    EXPECT_EQ(next.settings(), settings);
    EXPECT_TRUE(next.showsKeys());
    EXPECT_EQ(next.controllers(), controllers);
    EXPECT_EQ(next.layouts(), named(u"mine"_s));

    // What is taken back is written too, since there is a file that says otherwise.
    next.setSettings({});
    next.setShowsKeys(false);
    next.setControllers({});
    next.setLayouts({});
    next.save();
    MidiPlaying last(rig.player);
    last.load(folder);
    EXPECT_EQ(last.settings(), KeySettings());
    EXPECT_TRUE(last.layouts().isEmpty());
}

TEST_F(MidiPlayingTest, WrongValuesGiveWayAndTheFileIsKept)
{
    const std::tuple<const char*, int, int, bool> rows[] = {
        // the file; bend, macro of pressure; is it set aside
        {R"({"bendSemitones": 96, "pressureMacro": 8})", 96, 8, false},
        {R"({"bendSemitones": 97, "pressureMacro": 9})", 2, 0, true},
        {R"({"bendSemitones": -1, "pressureMacro": 1.5})", 2, 0, true},
        {R"({"bendSemitones": "7", "pressureMacro": 4, "inputs": {"a": 1}})", 2, 4, true},
        {R"([{"bendSemitones": 7}])", 2, 0, true},
        {R"({"bendSemitones": 7)", 2, 0, true},
        {"", 2, 0, true},
    };
    for (const auto& [text, bend, pressure, aside] : rows) {
        SCOPED_TRACE(text);
        const LogCatcher log;
        home.write(MidiPlaying::NAME, text);
        MidiPlaying read(rig.player);
        read.load(folder);
        EXPECT_EQ(read.settings().bendSemitones, bend);
        EXPECT_EQ(read.settings().pressureMacro, pressure);
        EXPECT_EQ(SetAside::isMarked(read.path()), aside);
        (void)SetAside::moveMarked(read.path());
    }
}

TEST_F(MidiPlayingTest, EachChangeOfLayoutsIsTakenBack)
{
    playing.load(folder);
    QSignalSpy told(&playing, &MidiPlaying::layoutsChanged);
    constexpr int CHANGES = MidiPlaying::UNDO_STEPS + 5;
    for (int i = 1; i <= CHANGES; ++i) {
        playing.setLayouts(named(QString::number(i)));
        playing.setLayouts(playing.layouts()); // no change
    }
    EXPECT_EQ(told.size(), CHANGES);
    int undone = 0;
    while (playing.canUndo()) {
        playing.undo();
        ++undone;
        ASSERT_EQ(playing.layouts(), named(QString::number(CHANGES - undone)));
    }
    EXPECT_EQ(undone, MidiPlaying::UNDO_STEPS);
}

TEST(KeyLearning, TheLatestPressOfEitherKindCounts)
{
    KeyLearning learning;
    EXPECT_FALSE(learning.pressBall(OrloRatio(5, 4)));
    EXPECT_FALSE(learning.pressBall(OrloRatio(3, 2)));
    auto pair = learning.pressKey(2, 60);
    ASSERT_TRUE(pair);
    EXPECT_EQ(std::tuple(pair->channel, pair->key, pair->ratio.numerator()), std::tuple(2, 60, 3ULL));
    EXPECT_FALSE(learning.pressKey(1, 61)) << "the ball belongs to the former key";
    EXPECT_FALSE(learning.pressKey(3, 0));
    pair = learning.pressBall(OrloRatio(7, 4));
    ASSERT_TRUE(pair);
    EXPECT_EQ(std::tuple(pair->channel, pair->key, pair->ratio.numerator()), std::tuple(3, 0, 7ULL));
}

TEST(KeysOfPitch, NamesTheLowestKeysAndTheirChannel)
{
    auto table = std::make_shared<KeyTable>();
    auto other = std::make_shared<KeyTable>();
    for (int channel = 0; channel < KeyTable::CHANNELS; ++channel) {
        table->at(channel, 0).ratio = OrloRatio(1, 1);
        for (const int key : {61, 60, 127})
            table->at(channel, key).ratio = OrloRatio(3, 2);
        table->at(channel, 64).tempered = 1.26;
    }
    table->at(2, 69).ratio = OrloRatio(5, 4);
    other->at(1, 70).ratio = OrloRatio(5, 4);
    other->at(4, 69).ratio = OrloRatio(5, 4);
    const QHash<OrloRatio, QString> expected{{OrloRatio(1, 1), u"C-1 0"_s},
                                             {OrloRatio(3, 2), u"C4 60, C#4 61 ..."_s},
                                             {OrloRatio(5, 4), u"A4 69 ch 3, A#4 70 ch 2"_s}};
    EXPECT_EQ(keysOfPitches({table, other}), expected);
}

} // namespace
