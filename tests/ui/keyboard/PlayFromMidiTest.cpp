// The dialog "Play from MIDI", and the keys beside the balls.

#include "keyboard/MidiPlaying.h"
#include "ui/WindowFixture.h"
#include "ui/keyboard/KeyLabelItem.h"
#include "ui/keyboard/PlayFromMidiDialog.h"
#include "ui/panel/MenuButton.h"
#include "ui/stacks/OrloLayer.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QSpinBox>
#include <QTabWidget>

using namespace Qt::StringLiterals;

namespace {

class PlayFromMidiTest : public WindowFixture
{
protected:
    PlayFromMidiTest()
    {
        playing.load(home.path(QString()));
        app::Parts parts = app::parts();
        parts.midiPlaying = &playing;
        app::setParts(parts);
        openWindow();
    }
    ~PlayFromMidiTest() override { window.reset(); }

    PlayFromMidiDialog* open(int page = 1)
    {
        for (QAction* entry : window->actions()) {
            if (entry->text() == u"Play from MIDI...")
                entry->trigger();
        }
        auto* dialog = window->findChild<PlayFromMidiDialog*>();
        dialog->findChild<QTabWidget*>()->setCurrentIndex(page);
        return dialog;
    }
    void pressBall(const char* path)
    {
        const OrloNoteEvent event(OrloPath{QString(QLatin1StringView(path))});
        player.queueEventGui(&event);
        settle();
    }
    void pressKey(int channel, int key, int velocity = 100)
    {
        emit playing.messageArrived({static_cast<std::uint8_t>(0x8F + channel),
                                     static_cast<std::uint8_t>(key), static_cast<std::uint8_t>(velocity), 0});
    }
    /// On each page.
    QList<qsizetype> labels() const
    {
        QList<qsizetype> counts;
        for (const OrloLayer* layer : window->findChildren<OrloLayer*>()) {
            qsizetype count = 0;
            for (QGraphicsItem* item : layer->orloView()->scene()->items()) {
                if (const auto* label = dynamic_cast<KeyLabelItem*>(item))
                    count += label->texts().size();
            }
            counts.append(count);
        }
        return counts;
    }
    static Layout learned(const QMap<Layout::Learned::Place, OrloRatio>& keys)
    {
        Layout layout{.name = u"taught"_s};
        layout.learned.keys = keys;
        return layout;
    }

