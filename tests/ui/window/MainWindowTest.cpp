#include "ui/WindowFixture.h"
#include "ui/dialogs/HelpDialog.h"
#include "ui/lattice/OrloView.h"
#include "ui/panel/MenuButton.h"
#include "ui/panel/PanelScroll.h"
#include "ui/window/FrameFit.h"

#include <QLabel>
#include <QMenu>
#include <QScreen>
#include <QScrollBar>
#include <QTest>
#include <QTextBrowser>
#include <QWheelEvent>

using namespace Qt::StringLiterals;

using MainWindowTest = WindowFixture;

TEST_F(MainWindowTest, FitsASmallScreenAndKeepsTheKeys)
{
    EXPECT_EQ(window->minimumSizeHint().boundedTo(QSize(1018, 670)), window->minimumSizeHint());
    const QStringList withFocus{u"grapesViewButton"_s, u"circlesViewButton"_s, u"expandOrloButton"_s};
    for (const QPushButton* each : window->centralWidget()->findChildren<QPushButton*>()) {
        const QString name = each->objectName();
        EXPECT_EQ(each->focusPolicy() != Qt::NoFocus, withFocus.contains(name)) << name.toStdString();
    }
    for (const QString& name : withFocus) {
        click(qPrintable(name));
        EXPECT_EQ(window->focusWidget(), window.get()) << name.toStdString();
    }
}

TEST(FrameFit, AFrameLargerThanTheScreenIsCutAndMovedIntoIt)
{
    const QRect room(0, 20, 1280, 780); // below a bar
    const std::tuple<QRect, QPoint, QSize> rows[] = {
        // the frame, 5 and 30 thick; where it goes, and the window in it
        {{300, 100, 1290, 774}, {0, 26}, {1270, 739}},
        {{40, 0, 1280, 800}, {0, 20}, {1270, 745}},
        {{1200, 700, 900, 600}, {1200, 700}, {890, 565}},
    };
    for (const auto& [frame, pos, size] : rows) {
        const framefit::Place place = framefit::inside(room, frame, frame.size() - QSize(10, 35));
        EXPECT_EQ(place.pos, pos);
        EXPECT_EQ(place.size, size);
    }
}

