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
#include <QListView>
#include <QPushButton>
#include <QTest>

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

    /// By a click in the menu's list; a negative index counts from the end.
    void choose(QComboBox* menu, int index) const
    {
        window->show();
        menu->showPopup();
        QTest::qWait(20);
        auto* list = qobject_cast<QListView*>(menu->view());
        const QModelIndex item = menu->model()->index(index < 0 ? menu->count() + index : index, 0);
        list->scrollTo(item);
        QTest::mouseMove(list->viewport(), list->visualRect(item).center());
        QTest::qWait(10);
        QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::NoModifier, list->visualRect(item).center());
        QTest::qWait(20);
        menu->hidePopup();
    }
    void choose(QComboBox* menu, const char* name) const
    {
        const int index = menu->findText(QString::fromUtf8(name));
        ASSERT_GE(index, 0) << name;
        choose(menu, index);
    }
    void create(QComboBox* menu, const char* name)
    {
        boxes.type(QString::fromUtf8(name));
        choose(menu, -2);
    }
    static QStringList items(const QComboBox* menu)
    {
        QStringList list;
        for (int i = 0; i < menu->count(); ++i)
            list.append(menu->itemText(i));
        return list;
    }
    bool buttonsAreOn() const
    {
        EXPECT_EQ(button("saveChordSetLoadButton")->isEnabled(), button("saveChordSetSaveButton")->isEnabled());
        return button("saveChordSetLoadButton")->isEnabled();
    }
    QString preset(const char* path) const { return settings.lastDirPath + u'/' + QString::fromUtf8(path); }
    QByteArray content(const char* path) const
    {
        return home.read(QStringLiteral("chord_presets/") + QString::fromUtf8(path));
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
    EXPECT_EQ(items(banks()), (QStringList{STAR, QStringLiteral("-- create new bank --"),
                                           QStringLiteral("-- remove last chosen bank --")}));
    EXPECT_EQ(items(presets()), (QStringList{STAR, QStringLiteral("-- create new preset --"),
                                             QStringLiteral("-- remove last chosen preset --")}));
    EXPECT_FALSE(buttonsAreOn());

    create(banks(), "Mine");
    EXPECT_EQ(boxes.take(), QStringList{NEW_BANK});
    EXPECT_EQ(banks()->currentText(), QStringLiteral("Mine"));
    EXPECT_FALSE(buttonsAreOn());
    create(presets(), "First");
    EXPECT_EQ(boxes.take(), QStringList{NEW_PRESET});
    EXPECT_EQ(presets()->currentText(), QStringLiteral("First"));
    EXPECT_TRUE(buttonsAreOn());
    EXPECT_TRUE(QFileInfo(preset("Mine/First.btoc")).exists());

    store(2, OrloRatio(3, 2));
    click("saveChordSetSaveButton");
    EXPECT_TRUE(content("Mine/First.btoc").startsWith("0\n3/2 0\n0\n"));
    window->clearAllChordButtons();
    store(5, OrloRatio(7, 4));
    press(Qt::Key_L, Qt::ControlModifier);
    EXPECT_TRUE(button("chordButton_02")->isChecked());
    EXPECT_FALSE(button("chordButton_05")->isChecked());
    store(5, OrloRatio(7, 4));
    press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_TRUE(content("Mine/First.btoc").startsWith("0\n3/2 0\n0\n0\n7/4 0\n"));
    EXPECT_TRUE(boxes.take().isEmpty()); // neither asks

    boxes.answer(false);
    choose(presets(), -1);
    EXPECT_EQ(presets()->currentText(), QStringLiteral("First"));
    boxes.answer(true);
    choose(presets(), -1);
    const QString question =
        QStringLiteral("Remove preset|Are you sure you want to remove preset 'First'? This cannot be undone!");
    EXPECT_EQ(boxes.take(), (QStringList{question, question}));
    EXPECT_EQ(presets()->currentText(), STAR);
    EXPECT_FALSE(QFileInfo::exists(preset("Mine/First.btoc")));
    EXPECT_FALSE(buttonsAreOn());
    choose(presets(), -1); // no last preset any more
    EXPECT_TRUE(boxes.take().isEmpty());
    EXPECT_EQ(presets()->currentText(), STAR);

    boxes.answer(false);
    choose(banks(), -1);
    EXPECT_EQ(banks()->currentText(), QStringLiteral("Mine"));
    boxes.answer(true);
    choose(banks(), -1);
    EXPECT_EQ(boxes.take().last(), QStringLiteral("Remove bank|Are you sure you want to remove bank 'Mine' and all "
                                                  "containing presets? This cannot be undone!"));
    EXPECT_FALSE(QFileInfo::exists(preset("Mine")));
    EXPECT_EQ(banks()->currentText(), STAR);
    choose(banks(), -1);
    EXPECT_TRUE(boxes.take().isEmpty());
    EXPECT_EQ(banks()->currentText(), STAR);
}