    MidiPlaying playing{player};
};

TEST_F(PlayFromMidiTest, LearnsABallAndAKeyInEitherOrder)
{
    playing.setLayouts({learned({})});
    PlayFromMidiDialog* dialog = open();
    pressKey(1, 59);
    click("learnKeysButton");
    EXPECT_TRUE(playing.isTeaching());
    pressBall("/3");
    pressKey(1, 60, 0); // goes up
    pressKey(1, 60);
    const OrloTransposeEvent up(OrloRatio(3, 2));
    player.queueEventGui(&up);
    settle();
    pressKey(2, 62);
    pressBall("/-2");
    find<QCheckBox>("learnAnyChannelBox")->setChecked(false);
    pressKey(2, 64);
    pressBall("/5");
    using Keys = QMap<Layout::Learned::Place, OrloRatio>;
    const Keys taught{{{0, 60}, OrloRatio(3, 2)}, {{0, 62}, OrloRatio(1, 2)}, {{2, 64}, OrloRatio(5, 4)}};
    EXPECT_EQ(playing.layouts().first().learned.keys, taught);
    EXPECT_EQ(find<QListWidget>("learnedKeysList")->count(), 3);
    dialog->hide();
    EXPECT_FALSE(playing.isTeaching()) << "keys sound again once nobody learns";
    dialog->show();
    pressKey(1, 65);
    pressBall("/2");
    EXPECT_EQ(playing.layouts().first().learned.keys, taught);
    find<QListWidget>("learnedKeysList")->setCurrentRow(1);
    click("forgetKeyButton");
    EXPECT_EQ(playing.layouts().first().learned.keys.keys(),
              (QList<Layout::Learned::Place>{{0, 60}, {2, 64}}));
}

TEST_F(PlayFromMidiTest, KeysStandBesideTheirBallsOnBothPages)
{
    // Two balls, and a pitch without one.
    playing.setLayouts({learned({{{0, 60}, OrloRatio(1, 1)},
                                 {{0, 61}, OrloRatio(3, 2)},
                                 {{0, 62}, OrloRatio(1, 1)},
                                 {{0, 63}, OrloRatio(1024, 1)}})});
    EXPECT_EQ(labels(), (QList<qsizetype>{0, 0}));
    PlayFromMidiDialog* dialog = open();
    EXPECT_EQ(labels(), (QList<qsizetype>{2, 2}));
    dialog->hide();
    EXPECT_EQ(labels(), (QList<qsizetype>{0, 0}));
    find<QCheckBox>("showKeysBox")->setChecked(true);
    EXPECT_EQ(labels(), (QList<qsizetype>{2, 2}));
    window->updateTweaks(); // builds the scene anew
    playing.setLayouts({learned({{{0, 60}, OrloRatio(1, 1)}})});
    EXPECT_EQ(labels(), (QList<qsizetype>{1, 1}));
}

TEST_F(PlayFromMidiTest, EachControlWritesItsValue)
{
    Layout scala{.name = u"b"_s, .kind = Layout::Kind::Scala};
    const QList<Layout> before{{.name = u"a"_s, .kind = Layout::Kind::Generators}, scala};
    playing.setLayouts(before);
    open();
    find<QListWidget>("layoutList")->setCurrentRow(0);
    const auto set = [this](const char* name, int value) { find<QSpinBox>(name)->setValue(value); };
    set("layoutLastChannelEdit", 5);
    set("layoutFirstChannelEdit", 7); // takes the last one along
    set("layoutRootKeyEdit", 0);
    set("layoutRowLengthEdit", 31);
    const std::pair<const char*, const char*> paths[] = {
        {"layoutAlongEdit", "/5/-2"}, {"layoutAcrossEdit", "/4"}, {"layoutAcrossEdit", " /-7 "}};
    for (const auto& [name, text] : paths) {
        find<QLineEdit>(name)->setText(QLatin1StringView(text));
        emit find<QLineEdit>(name)->editingFinished();
    }
    Layout wanted = before.first();
    wanted.firstChannel = wanted.lastChannel = 7;
    wanted.rootKey = 0;
    wanted.generators.rowLength = 31;
    wanted.generators.along.storeFromString(u"/5/-2"_s);
    wanted.generators.across.storeFromString(u"/-7"_s);
    EXPECT_EQ(playing.layouts(), (QList<Layout>{wanted, scala}));

    click("layoutDownButton");
    EXPECT_EQ(playing.layouts(), (QList<Layout>{scala, wanted}));
    EXPECT_EQ(find<QListWidget>("layoutList")->currentRow(), 1);
    find<QListWidget>("layoutList")->item(0)->setCheckState(Qt::Unchecked);
    find<QListWidget>("layoutList")->item(0)->setText(u"c"_s);
    scala.enabled = false;
    scala.name = u"c"_s;
    EXPECT_EQ(playing.layouts(), (QList<Layout>{scala, wanted}));

    BoxAnswers boxes;
    boxes.answer(false);
    boxes.answer(true);
    find<QListWidget>("layoutList")->setCurrentRow(1);
    click("layoutRemoveButton");
    EXPECT_EQ(playing.layouts().size(), 2);
    click("layoutRemoveButton");
    EXPECT_EQ(boxes.take(), QStringList(2, u"Remove the layout a? (No)"_s));
    EXPECT_EQ(playing.layouts(), QList<Layout>{scala});
    click("layoutUndoButton");
    EXPECT_EQ(playing.layouts(), (QList<Layout>{scala, wanted}));

    set("bendRangeEdit", 12);
    find<QCheckBox>("heedMpeBox")->setChecked(false);
    find<QComboBox>("pressureMacroMenu")->setCurrentIndex(4);
    find<QComboBox>("timbreMacroMenu")->setCurrentIndex(8);
    const KeySettings chosen{.bendSemitones = 12, .mpe = false, .pressureMacro = 4, .timbreMacro = 8};
    EXPECT_EQ(playing.settings(), chosen);
}

} // namespace
