#include "sound/OrloNoteEvent.h"
#include "support/LogCatcher.h"
#include "support/Waiting.h"
#include "ui/WindowFixture.h"

#include <QHelpEvent>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const OrloRatio A(1, 1);
const OrloRatio B(3, 2);
const OrloRatio C(5, 4);

/// In order, as "1/1 3/2".
std::string textOf(const QList<OrloRatio>& ratios)
{
    QStringList texts;
    for (const OrloRatio& ratio : ratios)
        texts.append(ratio.toString());
    texts.sort();
    return texts.join(u' ').toStdString();
}

class ChordPanelTest : public WindowFixture
{
protected:
    void play(const QList<OrloRatio>& ratios)
    {
        drain();
        player.queueGui(OrloEvent::AllNotesOffForced, 1.0F);
        for (const OrloRatio& ratio : ratios) {
            const OrloNoteEvent event(ratio);
            player.queueEventGui(&event);
        }
        settle();
    }
    QPushButton* chord(int number) const
    {
        return button(qPrintable(u"chordButton_%1"_s.arg(number, 2, 10, QChar(u'0'))));
    }
    void clickChord(int number) const { QTest::mouseClick(chord(number), Qt::LeftButton); }
    bool isOn(const char* name) const { return button(name)->isChecked(); }
    void store(int number, const QList<OrloRatio>& ratios)
    {
        play(ratios);
        ASSERT_TRUE(chords.storeRatios(number));
        window->refreshChordButtons();
    }
    /// What sounds once the player has done what was queued.
    std::string soundingNow()
    {
        drain();
        return textOf(player.getAllSoundingRatios());
    }
    std::string stored(int number) { return textOf(chords.storedChords()->value(number)); }

    const LogCatcher quiet;
    BoxAnswers boxes;
};

TEST_F(ChordPanelTest, StoresRecallsAndClearsByClicks)
{
    clickChord(7); // empty: recall mode leaves it as it is
    EXPECT_FALSE(chord(7)->isChecked());
    click("chordStoreToButton");
    play({A, B});
    clickChord(7);
    clickChord(20); // several can be stored in turn
    EXPECT_EQ(stored(7), "1/1 3/2");
    EXPECT_TRUE(boxes.take().isEmpty());

    play({C});
    for (const int number : {7, 20}) {
        boxes.answer(number == 20);
        clickChord(number);
        EXPECT_EQ(stored(number), number == 20 ? "5/4" : "1/1 3/2");
    }
    EXPECT_EQ(boxes.take(), QStringList(2, u"Replace?"_s));
    play({});
    for (const int number : {8, 20}) { // neither a question nor a loss
        clickChord(number);
        EXPECT_TRUE(boxes.take().value(0).contains(u"Nothing to be stored"));
        EXPECT_EQ(chord(number)->isChecked(), number == 20);
    }

    click("chordStoreToButton");
    clickChord(7);
    EXPECT_EQ(commands(), QList<Command>({{OrloEvent::NoteToggleByRatio, 1.0F},
                                          {OrloEvent::NoteToggleByRatio, 1.0F},
                                          {OrloEvent::NodesRecalled, 1.0F}}));
    clickChord(7); // sounds already: stays lit, nothing changes
    EXPECT_EQ(commands(), QList<Command>({{OrloEvent::NodesRecalled, 1.0F}}));
    EXPECT_TRUE(chord(7)->isChecked());

    click("chordClearButton");
    clickChord(7);
    EXPECT_FALSE(chord(7)->isChecked());
    EXPECT_TRUE(chords.isChordEmpty(7));
    EXPECT_EQ(textOf(player.getAllSoundingRatios()), "1/1 3/2");
}

TEST_F(ChordPanelTest, EachButtonStoresItsOwnChordAndClearingAllAsks)
{
    click("chordClearAllButton");
    EXPECT_TRUE(boxes.take().isEmpty()) << "there is nothing";
    play({A});
    click("chordStoreToButton");
    for (int number = 1; number <= 20; ++number) {
        clickChord(number);
        EXPECT_EQ(stored(number), "1/1") << number;
        EXPECT_EQ(stored(number + 1), "") << number;
    }
    for (const bool yes : {false, true}) {
        boxes.answer(yes);
        press(Qt::Key_C, Qt::AltModifier);
        EXPECT_EQ(boxes.take(), QStringList(u"Clear all memory? (No)"_s));
        EXPECT_EQ(chord(20)->isChecked(), !yes);
        EXPECT_EQ(chords.isStorageEmpty(), yes);
    }
}

TEST_F(ChordPanelTest, PairsExcludeEachOther)
{
    press(Qt::Key_T, Qt::ControlModifier);
    press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_TRUE(isOn("chordClearButton") && !isOn("chordStoreToButton"));
    for (const auto& [one, other] :
         {std::pair{"chordStoreToButton", "chordClearButton"},
          std::pair{"chordAdditiveRecallButton", "chordAlternatingRecallButton"}}) {
        click(one);
        EXPECT_FALSE(isOn(other)) << other;
        click(other);
        EXPECT_FALSE(isOn(one)) << one;
        click(other);
    }
    // The key only moves the marks, from none to additive, alternating and none.
    store(1, {A, B});
    const std::tuple<bool, bool, const char*> cycle[] = {
        {true, false, ""}, {false, true, "1/1"}, {false, false, "1/1 3/2"}};
    for (const auto& [additive, alternating, left] : cycle) {
        press(Qt::Key_A, Qt::ControlModifier);
        EXPECT_EQ(isOn("chordAdditiveRecallButton"), additive);
        EXPECT_EQ(isOn("chordAlternatingRecallButton"), alternating);
        play({B});
        clickChord(1);
        EXPECT_EQ(soundingNow(), left);
    }
}

