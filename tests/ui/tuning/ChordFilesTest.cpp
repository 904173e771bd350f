// Chords to files of other programs and from them.

#include "support/FullDisk.h"
#include "ui/WindowFixture.h"

#include <QAction>
#include <QClipboard>
#include <QComboBox>
#include <QDialog>
#include <QDropEvent>
#include <QFile>
#include <QGuiApplication>
#include <QLabel>
#include <QListWidget>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QSignalSpy>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace {

using Ratios = QList<OrloRatio>;

class ChordFilesTest : public WindowFixture
{
protected:
    ChordFilesTest() { window->show(); }

    QDialog* open(const char* entry, const char* dialog)
    {
        for (QAction* each : window->actions()) {
            if (each->text() == QLatin1StringView(entry))
                each->trigger();
        }
        return find<QDialog>(dialog);
    }
    QDialog* openOut() { return open("Chord to file...", "chordToFileDialog"); }
    QDialog* openIn() { return open("Scala file to chord...", "scalaToChordDialog"); }
    void choose(const char* menu, int index) { find<QComboBox>(menu)->setCurrentIndex(index); }
    QString text(const char* label) const { return find<QLabel>(label)->text(); }
    QString preview() const { return find<QPlainTextEdit>("chordPreview")->toPlainText(); }

