// The chord buttons and the glissando sliders, by real clicks and keys.

#include "app/Settings.h"
#include "sound/OrloNoteEvent.h"
#include "support/LogCatcher.h"
#include "ui/BoxAnswers.h"
#include "ui/WindowFixture.h"

#include <QPushButton>
#include <QSlider>
#include <QTest>

#include <set>

namespace {

const OrloRatio A(1, 1);
const OrloRatio B(3, 2);
const OrloRatio C(5, 4);

std::set<std::pair<quint64, quint64>> setOf(const QList<OrloRatio>& ratios)
{
    std::set<std::pair<quint64, quint64>> set;
    for (const OrloRatio& ratio : ratios)
        set.insert({ratio.numerator(), ratio.denominator()});
    return set;
}

const QString NOTHING = QStringLiteral("Brevick Tuning Orlo|Nothing to be stored!");
const QString REPLACE = QStringLiteral("|Replace?");

} // namespace

class ChordPanel : public WindowFixture
{
protected:
    void play(const QList<OrloRatio>& ratios)
    {
        drain();
        const OrloEvent stop(OrloEvent::AllNotesOffForced, 1.0F);
        player.queueEventGui(&stop);
        for (const OrloRatio& ratio : ratios) {
            const OrloNoteEvent event(ratio);
            player.queueEventGui(&event);
        }
        settle();
    }
    QPushButton* chord(int number) const
    {
        return button(qPrintable(QStringLiteral("chordButton_%1").arg(number, 2, 10, QLatin1Char('0'))));
    }
    void clickChord(int number) const { QTest::mouseClick(chord(number), Qt::LeftButton); }
    void store(int number, const QList<OrloRatio>& ratios)
    {
        play(ratios);
        ASSERT_TRUE(chords.storeRatios(number));
        window->refreshChordButtons();
    }
    std::set<std::pair<quint64, quint64>> sounding() const { return setOf(player.getAllSoundingRatios()); }
    QString stored(int number)
    {
        QStringList texts;
        for (const OrloRatio& ratio : chords.storedChords()->value(number))
            texts.append(ratio.toString());
        texts.sort();
        return texts.join(u' ');
    }

    const LogCatcher quiet;
    BoxAnswers boxes;
};

TEST_F(ChordPanel, StoresRecallsAndClearsByClicks)
{
    clickChord(7); // empty: recall mode leaves it as it is
    EXPECT_FALSE(chord(7)->isChecked());
    EXPECT_TRUE(commands().isEmpty());

    click("chordStoreToButton");
    clickChord(7);
    EXPECT_EQ(boxes.take(), QStringList{NOTHING});
    EXPECT_FALSE(chord(7)->isChecked());
    play({A, B});
    clickChord(7);
    clickChord(20);
    EXPECT_TRUE(chord(7)->isChecked());
    EXPECT_TRUE(button("chordStoreToButton")->isChecked()); // several can be stored in turn
    EXPECT_EQ(stored(7), QStringLiteral("1/1 3/2"));
    EXPECT_TRUE(boxes.take().isEmpty());

    play({C});
    boxes.answer(false);
    clickChord(7);
    EXPECT_EQ(stored(7), QStringLiteral("1/1 3/2"));
    EXPECT_TRUE(chord(7)->isChecked());
    boxes.answer(true);
    clickChord(20);
    EXPECT_EQ(stored(20), QStringLiteral("5/4"));
    EXPECT_EQ(boxes.take(), (QStringList{REPLACE, REPLACE}));
    play({});
    clickChord(20); // neither a question nor a loss
    EXPECT_EQ(boxes.take(), QStringList{NOTHING});
    EXPECT_TRUE(chord(20)->isChecked());

    click("chordStoreToButton");
    clickChord(7);
    const QList<Command> queued = commands();
    ASSERT_EQ(queued.size(), 3);
    EXPECT_EQ(queued[0], Command(OrloEvent::NoteToggleByRatio, 1.0F));
    EXPECT_EQ(queued[2], Command(OrloEvent::NodesRecalled, 1.0F));
    EXPECT_EQ(sounding(), setOf({A, B}));
    clickChord(7); // sounds already: stays lit, nothing changes
    EXPECT_EQ(commands(), QList<Command>({{OrloEvent::NodesRecalled, 1.0F}}));
    EXPECT_TRUE(chord(7)->isChecked());

    click("chordClearButton");
    clickChord(7);
    clickChord(8);
    EXPECT_FALSE(chord(7)->isChecked());
    EXPECT_FALSE(chord(8)->isChecked());
    EXPECT_TRUE(chords.isChordEmpty(7));
    EXPECT_TRUE(button("chordClearButton")->isChecked());
    EXPECT_EQ(sounding(), setOf({A, B}));
}

