// Controllers at the window, as the pointer, and the page on which they are learned.

#include "ui/keyboard/ControllerActions.h"
#include "ui/WindowFixture.h"
#include "ui/keyboard/ControllerPage.h"

#include <QComboBox>
#include <QSignalSpy>
#include <QTest>
#include <QTreeWidget>

namespace {

using E = OrloEvent;

ControllerTarget target(const char* id)
{
    return ControllerTarget::fromId(QLatin1StringView(id));
}

class Controllers : public WindowFixture
{
protected:
    Controllers() { commands(); }

    /// One controller for one target, from now on.
    void learn(const char* id)
    {
        ControllerMap map;
        map.learn(knob, target(id));
        actions->setMap(map);
    }
    /// What the window queues for these values, each in a turn of its own.
    QList<Command> send(const QList<int>& values)
    {
        QList<Command> all;
        for (const int value : values) {
            actions->take(knob, value);
            QCoreApplication::sendPostedEvents();
            all += commands();
        }
        return all;
    }

    const ControllerSource knob{QStringLiteral("in"), 0, 20};
    ControllerActions* actions = new ControllerActions(window.get());
};

TEST_F(Controllers, MoveTheSlidersThatThePointerMoves)
{
    // From the bottom, and the command's value at the end of a full turn.
    const std::tuple<const char*, const char*, E::Type> rows[] = {
        {"macro1", "macroSlider1", E::Macro1Set},
        {"volume", "volumeSlider", E::MasterVolumeSet},
        {"glissando", "glissSliderBig", E::GlissOneSet},
        {"fineGlissando", "glissFineSliderBig", E::GlissTwoSet},
    };
    for (const auto& [id, name, type] : rows) {
        learn(id);
        slider(name)->setValue(slider(name)->maximum() / 2);
        commands();
        EXPECT_EQ(send({0, 30}), QList<Command>()) << id << ": it is not there yet";
        EXPECT_EQ(send({127}), (QList<Command>{{type, 1.0F}})) << id;
        EXPECT_EQ(send({0}), (QList<Command>{{type, 0.0F}})) << id;
        EXPECT_EQ(send({64}).size(), 1) << id;
        if (target(id).isCentred()) {
            EXPECT_EQ(slider(name)->value(), slider(name)->maximum() / 2);
        }
        slider(name)->setEnabled(false);
        EXPECT_EQ(send({70, 127}), QList<Command>()) << id;
    }
}

TEST_F(Controllers, OfAFloodOnlyTheLastValueMovesTheSlider)
{
    learn("volume");
    slider("volumeSlider")->setValue(60);
    commands();
    for (int value = 0; value <= 100'000; ++value)
        actions->take(knob, value % 128);
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(commands(), QList<Command>()) << "it ends at 32, below the slider's place, where it began";
    actions->take(knob, 100);
    actions->take(knob, 0);
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(commands(), (QList<Command>{{E::MasterVolumeSet, 0.0F}})) << "passed on the way";
}

TEST_F(Controllers, PressAButtonOnceForEachRise)
{
    const QList<int> turn{0, 40, 63, 64, 90, 127, 100, 64, 20, 70, 0};
    learn("up3");
    EXPECT_EQ(send(turn), (QList<Command>{{E::TransposeByPrimeStep, 3.0F}, {E::TransposeByPrimeStep, 3.0F}}));
    for (int press = 0; press < 50'000; ++press) {
        actions->take(knob, 127);
        actions->take(knob, 0);
    }
    QCoreApplication::sendPostedEvents();
    EXPECT_LE(commands().size(), 16) << "of a flood";
    learn("down31");
    EXPECT_EQ(send({127}), (QList<Command>{{E::TransposeByPrimeStep, -31.0F}}));

    orlo.onNoteToggled(OrloRatio(1, 1), true);
    player.noteOn(OrloRatio(1, 1));
    settle();
    click("chordStoreToButton");
    learn("chord7");
    send({127});
    EXPECT_FALSE(chords.isChordEmpty(7));

    auto* menu = find<QComboBox>("patchMenu");
    const int before = menu->currentIndex();
    learn("patchUp");
    send({127, 0, 127});
    EXPECT_EQ(menu->currentIndex(), (before + 2) % menu->count());
}

TEST_F(Controllers, ThePageLearnsFromTheNextOneThatMoves)
{
    ControllerPage page;
    page.show();
    const QSignalSpy changes(&page, &ControllerPage::mapChanged);
    auto* learnButton = page.findChild<QPushButton*>(QStringLiteral("controllerLearnButton"));
    auto* list = page.findChild<QTreeWidget*>();
    auto* menu = page.findChild<QComboBox*>();
    page.take(knob, 3);
    EXPECT_TRUE(page.map().entries().isEmpty()) << "nobody asked";
    menu->setCurrentText(QStringLiteral("Chord 12"));
    learnButton->click();
    page.take(knob, 3);
    page.take({QStringLiteral("in"), 0, 21}, 3); // the next one that moves is none of it
    EXPECT_EQ(page.map().entries(), (QList<ControllerMap::Entry>{{knob, target("chord12")}}));
    EXPECT_EQ(list->topLevelItemCount(), 1);
    EXPECT_EQ(changes.count(), 1);

    learnButton->click();
    page.hide();
    page.show();
    page.take({QStringLiteral("in"), 0, 21}, 3);
    EXPECT_EQ(changes.count(), 1) << "a page that was closed waits no longer";
    list->setCurrentItem(list->topLevelItem(0));
    page.findChild<QPushButton*>(QStringLiteral("controllerRemoveButton"))->click();
    EXPECT_TRUE(page.map().entries().isEmpty());
    EXPECT_EQ(list->topLevelItemCount(), 0);
    EXPECT_EQ(changes.count(), 2);
}

} // namespace