    QString write(const char* name, const QByteArray& content) const
    {
        const QString path = home.path(QLatin1StringView(name));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return path;
    }
    static QByteArray read(const QString& path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArrayLiteral("(no file)");
    }
    /// On the lattice, as the pointer does it. Whether the window takes it.
    bool drop(const QStringList& paths)
    {
        QMimeData data;
        QList<QUrl> urls;
        for (const QString& path : paths)
            urls.append(QUrl::fromLocalFile(path));
        data.setUrls(urls);
        QWidget* view = window->orloView()->viewport();
        QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(view, &enter);
        if (!enter.isAccepted())
            return false;
        QDropEvent event({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(view, &event);
        return event.isAccepted();
    }
};

const QByteArray SCALE = "! a remark\r\nfour and more\r\n 5\r\n9/8\r\n5/4\r\n701.955\r\n37/32\r\n2/1\r\n";

TEST_F(ChordFilesTest, EachSourceGivesItsPitches)
{
    QDir().mkpath(settings.lastDirPath + u"/bank"_s);
    QFile preset(settings.lastDirPath + u"/bank/mine.btoc"_s);
    ASSERT_TRUE(preset.open(QIODevice::WriteOnly));
    preset.write("1/1 7/4 0\n0\n-3/2 7/4 11/8 0\n");
    preset.close();
    openOut();
    EXPECT_FALSE(button("chordSaveButton")->isEnabled());
    EXPECT_FALSE(button("chordCopyButton")->isEnabled());
    EXPECT_EQ(text("chordStateLabel"), u"Nothing sounds."_s);
    choose("chordSourceMenu", 1);
    EXPECT_EQ(text("chordStateLabel"), u"No chord is stored."_s);

    const OrloNoteEvent note(OrloRatio(5, 4));
    player.queueEventGui(&note);
    settle();
    chords.setRatios(7, {OrloRatio(1, 1), OrloRatio(3, 2), OrloRatio(3, 1)});
    // The present one is shown without a press.
    choose("chordSourceMenu", 0);
    choose("chordFormatMenu", 3);
    EXPECT_TRUE(preview().contains(u"5/4"_s)) << qPrintable(preview());
    struct Row
    {
        int source;
        const char* pitches;
        QStringList inPreview;
    };
    const Row rows[] = {
        {1, "3 pitches", {u"Chord 7"_s, u"3/2"_s}},
        {2, "3 pitches", {u"mine"_s, u"7/4"_s, u"11/8"_s}},
        {3, "361 pitches", {u"Lattice"_s, u"31/16"_s}},
    };
    choose("chordRangeMenu", 1);
    for (const Row& row : rows) {
        choose("chordSourceMenu", row.source);
        EXPECT_EQ(text("chordStateLabel"), QLatin1StringView(row.pitches)) << row.source;
        for (const QString& part : row.inPreview)
            EXPECT_TRUE(preview().contains(part)) << row.source << qPrintable(part) << qPrintable(preview());
    }
    orlo.onPrimeEnabledToggled(31, false);
    choose("chordSourceMenu", 2);
    choose("chordSourceMenu", 3);
    EXPECT_FALSE(preview().contains(u"31/16"_s)) << "a prime that is off";
    EXPECT_EQ(chords.chords().size(), 1) << "a preset leaves the memory alone";
}

TEST_F(ChordFilesTest, SavesScaleWithKeyboardAndCopies)
{
    chords.setRatios(2, {OrloRatio(3, 2), OrloRatio(1, 1)});
    openOut();
    choose("chordSourceMenu", 1);
    BoxAnswers boxes;
    boxes.type(home.path(u"fifth"_s));
    click("chordSaveButton");
    const QByteArray scale = read(home.path(u"fifth.scl"_s));
    EXPECT_TRUE(scale.contains("\n2\n") && scale.contains("3/2") && scale.contains("2/1")) << scale.data();
    EXPECT_TRUE(read(home.path(u"fifth.kbm"_s)).contains("440.0"));

    // The keyboard of another scale is not lost without a question.
    write("third.kbm", "mine");
    boxes.type(home.path(u"third"_s));
    boxes.answer(false);
    click("chordSaveButton");
    EXPECT_EQ(read(home.path(u"third.scl"_s)), "(no file)");
    EXPECT_EQ(read(home.path(u"third.kbm"_s)), "mine");

    click("chordCopyButton");
    EXPECT_TRUE(QGuiApplication::clipboard()->text().contains(u"701.955"_s));

    // A disk that is full leaves the former file as it was.
    choose("chordFormatMenu", 3);
    write("former.txt", "mine");
    boxes.type(home.path(u"former"_s));
    boxes.answer(true); // replaces it
    {
        const FullDisk disk(10);
        click("chordSaveButton");
    }
    EXPECT_TRUE(text("chordStateLabel").contains(u"former.txt was not saved: "_s));
    EXPECT_EQ(read(home.path(u"former.txt"_s)), "mine");
}

TEST_F(ChordFilesTest, AFileBecomesAChordThatCanBeTakenBack)
{
    chords.setRatios(1, {OrloRatio(7, 4)});
    openIn();
    EXPECT_FALSE(button("scalaStoreButton")->isEnabled());
    ASSERT_TRUE(drop({write("four.SCL", SCALE)}));
    EXPECT_EQ(text("scalaDescriptionLabel"), u"four and more"_s);
    const auto* leftOut = find<QListWidget>("scalaLeftOutList");
    ASSERT_EQ(leftOut->count(), 2);
    EXPECT_TRUE(leftOut->item(0)->text().startsWith(u"Line 6:"_s));
    EXPECT_TRUE(leftOut->item(1)->text().startsWith(u"Line 7:"_s));
    EXPECT_EQ(find<QComboBox>("scalaSlotMenu")->currentIndex(), 1) << "the first empty chord";

    const Ratios wanted{OrloRatio(1, 1), OrloRatio(9, 8), OrloRatio(5, 4)};
    click("scalaStoreButton");
    EXPECT_EQ(chords.chords().value(2), wanted);
    EXPECT_TRUE(button("chordButton_02")->isChecked());
    choose("scalaSlotMenu", 0);
    click("scalaStoreButton");
    EXPECT_EQ(chords.chords().value(1), wanted);
    click("scalaUndoButton");
    EXPECT_EQ(chords.chords().value(1), Ratios{OrloRatio(7, 4)});
    chords.setRatios(2, {OrloRatio(3, 2)}); // by the player, meanwhile
    click("scalaUndoButton");
    EXPECT_EQ(chords.chords().value(2), Ratios{OrloRatio(3, 2)});
    EXPECT_FALSE(button("scalaUndoButton")->isEnabled());
    choose("scalaSlotMenu", 2);
    chords.setRatios(3, {OrloRatio(3, 2)});
    click("scalaStoreButton");
    EXPECT_EQ(chords.chords().value(3), Ratios{OrloRatio(3, 2)}) << "it was shown as empty";
    chords.setRatios(3, {});
    choose("scalaSlotMenu", 3);
    choose("scalaSlotMenu", 2);
    click("scalaStoreButton"); // tells that it is empty again
    click("scalaStoreButton");
    EXPECT_TRUE(button("chordButton_03")->isChecked());
    click("scalaUndoButton");
    EXPECT_TRUE(chords.isChordEmpty(3));
    EXPECT_FALSE(button("chordButton_03")->isChecked());
}

TEST_F(ChordFilesTest, NoChordIsReplacedUnchosenAndNoneWhileRestricted)
{
    for (int slot = 1; slot <= StoreAndRecall::LAST_SLOT; ++slot)
        chords.setRatios(slot, {OrloRatio(7, 4)});
    const QString path = write("four.scl", SCALE);
    ASSERT_TRUE(drop({path}));
    EXPECT_FALSE(button("scalaStoreButton")->isEnabled());
    choose("scalaSlotMenu", 4);
    EXPECT_TRUE(button("scalaStoreButton")->isEnabled());
    window->applyRestrictions(true);
    EXPECT_FALSE(button("scalaStoreButton")->isEnabled());
    EXPECT_FALSE(drop({path}));
}

TEST_F(ChordFilesTest, OtherDropsAreRefusedAndBadFilesNamed)
{
    const QSignalSpy said(&notes, &StatusNotes::said);
    const QString scale = write("a.scl", SCALE);
    EXPECT_FALSE(drop({write("a.txt", SCALE)}));
    EXPECT_EQ(said.count(), 1);
    EXPECT_FALSE(drop({scale, write("b.scl", SCALE)}));
    EXPECT_FALSE(drop({}));

    const QString keyboard = write("a.kbm", "3\n0\n127\n60\n69\n440.0\n5\n0\n2\nx\n");
    ASSERT_TRUE(drop({keyboard}));
    EXPECT_TRUE(text("scalaDescriptionLabel").contains(u".scl"_s)) << "it waits for its scale";
    ASSERT_TRUE(drop({scale}));
    EXPECT_TRUE(text("scalaPitchesLabel").startsWith(u"2 pitches"_s)) << "1/1 and degree 2";
    click("scalaNoKeyboardButton");
    EXPECT_TRUE(text("scalaPitchesLabel").startsWith(u"3 pitches"_s));

    QFile::link(u"/dev/zero"_s, home.path(u"zero.scl"_s));
    QDir().mkpath(home.path(u"folder.scl"_s));
    const std::pair<QString, const char*> bad[] = {
        {write("double.scl", "x\n1\n697//441\n"), "Line 3:"},
        {home.path(u"zero.scl"_s), "not a file"},
        {home.path(u"folder.scl"_s), "not a file"},
    };
    for (const auto& [path, reason] : bad) {
        ASSERT_TRUE(drop({path}));
        EXPECT_TRUE(text("scalaDescriptionLabel").contains(QLatin1StringView(reason))) << qPrintable(path);
        EXPECT_FALSE(button("scalaStoreButton")->isEnabled()) << qPrintable(path);
    }
}

} // namespace
