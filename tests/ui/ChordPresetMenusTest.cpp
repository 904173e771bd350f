// The menus of banks and presets, by real choices and answered boxes.

#include "app/Settings.h"
#include "sound/OrloNoteEvent.h"
#include "support/LogCatcher.h"
#include "ui/BoxAnswers.h"
#include "ui/WindowFixture.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPushButton>

namespace {

const QString STAR = QStringLiteral("*");
const QString BANK_ERROR = QStringLiteral(
    "Brevick Tuning Orlo|Error: Could not create bank. It might already exist or name is invalid!");
const QString PRESET_ERROR =
    QStringLiteral("Brevick Tuning Orlo|Error: Failed to create preset file on the disk. Name is invalid!");
const QString NEW_BANK = QStringLiteral("New bank|Create bank with name:");
const QString NEW_PRESET = QStringLiteral("New preset|Create preset with name:");

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
    bool buttonsAreOn() const
    {
        EXPECT_EQ(button("saveChordSetLoadButton")->isEnabled(),
                  button("saveChordSetSaveButton")->isEnabled());
        return button("saveChordSetLoadButton")->isEnabled();
    }
    QString preset(const char* path) const { return settings.lastDirPath + u'/' + QString::fromUtf8(path); }
    bool startsWith(const char* path, const char* text) const
    {
        return home.read(QStringLiteral("chord_presets/") + QString::fromUtf8(path)).startsWith(text);
    }
    void store(int slot, const OrloRatio& ratio)
    {
        chords.storedChords()->insert(slot, {ratio});
        window->refreshChordButtons();
    }

    const LogCatcher quiet;
    BoxAnswers boxes;
};

TEST_F(ChordMenus, ABankAndAPresetAreMadeSavedLoadedAndRemoved)
{
    create(banks(), "Mine");
    EXPECT_EQ(banks()->currentText(), QStringLiteral("Mine"));
    EXPECT_FALSE(buttonsAreOn());
    create(presets(), "First");
    EXPECT_EQ(boxes.take(), (QStringList{NEW_BANK, NEW_PRESET}));
    EXPECT_EQ(presets()->currentText(), QStringLiteral("First"));
    EXPECT_TRUE(buttonsAreOn());

    store(2, OrloRatio(3, 2));
    click("saveChordSetSaveButton");
    EXPECT_TRUE(startsWith("Mine/First.btoc", "0\n3/2 0\n0\n"));
    window->clearAllChordButtons();
    store(5, OrloRatio(7, 4));
    press(Qt::Key_L, Qt::ControlModifier);
    EXPECT_TRUE(button("chordButton_02")->isChecked());
    EXPECT_FALSE(button("chordButton_05")->isChecked());
    store(5, OrloRatio(7, 4));
    press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_TRUE(startsWith("Mine/First.btoc", "0\n3/2 0\n0\n0\n7/4 0\n"));
    EXPECT_TRUE(boxes.take().isEmpty()); // neither asks

    const struct
    {
        QComboBox* menu;
        const char* path;
        QString question;
    } removals[] = {
        {presets(), "Mine/First.btoc",
         QStringLiteral(
             "Remove preset|Are you sure you want to remove preset 'First'? This cannot be undone!")},
        {banks(), "Mine",
         QStringLiteral(
             "Remove bank|Are you sure you want to remove bank 'Mine' and all containing presets? This "
             "cannot be undone!")},
    };
    for (const auto& removal : removals) {
        const QString chosen = removal.menu->currentText();
        for (const bool yes : {false, true}) {
            boxes.answer(yes);
            choose(removal.menu, -1);
            EXPECT_EQ(boxes.take(), QStringList{removal.question});
            EXPECT_EQ(removal.menu->currentText(), yes ? STAR : chosen);
            EXPECT_EQ(QFileInfo::exists(preset(removal.path)), !yes);
        }
        EXPECT_FALSE(buttonsAreOn());
        choose(removal.menu, -1); // no last one any more
        EXPECT_TRUE(boxes.take().isEmpty());
        EXPECT_EQ(removal.menu->currentText(), STAR);
    }
}