TEST_F(ChordPanel, PairsExcludeEachOtherAndChooseTheMode)
{
    const std::pair<const char*, const char*> pairs[] = {
        {"chordStoreToButton", "chordClearButton"}, {"chordAdditiveRecallButton", "chordAlternatingRecallButton"}};
    for (const auto& [one, other] : pairs) {
        click(one);
        click(other);
        EXPECT_FALSE(button(one)->isChecked()) << one;
        click(one);
        EXPECT_FALSE(button(other)->isChecked()) << other;
        click(one);
        EXPECT_FALSE(button(one)->isChecked() || button(other)->isChecked());
    }

    store(1, {A, B});
    play({A});
    click("chordAdditiveRecallButton");
    clickChord(1);
    drain();
    EXPECT_EQ(sounding(), setOf({}));
    play({A, C});
    click("chordAlternatingRecallButton");
    clickChord(1);
    drain();
    EXPECT_EQ(sounding(), setOf({B, C}));

    // The key only moves the marks: alternating, none, additive, alternating.
    const std::pair<bool, bool> cycle[] = {{false, false}, {true, false}, {false, true}};
    for (const auto& [additive, alternating] : cycle) {
        press(Qt::Key_A, Qt::ControlModifier);
        EXPECT_EQ(button("chordAdditiveRecallButton")->isChecked(), additive);
        EXPECT_EQ(button("chordAlternatingRecallButton")->isChecked(), alternating);
    }
    EXPECT_TRUE(commands().isEmpty());
}

TEST_F(ChordPanel, AChordInMonoAsksAndIsRecalledEitherWay)
{
    store(1, {A, B});
    store(2, {C});
    settings.monophonic = true;
    const QString question = QStringLiteral("Monophonic|We are in monophonic mode but you are recalling more than one "
                                            "note. Switch to polyphonic?");
    clickChord(2);
    EXPECT_TRUE(boxes.take().isEmpty()); // one note
    settle();
    boxes.answer(false);
    clickChord(1);
    EXPECT_EQ(boxes.take(), QStringList{question});
    QList<Command> queued = commands();
    ASSERT_EQ(queued.size(), 4);
    EXPECT_EQ(queued.first().first, OrloEvent::NoteToggleByRatio);
    play({});
    boxes.answer(true);
    clickChord(1);
    queued = commands();
    ASSERT_EQ(queued.size(), 4);
    EXPECT_EQ(queued.first(), Command(OrloEvent::MonophonicSet, 0.0F));
    EXPECT_TRUE(button("polyButton")->isChecked());
    EXPECT_FALSE(button("monoButton")->isChecked());
    EXPECT_TRUE(chord(1)->isChecked());
}

TEST_F(ChordPanel, ClearingAllAsksUnlessThereIsNothing)
{
    click("chordClearAllButton");
    EXPECT_TRUE(boxes.take().isEmpty());
    store(3, {A});
    boxes.answer(false);
    click("chordClearAllButton");
    EXPECT_TRUE(chord(3)->isChecked());
    boxes.answer(true);
    press(Qt::Key_C, Qt::AltModifier);
    EXPECT_EQ(boxes.take(), (QStringList{QStringLiteral("|Clear all memory?"), QStringLiteral("|Clear all memory?")}));
    EXPECT_FALSE(chord(3)->isChecked());
    EXPECT_TRUE(chords.isStorageEmpty());
}