TEST_F(ChordMenus, CancelEmptyAndWrongNamesGoBackToTheLastChoice)
{
    create(banks(), "Mine");
    create(presets(), "First");
    boxes.take();
    boxes.type(QStringLiteral("Other"), false);
    choose(banks(), -2);
    create(banks(), "");
    EXPECT_EQ(boxes.take(), (QStringList{NEW_BANK, NEW_BANK}));
    EXPECT_EQ(banks()->currentText(), QStringLiteral("Mine"));
    for (const char* name : {"Mine", "../Mine2", "a/b", "..", "...", " ", "a..b"}) {
        create(banks(), name);
        EXPECT_EQ(boxes.take(), (QStringList{NEW_BANK, BANK_ERROR})) << name;
        EXPECT_EQ(banks()->currentText(), QStringLiteral("Mine"));
    }
    for (const char* name : {"../Out", "a/b", "..", ".", " "}) {
        create(presets(), name);
        EXPECT_EQ(boxes.take(), (QStringList{NEW_PRESET, PRESET_ERROR})) << name;
        EXPECT_EQ(presets()->currentText(), QStringLiteral("First"));
    }
    create(presets(), "First");
    EXPECT_EQ(boxes.take(),
              (QStringList{NEW_PRESET, QStringLiteral("Brevick Tuning Orlo|Preset name already exists!")}));
    boxes.type(QStringLiteral("Other"), false);
    choose(presets(), -2);
    EXPECT_EQ(presets()->currentText(), QStringLiteral("First"));
    EXPECT_EQ(QDir(settings.lastDirPath).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
              QStringList{QStringLiteral("Mine")});
    EXPECT_EQ(QDir(preset("Mine")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
              QStringList{QStringLiteral("First.btoc")});

    settings.lastDirPath = home.path(QStringLiteral("absent"));
    boxes.take();
    create(banks(), "Other");
    EXPECT_EQ(boxes.take(),
              (QStringList{NEW_BANK, QStringLiteral("Brevick Tuning Orlo|Error: Main directory does not exist. Please "
                                                    "choose a directory first!")}));
}

TEST_F(ChordMenus, AnEntryNamedLikeAnActionIsAnEntry)
{
    create(banks(), "-- remove last chosen bank --");
    EXPECT_TRUE(QFileInfo(preset("-- remove last chosen bank --")).isDir());
    EXPECT_EQ(banks()->currentIndex(), 1);
    boxes.take();
    choose(banks(), 1);
    EXPECT_TRUE(boxes.take().isEmpty());
    create(presets(), "-- create new preset --");
    boxes.take();
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
    EXPECT_TRUE(items(banks()).contains(QStringLiteral("Theirs")));
    EXPECT_EQ(banks()->currentText(), STAR);
    EXPECT_FALSE(buttonsAreOn());
}
