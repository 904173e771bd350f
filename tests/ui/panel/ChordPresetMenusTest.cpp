#include "support/LogCatcher.h"
#include "ui/WindowFixture.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>

using namespace Qt::StringLiterals;

class ChordPresetMenusTest : public WindowFixture
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

    const QString STAR = u"*"_s;
    const LogCatcher quiet;
    BoxAnswers boxes;
};

TEST_F(ChordPresetMenusTest, ABankAndAPresetAreMadeSavedLoadedAndRemoved)
{
    create(banks(), "Mine");
    EXPECT_EQ(banks()->currentText(), u"Mine"_s);
    EXPECT_FALSE(buttonsAreOn());
    create(presets(), "First");
    EXPECT_TRUE(buttonsAreOn());
    boxes.take();

    press(Qt::Key_S, Qt::ControlModifier);
    const QSignalSpy said(&notes, &StatusNotes::said);
    emit files.written(home.path(u".temp.btoc"_s)); // by itself
    emit files.written(preset("Mine/First.btoc"));
    EXPECT_EQ(said.count(), 1);
    EXPECT_TRUE(said.value(0).value(0).toString().contains(u"saved as preset 'First'"));
    window->setChordButton(2, true);
    chords.storedChords()->insert(5, {OrloRatio(7, 4)});
    press(Qt::Key_L, Qt::ControlModifier);
    EXPECT_EQ(services.take(), QStringList({u"saved Mine/First.btoc"_s, u"loaded Mine/First.btoc"_s}));
    EXPECT_FALSE(button("chordButton_02")->isChecked()) << "the buttons show the memory";
    EXPECT_TRUE(button("chordButton_05")->isChecked());
    EXPECT_TRUE(boxes.take().isEmpty()); // neither asks

    const std::pair<QComboBox*, const char*> removals[] = {{presets(), "Mine/First.btoc"}, {banks(), "Mine"}};
    for (const auto& [menu, path] : removals) {
        const QString chosen = menu->currentText();
        for (const bool yes : {false, true}) {
            boxes.answer(yes);
            choose(menu, -1);
            const QString asked = boxes.take().value(0);
            EXPECT_TRUE(asked.contains(u'\'' + chosen + u'\'') && asked.endsWith(u" (No)"_s));
            EXPECT_EQ(menu->currentText(), yes ? STAR : chosen);
            EXPECT_EQ(QFileInfo::exists(preset(path)), !yes);
        }
        EXPECT_FALSE(buttonsAreOn());
        choose(menu, -1); // no last one any more
        EXPECT_TRUE(boxes.take().isEmpty());
        EXPECT_EQ(menu->currentText(), STAR);
    }
}

TEST_F(ChordPresetMenusTest, CancelEmptyAndWrongNamesGoBackToTheLastChoice)
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
        EXPECT_EQ(banks()->currentText() + presets()->currentText(), u"MineFirst") << name;
    }
    // An entry named like an action is an entry.
    create(banks(), "-- remove last chosen bank --");
    create(presets(), "-- create new preset --");
    boxes.take();
    choose(banks(), 1);
    choose(presets(), 1);
    EXPECT_TRUE(boxes.take().isEmpty());
    EXPECT_TRUE(buttonsAreOn());
    settings.lastDirPath = home.path(u"absent"_s);
    create(banks(), "Other");
    EXPECT_TRUE(boxes.take().last().contains(u"Main directory does not exist"_s));
}

TEST_F(ChordPresetMenusTest, WithThePlaceholderLoadAndSaveTouchNoFile)
{
    create(banks(), "One");
    create(presets(), "Common");
    create(banks(), "Two");
    // A change of bank shows no preset, and leaves the buttons on.
    EXPECT_EQ(presets()->currentText(), STAR);
    EXPECT_TRUE(buttonsAreOn());
    click("saveChordSetSaveButton");
    click("saveChordSetLoadButton");
    choose(banks(), 0);
    EXPECT_FALSE(buttonsAreOn());
    press(Qt::Key_S, Qt::ControlModifier);
    press(Qt::Key_L, Qt::ControlModifier);
    EXPECT_TRUE(services.take().isEmpty());

    // The bank chosen already keeps its preset; another one does not.
    choose(banks(), "One");
    choose(presets(), "Common");
    choose(banks(), "One");
    EXPECT_EQ(presets()->currentText(), u"Common"_s);
    click("saveChordSetLoadButton");
    EXPECT_EQ(services.take(), QStringList{u"loaded One/Common.btoc"_s});

    // What has gone from the disk is no choice.
    ASSERT_TRUE(QFile::remove(preset("One/Common.btoc")));
    choose(banks(), "One");
    EXPECT_EQ(presets()->currentText(), STAR);
    click("saveChordSetSaveButton");
    EXPECT_TRUE(services.take().isEmpty());
    ASSERT_TRUE(QDir(preset("One")).removeRecursively());
    boxes.take();
    boxes.answer(true);
    choose(banks(), -1); // removes what is not there
    EXPECT_EQ(banks()->currentText(), STAR);

    // What is no chord file stays, and is told.
    create(banks(), "Mixed");
    for (int file = 0; file < 12; ++file)
        home.write(u"chord_presets/Mixed/%1.txt"_s.arg(file, 2, 10, QChar(u'0')), {});
    boxes.take();
    boxes.answer(true);
    choose(banks(), -1);
    const QString told = boxes.take().value(1);
    EXPECT_TRUE(told.contains(preset("Mixed")) && told.endsWith(u"\n09.txt\nand 2 more"_s))
        << told.toStdString();
    EXPECT_NE(banks()->findText(u"Mixed"_s), -1);
}

TEST_F(ChordPresetMenusTest, ADirectoryIsChosenAndItsBanksListed)
{
    create(banks(), "One");
    create(presets(), "P");
    const QString elsewhere = home.path(u"elsewhere"_s);
    QDir(elsewhere).mkpath(u"Theirs"_s);
    boxes.type(QString(), false);
    click("saveChordDirectoryButton");
    EXPECT_EQ(banks()->currentText(), u"One");
    boxes.type(elsewhere);
    click("saveChordDirectoryButton");
    EXPECT_EQ(settings.lastDirPath, elsewhere);
    EXPECT_EQ(banks()->findText(u"Theirs"_s), 1);
    EXPECT_FALSE(buttonsAreOn());
    boxes.take();
    choose(banks(), -1); // none was chosen here
    EXPECT_TRUE(boxes.take().isEmpty());
    EXPECT_EQ(banks()->currentText(), STAR);
}