TEST_F(ChordPanel, DigitsAddressTheChosenRow)
{
    store(1, {A});
    store(10, {B});
    store(11, {C});
    store(20, {A, C});
    play({});
    const struct
    {
        Qt::Key row;
        Qt::Key digit;
        QList<OrloRatio> sounds;
    } keys[] = {{Qt::Key_U, Qt::Key_1, {A}}, {Qt::Key_U, Qt::Key_0, {B}},
                {Qt::Key_J, Qt::Key_1, {C}}, {Qt::Key_J, Qt::Key_0, {A, C}}};
    for (const auto& key : keys) {
        press(key.row, Qt::ShiftModifier);
        EXPECT_EQ(button("chordRowButton_01")->isChecked(), key.row == Qt::Key_U);
        EXPECT_EQ(button("chordRowButton_02")->isChecked(), key.row == Qt::Key_J);
        press(key.digit);
        drain();
        EXPECT_EQ(sounding(), setOf(key.sounds)) << key.row << ' ' << key.digit;
    }
    click("chordRowButton_01");
    click("chordRowButton_01"); // stays
    EXPECT_TRUE(button("chordRowButton_01")->isChecked());
    EXPECT_FALSE(button("chordRowButton_02")->isChecked());

    // Alt stores without a question, and stores nothing too.
    press(Qt::Key_1, Qt::AltModifier);
    EXPECT_EQ(stored(1), QStringLiteral("1/1 5/4"));
    click("chordRowButton_02");
    press(Qt::Key_9, Qt::AltModifier);
    EXPECT_TRUE(chord(19)->isChecked());
    play({});
    press(Qt::Key_9, Qt::AltModifier);
    EXPECT_FALSE(chord(19)->isChecked());
    EXPECT_TRUE(chords.isChordEmpty(19));
    EXPECT_TRUE(boxes.take().isEmpty());

    press(Qt::Key_T, Qt::ControlModifier);
    EXPECT_TRUE(button("chordStoreToButton")->isChecked());
    press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_TRUE(button("chordClearButton")->isChecked());
    EXPECT_FALSE(button("chordStoreToButton")->isChecked());
}

TEST_F(ChordPanel, HoldNeedsSomethingToHold)
{
    click("chordHoldButton");
    EXPECT_EQ(commands(), QList<Command>({{OrloEvent::NodesHold, 1.0F}}));
    EXPECT_FALSE(button("chordHoldButton")->isChecked());
    play({A});
    press(Qt::Key_H);
    EXPECT_TRUE(button("chordHoldButton")->isChecked());
    EXPECT_EQ(commands(), QList<Command>({{OrloEvent::NodesHold, 1.0F}}));
    press(Qt::Key_H, Qt::AltModifier); // anew
    EXPECT_TRUE(button("chordHoldButton")->isChecked());
    EXPECT_EQ(commands(), QList<Command>({{OrloEvent::NodesHold, 1.0F}}));
    press(Qt::Key_Escape);
    drain();
    EXPECT_EQ(sounding(), setOf({A}));
    press(Qt::Key_H);
    EXPECT_EQ(commands(), QList<Command>({{OrloEvent::NodesHold, 0.0F}}));
    EXPECT_FALSE(button("chordHoldButton")->isChecked());
}

TEST_F(ChordPanel, ReloadingWhatSoundsTogglesNothing)
{
    store(1, {A});
    play({A, B});
    window->reloadAllSoundingRatios();
    EXPECT_EQ(commands(), QList<Command>({{OrloEvent::NodesRecalled, 1.0F}}));
    EXPECT_EQ(sounding(), setOf({A, B}));
    EXPECT_TRUE(chords.isChordEmpty(0));
    EXPECT_EQ(stored(1), QStringLiteral("1/1"));
    window->clearAllChordButtons();
    EXPECT_FALSE(chord(1)->isChecked());
}