TEST_F(MainWindowTest, PanelsScrollWhereTheRoomEnds)
{
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    auto* lower = find<QWidget>("lowerFrame")->findChild<PanelScroll*>();
    auto* left = find<QWidget>("leftFrame")->findChild<PanelScroll*>();
    const int leftWidth = left->sizeHint().width();
    const std::tuple<QSize, bool, bool> rows[] = {
        // of the window, does the lower frame scroll, does the left one
        {{1270, 730}, false, false}, {{1018, 670}, true, false},  {{900, 530}, true, true},
        {{1018, 670}, true, false},  {{1270, 730}, false, false},
    };
    for (const auto& [size, lowerScrolls, leftScrolls] : rows) {
        window->resize(size);
        QTest::qWait(20);
        EXPECT_EQ(window->size(), size);
        EXPECT_EQ(lower->horizontalScrollBar()->isVisible(), lowerScrolls) << size.width();
        EXPECT_EQ(left->verticalScrollBar()->isVisible(), leftScrolls) << size.height();
        EXPECT_LE(find<QWidget>("lowerFrame")->height(), 72);
        EXPECT_EQ(left->width(), leftWidth);
        // Nothing is cut off across the direction.
        EXPECT_LE(lower->widget()->height(), lower->viewport()->height());
        EXPECT_LE(left->widget()->width(), left->viewport()->width());
    }
    window->resize(900, 530);
    QTest::qWait(20);
    QWheelEvent turn({5, 5}, lower->mapToGlobal(QPointF(5, 5)), {}, {0, -2400}, Qt::NoButton, Qt::NoModifier,
                     Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(lower->viewport(), &turn);
    EXPECT_EQ(lower->horizontalScrollBar()->value(), lower->horizontalScrollBar()->maximum());
}

TEST_F(MainWindowTest, SlidersQueueTheirFractionAndFollowThePlayerWithoutEcho)
{
    slider("volumeSlider")->setValue(70);
    slider("glissSliderBig")->setValue(300);
    slider("glissFineSliderBig")->setValue(0);
    slider("macroSlider1")->setValue(15);
    slider("macroSlider8")->setValue(90);
    EXPECT_EQ(commands(), QList<Command>({{OrloEvent::MasterVolumeSet, 0.5F},
                                          {OrloEvent::GlissOneSet, 0.75F},
                                          {OrloEvent::GlissTwoSet, 0.0F},
                                          {OrloEvent::Macro1Set, 0.125F},
                                          {OrloEvent::Macro8Set, 0.75F}}));
    press(Qt::Key_G, Qt::AltModifier);
    EXPECT_EQ(commands(), QList<Command>({{OrloEvent::GlissTwoSet, 0.5F}}));
    click("glissResetButton");
    EXPECT_EQ(commands(), QList<Command>({{OrloEvent::GlissOneSet, 0.5F}}));

    // 140 x 0.375 is 52.5, away from zero.
    emit player.volumeChanged(0.375F);
    emit player.macroValueChanged(2, 0.7541F); // 90.49
    report();
    EXPECT_EQ(slider("volumeSlider")->value(), 53);
    EXPECT_EQ(slider("macroSlider2")->value(), 90);
    for (const short which : {2, 1, 0}) {
        slider("glissSliderBig")->setValue(7);
        slider("glissFineSliderBig")->setValue(7);
        drain();
        emit player.resetGlissSliders(which);
        report();
        EXPECT_EQ(slider("glissSliderBig")->value(), which == 2 ? 7 : 200);
        EXPECT_EQ(slider("glissFineSliderBig")->value(), which == 1 ? 7 : 200);
    }
    EXPECT_TRUE(commands().isEmpty());
}

TEST_F(MainWindowTest, MacroNamesAndDefaultsComeFromThePatch)
{
    emit player.macroNamesReceived({u"aTTACK"_s, u"x"_s});
    emit player.macroDefaultsReceived({0.25F, -1.0F});
    report();
    EXPECT_EQ(find<QLabel>("macroLabel1")->text(), u"Attack");
    EXPECT_EQ(find<QLabel>("macroLabel3")->text(), u"Unused");
    EXPECT_FALSE(slider("macroSlider3")->isEnabled());
    press(Qt::Key_S, Qt::AltModifier);
    EXPECT_EQ(commands(), QList<Command>(2, {OrloEvent::Macro1Set, 0.25F}));
    emit player.setMacroSliders({-1.0F, 0.75F}); // the former patch's
    report();
    EXPECT_EQ(commands(), (QList<Command>{{OrloEvent::Macro2Set, 0.75F}}));
    // A list that is longer than the sliders does no harm.
    emit player.macroDefaultsReceived(QList<float>(20, 0.5F));
    emit player.macroNamesReceived(QStringList(20, u"n"_s));
    report();
    EXPECT_EQ(commands().size(), 8);
}

TEST_F(MainWindowTest, SlidersSnapBackWhileAltIsHeld)
{
    emit player.macroDefaultsReceived({0.33F, -1.0F});
    settle();
    const std::pair<const char*, int> rows[] = {{"macroSlider1", 39}, // int(120 x 0.33)
                                                {"macroSlider2", 90}, // no default
                                                {"macroSlider7", 90}, // beyond the list
                                                {"glissSliderBig", 200}, {"glissFineSliderBig", 200},
                                                {"volumeSlider", 105}};
    const auto expectBack = [&](bool alt) {
        for (const auto& [name, back] : rows) {
            slider(name)->setValue(90);
            emit slider(name)->sliderReleased();
            EXPECT_EQ(slider(name)->value(), alt ? back : 90) << name;
        }
    };
    expectBack(false);
    QTest::keyPress(window.get(), Qt::Key_Alt);
    expectBack(true);
    QTest::keyRelease(window.get(), Qt::Key_Alt);
    expectBack(false);
    QTest::keyPress(window.get(), Qt::Key_Alt);
    QEvent away(QEvent::ActivationChange); // to another window, which gets the release
    QCoreApplication::sendEvent(window.get(), &away);
    expectBack(false);
}

TEST_F(MainWindowTest, MonoAndPolyChangeOnlyWhenThePlayerAnswers)
{
    for (const bool mono : {true, false, true}) {
        const char* const name = mono ? "monoButton" : "polyButton";
        const char* const other = mono ? "polyButton" : "monoButton";
        click(name);
        EXPECT_TRUE(button(other)->isChecked());
        EXPECT_EQ(commands(), (QList<Command>{{OrloEvent::MonophonicSet, mono ? 1.0F : 0.0F}}));
        report();
        EXPECT_FALSE(button(other)->isChecked());
        click(name); // on already: stays on, and nothing is queued
        EXPECT_TRUE(button(name)->isChecked());
        EXPECT_TRUE(commands().isEmpty());
    }
}

TEST_F(MainWindowTest, DisplaySwitchesWriteTheOptions)
{
    const auto options = [this] {
        return std::tuple(settings.circlesView, settings.absRelView, settings.soundGrapeNotation);
    };
    const std::tuple<const char*, const char*, std::tuple<bool, int, int>> rows[] = {
        // clicked, goes out, options
        {"circlesViewButton", "grapesViewButton", {true, 1, 0}},
        {"circlesViewButton", "grapesViewButton", {true, 1, 0}},
        {"grapesViewButton", "circlesViewButton", {false, 1, 0}},
        {"relativeModeButton", "absoluteModeButton", {false, 0, 0}},
        {"absoluteModeButton", "relativeModeButton", {false, 1, 0}},
        {"soundgrapeColourButton", "soundgrapeBWButton", {false, 1, 1}},
        {"soundgrapeBWButton", "soundgrapeColourButton", {false, 1, 2}},
        {"soundgrapeColourButton", "soundgrapeBWButton", {false, 1, 1}},
    };
    for (const auto& [name, other, expected] : rows) {
        click(name);
        EXPECT_TRUE(button(name)->isChecked() && !button(other)->isChecked()) << name;
        EXPECT_EQ(options(), expected) << name;
        EXPECT_EQ(window->orloView()->view() == OrloLeavesWidget::Circles, settings.circlesView);
    }
    click("normalizeRatiosButton");
    EXPECT_FALSE(settings.ratiosWithinOctave);

    settings.circlesView = true;
    settings.absRelView = 2; // chosen by no button
    openWindow();
    EXPECT_EQ(window->orloView()->view(), OrloLeavesWidget::Circles);
    EXPECT_TRUE(button("circlesViewButton")->isChecked() && button("absoluteModeButton")->isChecked());
}

TEST_F(MainWindowTest, HelmholtzEllisAndTheSoundgrapeTakeTurns)
{
    const auto entry = [this] {
        for (QAction* each : window->actions()) {
            if (each->text() == u"Helmholtz-Ellis")
                return each;
        }
        return static_cast<QAction*>(nullptr);
    };
    for (const auto& [name, grape] : {std::pair{"soundgrapeColourButton", 1}, {"soundgrapeBWButton", 2}}) {
        entry()->trigger();
        EXPECT_TRUE(entry()->isChecked() && settings.helmholtzEllis && settings.soundGrapeNotation == 0);
        click(name);
        EXPECT_FALSE(entry()->isChecked() || settings.helmholtzEllis);
        EXPECT_EQ(settings.soundGrapeNotation, grape);
    }
    entry()->trigger();
    EXPECT_FALSE(button("soundgrapeBWButton")->isChecked());
    openWindow();
    EXPECT_TRUE(entry()->isChecked());
    entry()->trigger();
    EXPECT_FALSE(entry()->isChecked() || settings.helmholtzEllis);
}

TEST_F(MainWindowTest, ButtonsShowTheGlissSlidersAndGiveTheLatticeAllTheRoom)
{
    window->show();
    const auto* view = window->orloView();
    const QSize before = view->size();
    for (const bool shown : {false, true}) {
        click("expandOrloButton");
        QTest::qWait(20);
        EXPECT_EQ(find<QWidget>("topFrame")->isVisible(), shown);
        EXPECT_EQ(view->height() > before.height(), !shown);
        EXPECT_EQ(view->width() > before.width(), !shown);
    }

    const char* const key = ""; // Ctrl+G: both away, or back as they were
    const std::tuple<const char*, bool, bool> rows[] = {
        {key, false, false}, // nothing to come back to yet
        {"glissFineButton", false, true},
        {key, false, false},
        {key, false, true},
        {"glissButton", true, true},
        {"glissFineButton", true, false},
    };
    for (const auto& [clicked, one, two] : rows) {
        if (clicked == key)
            press(Qt::Key_G, Qt::ControlModifier);
        else
            click(clicked);
        EXPECT_EQ(slider("glissSliderBig")->isVisible(), one) << clicked;
        EXPECT_EQ(slider("glissFineSliderBig")->isVisible(), two) << clicked;
    }
}

TEST_F(MainWindowTest, ReadoutShowsStepsAndFrequencies)
{
    const auto line = [this](const char* name) { return find<QLabel>(name)->text(); };
    transposeBy(QList<int>(60, 3)); // far more than the label holds
    window->show();
    window->resize(1400, 800); // and then there is a little room
    QTest::qWait(20);
    EXPECT_TRUE(line("infoLabel1").contains(QChar(0x2026)));
    orlo.onTransposed(OrloRatio(1, 1), 0);
    EXPECT_TRUE(line("infoLabel2").endsWith(u"[= 1/1 Frequency]: 440.000 Hz"_s));
    transposeBy({3, 5}); // 440 x 15/8
    EXPECT_TRUE(line("infoLabel1").endsWith(u" /3/5"_s));
    EXPECT_TRUE(line("infoLabel2").contains(u": 825.000 Hz  "_s));
}

TEST_F(MainWindowTest, MenuEntriesAndTheirKeysWorkWhateverIsShown)
{
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    int done = 0;
    auto* menu = find<MenuButton>("menuButton");
    menu->add(u"Something"_s, Qt::Key_F7, [&done] { ++done; });
    QStringList texts;
    for (const QAction* entry : menu->findChild<QMenu*>()->actions())
        texts.append(entry->text());
    EXPECT_EQ(texts, QStringList({u"Help and keys"_s, u"First steps"_s, u"Harmony"_s, u"Helmholtz-Ellis"_s,
                                  u"Chord to file..."_s, u"Scala file to chord..."_s, u"Something"_s,
                                  QString(), u"Full screen"_s, u"Quit"_s}));

    click("expandOrloButton"); // the panel with the button goes
    QTest::keyClick(window.get(), Qt::Key_F7);
    EXPECT_EQ(done, 1);
    QTest::keyClick(window.get(), Qt::Key_F11);
    EXPECT_TRUE(window->isFullScreen());
    press(Qt::Key_Escape); // means what it always does
    EXPECT_EQ(commands(), QList<Command>({{OrloEvent::AllNotesOff, 1.0F}}));
    EXPECT_TRUE(window->isFullScreen());
    QTest::keyClick(window.get(), Qt::Key_F11);
    EXPECT_FALSE(window->isFullScreen());

    QTest::keyClick(window.get(), Qt::Key_F1);
    auto* help = window->findChild<HelpDialog*>();
    ASSERT_TRUE(help);
    const QString text = help->findChild<QTextBrowser*>()->toPlainText();
    for (const char* press : {"Ctrl+Alt+press", "1 ... 0", "Alt+1 ... Alt+0", "Alt+X, Ctrl+Alt+Z",
                              "=, Backspace", "Up, Down", "Ctrl+Esc", "Ctrl+,", "F7"})
        EXPECT_TRUE(text.contains(QLatin1StringView(press))) << press;
    QTest::keyClick(help, Qt::Key_Q, Qt::ControlModifier); // from any window of the program
    EXPECT_FALSE(window->isVisible());
}