TEST_F(ChordMenus, CancelEmptyAndWrongNamesGoBackToTheLastChoice)
{
    create(banks(), "Mine");
    create(presets(), "First");
    boxes.take();
    const QString exists = QStringLiteral("Brevick Tuning Orlo|Preset name already exists!");
    const struct
    {
        QComboBox* menu;
        QStringList shown;
        QList<const char*> names;
    } rows[] = {
        {banks(), {NEW_BANK}, {""}},
        {banks(), {NEW_BANK, BANK_ERROR}, {"Mine", "../Mine2", "a/b", "..", "...", " ", "a..b"}},
        {presets(), {NEW_PRESET, PRESET_ERROR}, {"../Out", "a/b", "..", ".", " "}},
        {presets(), {NEW_PRESET, exists}, {"First"}},
    };
    for (const auto& row : rows) {
        for (const char* name : row.names) {
            create(row.menu, name);
            EXPECT_EQ(boxes.take(), row.shown) << name;
            EXPECT_EQ(banks()->currentText(), QStringLiteral("Mine"));
            EXPECT_EQ(presets()->currentText(), QStringLiteral("First")) << name;
        }
    }
    for (QComboBox* menu : {banks(), presets()}) {
        const QString chosen = menu->currentText();
        boxes.type(QStringLiteral("Other"), false);
        choose(menu, -2);
        EXPECT_EQ(menu->currentText(), chosen);
    }
    EXPECT_EQ(QDir(settings.lastDirPath).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
              QStringList{QStringLiteral("Mine")});
    EXPECT_EQ(QDir(preset("Mine")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
              QStringList{QStringLiteral("First.btoc")});

    settings.lastDirPath = home.path(QStringLiteral("absent"));
    boxes.take();
    create(banks(), "Other");
    EXPECT_EQ(boxes.take(),
              (QStringList{NEW_BANK,
                           QStringLiteral("Brevick Tuning Orlo|Error: Main directory does not exist. Please "
                                          "choose a directory first!")}));
}

TEST_F(ChordMenus, AnEntryNamedLikeAnActionIsAnEntry)
{
    create(banks(), "-- remove last chosen bank --");
    create(presets(), "-- create new preset --");
    EXPECT_EQ(boxes.take(), (QStringList{NEW_BANK, NEW_PRESET}));
    EXPECT_EQ(banks()->currentIndex(), 1);
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
    EXPECT_TRUE(QDir(preset("Two")).isEmpty());

    // The bank chosen already keeps its preset; another one does not.
    choose(banks(), "One");
    choose(presets(), "Common");
    choose(banks(), "One");
    EXPECT_EQ(presets()->currentText(), QStringLiteral("Common"));
    click("saveChordSetLoadButton");
    EXPECT_EQ(services.loaded, QStringList{preset("One/Common.btoc")});
    choose(banks(), "Two");
    click("saveChordSetLoadButton");
    EXPECT_EQ(services.loaded.size(), 1);
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
    boxes.take();
    boxes.type(QString(), false);
    click("saveChordDirectoryButton");
    EXPECT_EQ(boxes.take(), QStringList{QStringLiteral("Choose Directory|")});
    EXPECT_EQ(banks()->currentText(), QStringLiteral("One"));
    boxes.type(home.path(QStringLiteral("elsewhere")));
    click("saveChordDirectoryButton");
    EXPECT_EQ(settings.lastDirPath, home.path(QStringLiteral("elsewhere")));
    EXPECT_EQ(banks()->findText(QStringLiteral("Theirs")), 1);
    EXPECT_EQ(banks()->currentText(), STAR);
    EXPECT_FALSE(buttonsAreOn());
}
