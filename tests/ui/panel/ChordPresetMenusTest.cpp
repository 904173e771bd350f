// The menus of banks and presets, by real choices and answered boxes.

#include "app/Settings.h"
#include "sound/OrloNoteEvent.h"
#include "support/LogCatcher.h"
#include "ui/WindowFixture.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

const QString STAR = QStringLiteral("*");

} // namespace

class ChordMenus : public WindowFixture
{
protected:
    QComboBox* banks() const { return find<QComboBox>("saveChordBankMenu"); }
    QComboBox* presets() const { return find<QComboBox>("saveChordSetMenu"); }

    /// As by a click in the menu's list; a negative index counts from the end.
    static void choose(QComboBox* menu, int index)
    {
        menu->setCurrentIndex(index < 0 ? menu->count() + index : index);
        emit menu->activated(menu->currentIndex());
    }
    static void choose(QComboBox* menu, const char* name)
    {
        choose(menu, menu->findText(QString::fromUtf8(name)));
    }
    void create(QComboBox* menu, const char* name)
    {
        boxes.type(QString::fromUtf8(name));
        choose(menu, -2);
    }
    bool buttonsAreOn() const { return button("saveChordSetLoadButton")->isEnabled(); }
    QString preset(const char* path) const { return settings.lastDirPath + u'/' + QString::fromUtf8(path); }
    void store(int slot, const OrloRatio& ratio) { chords.storedChords()->insert(slot, {ratio}); }

    const LogCatcher quiet;
    BoxAnswers boxes;
};

TEST_F(ChordMenus, ABankAndAPresetAreMadeSavedLoadedAndRemoved)
{
    create(banks(), "Mine");
    EXPECT_EQ(banks()->currentText(), QStringLiteral("Mine"));
    EXPECT_FALSE(buttonsAreOn());
    create(presets(), "First");
    EXPECT_TRUE(buttonsAreOn());
    boxes.take();

    store(2, OrloRatio(3, 2));
    press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_TRUE(home.read(QStringLiteral("chord_presets/Mine/First.btoc")).startsWith("0\n3/2 0\n0\n"));
    window->clearAllChordButtons();
    store(5, OrloRatio(7, 4));
    press(Qt::Key_L, Qt::ControlModifier);
    EXPECT_TRUE(button("chordButton_02")->isChecked());
    EXPECT_FALSE(button("chordButton_05")->isChecked());
    EXPECT_TRUE(boxes.take().isEmpty()); // neither asks

    const std::pair<QComboBox*, const char*> removals[] = {{presets(), "Mine/First.btoc"}, {banks(), "Mine"}};
    for (const auto& [menu, path] : removals) {
        const QString chosen = menu->currentText();
        for (const bool yes : {false, true}) {
            boxes.answer(yes);
            choose(menu, -1);
            EXPECT_TRUE(boxes.take().value(0).contains(u'\'' + chosen + u'\''));
            EXPECT_EQ(menu->currentText(), yes ? STAR : chosen);
            EXPECT_EQ(QFileInfo::exists(preset(path)), !yes);
        }
        EXPECT_FALSE(buttonsAreOn());
        choose(menu, -1); // no last one any more
        EXPECT_TRUE(boxes.take().isEmpty());
        EXPECT_EQ(menu->currentText(), STAR);
    }
}