TEST_F(ChordPanel, RestrictionsTakePanelAndGlissandoAway)
{
    store(1, {A});
    play({B});
    window->applyRestrictions(true);
    for (const char* name : {"chordButton_01", "chordRowButton_02", "chordStoreToButton", "chordClearAllButton",
                             "chordHoldButton", "saveChordBankMenu", "glissSliderBig", "glissFineSliderBig"})
        EXPECT_FALSE(find<QWidget>(name)->isEnabled()) << name;
    clickChord(1);
    const std::pair<Qt::Key, Qt::KeyboardModifiers> keys[] = {
        {Qt::Key_1, Qt::NoModifier},      {Qt::Key_1, Qt::AltModifier}, {Qt::Key_H, Qt::AltModifier},
        {Qt::Key_A, Qt::ControlModifier}, {Qt::Key_J, Qt::NoModifier},  {Qt::Key_T, Qt::ControlModifier}};
    for (const auto& [key, modifiers] : keys)
        press(key, modifiers);
    EXPECT_TRUE(commands().isEmpty());
    EXPECT_EQ(stored(1), QStringLiteral("1/1"));
    EXPECT_FALSE(button("chordAdditiveRecallButton")->isChecked());
    EXPECT_TRUE(button("chordRowButton_01")->isChecked());
    window->applyRestrictions(false);
    clickChord(1);
    drain();
    EXPECT_EQ(sounding(), setOf({A}));
}

// ---------------------------------------------------------------- glissando

TEST_F(ChordPanel, GlissButtonsShowTheirSliders)
{
    window->show();
    const auto expect = [this](bool one, bool two) {
        EXPECT_EQ(slider("glissSliderBig")->isVisible(), one);
        EXPECT_EQ(slider("glissFineSliderBig")->isVisible(), two);
        EXPECT_EQ(find<QWidget>("glissCLineCenter")->isVisible(), one || two);
        EXPECT_EQ(button("glissButton")->isChecked(), one);
        EXPECT_EQ(button("glissFineButton")->isChecked(), two);
    };
    expect(false, false);
    press(Qt::Key_G, Qt::ControlModifier); // nothing to come back to yet
    expect(false, false);
    click("glissFineButton");
    expect(false, true);
    press(Qt::Key_G, Qt::ControlModifier);
    expect(false, false);
    press(Qt::Key_G, Qt::ControlModifier);
    expect(false, true);
    click("glissButton");
    expect(true, true);
    press(Qt::Key_G, Qt::ControlModifier);
    press(Qt::Key_G, Qt::ControlModifier);
    expect(true, true);
    click("glissButton");
    click("glissFineButton");
    expect(false, false);
    press(Qt::Key_G, Qt::ControlModifier);
    expect(false, false);
}

TEST_F(ChordPanel, GlissSlidersQueueTheirFraction)
{
    slider("glissSliderBig")->setValue(300);
    slider("glissFineSliderBig")->setValue(0);
    EXPECT_TRUE(quiet.has(QtDebugMsg, QStringLiteral("Gliss slider value, previous value  300")));
    EXPECT_EQ(commands(), QList<Command>({{OrloEvent::GlissOneSet, 0.75F}, {OrloEvent::GlissTwoSet, 0.0F}}));
    press(Qt::Key_G, Qt::AltModifier);
    EXPECT_EQ(commands(), QList<Command>({{OrloEvent::GlissTwoSet, 0.5F}}));
    click("glissResetButton");
    EXPECT_EQ(commands(), QList<Command>({{OrloEvent::GlissOneSet, 0.5F}}));

    // Resets of the player's move them without an echo.
    for (const short which : {0, 1, 2}) {
        slider("glissSliderBig")->setValue(7);
        slider("glissFineSliderBig")->setValue(7);
        drain();
        emit player.resetGlissSliders(which);
        report();
        EXPECT_EQ(slider("glissSliderBig")->value(), which == 2 ? 7 : 200);
        EXPECT_EQ(slider("glissFineSliderBig")->value(), which == 1 ? 7 : 200);
        EXPECT_TRUE(commands().isEmpty());
    }
}