TEST_F(ChordPanelTest, AChordInMonoAsksAndIsRecalledEitherWay)
{
    store(1, {A, B});
    store(2, {C});
    settings.monophonic = true;
    clickChord(2);
    EXPECT_TRUE(boxes.take().isEmpty()); // one note
    for (const bool poly : {false, true}) {
        play({});
        boxes.answer(poly);
        clickChord(1);
        EXPECT_EQ(boxes.take().size(), 1);
        const QList<Command> queued = commands();
        EXPECT_EQ(queued.contains({OrloEvent::MonophonicSet, 0.0F}), poly);
        EXPECT_EQ(queued.count({OrloEvent::NoteToggleByRatio, 1.0F}), 2);
    }
}

TEST_F(ChordPanelTest, AButtonShowsWhetherItsChordSoundsAndListsIt)
{
    store(3, {B, C, A});
    const QWidget* bar = chord(3)->findChild<QWidget*>(u"chordBar"_s);
    for (const auto& [sounding, all] :
         {std::pair<QList<OrloRatio>, bool>{{A, B, C}, true}, {{A, B}, false}, {{A, B, C, {7, 4}}, true}}) {
        play(sounding);
        EXPECT_TRUE(waitUntil([&] { return bar->isHidden() != all; }));
    }
    QHelpEvent asked(QEvent::ToolTip, QPoint(1, 1), QPoint(1, 1));
    QCoreApplication::sendEvent(chord(3), &asked);
    // 5/4 lies 13.7 cents below the tempered third, 3/2 2.0 cents above the fifth.
    EXPECT_TRUE(chord(3)->toolTip().startsWith(
        u"Chord 3\n1/1   A4 +0 cents\n5/4   C#5 -14 cents\n3/2   E5 +2 cents\n"_s))
        << chord(3)->toolTip().toStdString();
    chords.clearRatios(3);
    window->refreshChordButtons();
    EXPECT_TRUE(waitUntil([&] { return bar->isHidden(); }));
}

TEST_F(ChordPanelTest, DigitsAddressTheChosenRow)
{
    const std::pair<int, QList<OrloRatio>> chordsOf[] = {{1, {A}}, {10, {B}}, {11, {C}}, {20, {A, C}}};
    for (const auto& [number, ratios] : chordsOf)
        store(number, ratios);
    for (const auto& [number, ratios] : chordsOf) {
        press(number <= 10 ? Qt::Key_U : Qt::Key_J, Qt::ShiftModifier);
        press(number % 10 == 0 ? Qt::Key_0 : Qt::Key_1);
        EXPECT_EQ(soundingNow(), textOf(ratios)) << number;
    }
    // Alt stores without a question, and stores nothing too.
    click("chordRowButton_02");
    click("chordRowButton_02"); // stays
    for (const QList<OrloRatio>& ratios : {QList<OrloRatio>{C}, QList<OrloRatio>{}}) {
        play(ratios);
        press(Qt::Key_1, Qt::AltModifier);
        EXPECT_EQ(stored(11), textOf(ratios));
        EXPECT_EQ(chord(11)->isChecked(), !ratios.isEmpty());
    }
    EXPECT_TRUE(boxes.take().isEmpty());
    EXPECT_TRUE(isOn("chordRowButton_02") && !isOn("chordRowButton_01"));
}

TEST_F(ChordPanelTest, HoldNeedsSomethingToHold)
{
    const auto expectHold = [this](float queued, bool lit) {
        EXPECT_EQ(commands(), QList<Command>({{OrloEvent::NodesHold, queued}}));
        EXPECT_EQ(isOn("chordHoldButton"), lit);
    };
    click("chordHoldButton");
    expectHold(1.0F, false);
    play({A});
    press(Qt::Key_H);
    expectHold(1.0F, true);
    press(Qt::Key_H, Qt::AltModifier); // anew
    expectHold(1.0F, true);
    press(Qt::Key_Escape);
    EXPECT_EQ(soundingNow(), "1/1");
    press(Qt::Key_H);
    expectHold(0.0F, false);
}

TEST_F(ChordPanelTest, RestrictionsTakePanelAndGlissandoAway)
{
    store(1, {A});
    play({B});
    window->applyRestrictions(true);
    for (const char* name :
         {"chordButton_01", "chordRowButton_02", "chordStoreToButton", "chordClearAllButton",
          "chordHoldButton", "saveChordBankMenu", "glissSliderBig", "glissFineSliderBig"})
        EXPECT_FALSE(find<QWidget>(name)->isEnabled()) << name;
    clickChord(1);
    press(Qt::Key_1, Qt::AltModifier);
    press(Qt::Key_H, Qt::AltModifier);
    press(Qt::Key_A, Qt::ControlModifier);
    press(Qt::Key_J);
    EXPECT_TRUE(commands().isEmpty());
    EXPECT_EQ(stored(1), "1/1");
    EXPECT_FALSE(isOn("chordAdditiveRecallButton"));
    EXPECT_TRUE(isOn("chordRowButton_01"));
    window->applyRestrictions(false);
    EXPECT_TRUE(chord(1)->isEnabled());
}

} // namespace