TEST_F(ChordMenus, CancelEmptyAndWrongNamesGoBackToTheLastChoice)
{
    create(banks(), "Mine");
    create(presets(), "First");
    boxes.take();
    const std::tuple<QComboBox*, const char*, const char*> rows[] = {
        // menu, name, in the box that complains
        {banks(), "", ""},
        {banks(), "Mine", "Could not create bank"},
        {banks(), "../Mine2", "Could not create bank"},
        {presets(), "", ""},
        {presets(), "../Out", "Name is invalid"},
        {presets(), "First", "already exists"},
    };
    for (const auto& [menu, name, complaint] : rows) {
        create(menu, name);
        const QStringList shown = boxes.take();
        EXPECT_EQ(shown.size(), *complaint ? 2 : 1) << name;
        EXPECT_TRUE(shown.last().contains(QLatin1StringView(complaint))) << name;
        EXPECT_EQ(banks()->currentText(), QStringLiteral("Mine")) << name;
        EXPECT_EQ(presets()->currentText(), QStringLiteral("First")) << name;
    }
    settings.lastDirPath = home.path(QStringLiteral("absent"));
    create(banks(), "Other");
    EXPECT_TRUE(boxes.take().last().contains(QStringLiteral("Main directory does not exist")));
}

TEST_F(ChordMenus, AnEntryNamedLikeAnActionIsAnEntry)
{
    create(banks(), "-- remove last chosen bank --");
    create(presets(), "-- create new preset --");
    boxes.take();
    choose(banks(), 1);
    choose(presets(), 1);
    EXPECT_TRUE(boxes.take().isEmpty());
    EXPECT_TRUE(buttonsAreOn());
}

TEST_F(ChordMenus, WithThePlaceholderLoadAndSaveTouchNoFile)
{
    create(banks(), "One");
    create(presets(), "Common");
    store(1, OrloRatio(3, 2));
    click("saveChordSetSaveButton");
    create(banks(), "Two");
    // A change of bank shows no preset, and leaves the buttons on.
    EXPECT_EQ(presets()->currentText(), STAR);
    EXPECT_TRUE(buttonsAreOn());
    services.saved.clear();
    click("saveChordSetSaveButton");
    click("saveChordSetLoadButton");
    choose(banks(), 0);
    EXPECT_FALSE(buttonsAreOn());
    press(Qt::Key_S, Qt::ControlModifier);
    press(Qt::Key_L, Qt::ControlModifier);
    EXPECT_TRUE(services.saved.isEmpty());
    EXPECT_TRUE(services.loaded.isEmpty());

    // The bank chosen already keeps its preset; another one does not.
    choose(banks(), "One");
    choose(presets(), "Common");
    choose(banks(), "One");
    EXPECT_EQ(presets()->currentText(), QStringLiteral("Common"));
    click("saveChordSetLoadButton");
    EXPECT_EQ(services.loaded, QStringList{preset("One/Common.btoc")});
}

TEST_F(ChordMenus, WhatHasGoneFromTheDiskIsNoChoice)
{
    create(banks(), "One");
    create(presets(), "Gone");
    ASSERT_TRUE(QFile::remove(preset("One/Gone.btoc")));
    choose(banks(), "One");
    EXPECT_EQ(presets()->currentText(), STAR);
    click("saveChordSetSaveButton");
    EXPECT_TRUE(services.saved.isEmpty());
    ASSERT_TRUE(QDir(preset("One")).removeRecursively());
    boxes.take();
    boxes.answer(true);
    choose(banks(), -1); // removes what is not there
    EXPECT_EQ(banks()->currentText(), STAR);
}

TEST_F(ChordMenus, ADirectoryIsChosenAndItsBanksListed)
{
    create(banks(), "One");
    create(presets(), "P");
    QDir(home.path(QStringLiteral("elsewhere"))).mkpath(QStringLiteral("Theirs"));
    boxes.type(QString(), false);
    click("saveChordDirectoryButton");
    EXPECT_EQ(banks()->currentText(), QStringLiteral("One"));
    boxes.type(home.path(QStringLiteral("elsewhere")));
    click("saveChordDirectoryButton");
    EXPECT_EQ(settings.lastDirPath, home.path(QStringLiteral("elsewhere")));
    EXPECT_EQ(banks()->findText(QStringLiteral("Theirs")), 1);
    EXPECT_EQ(banks()->currentText(), STAR);
    EXPECT_FALSE(buttonsAreOn());
}
