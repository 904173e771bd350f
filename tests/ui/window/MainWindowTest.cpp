#include "sound/OrloNoteEvent.h"
#include "support/EngineClock.h"
#include "support/LogCatcher.h"
#include "ui/lattice/OrloView.h"
#include "ui/WindowFixture.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QTest>

#include <algorithm>

using MainWindowTest = WindowFixture;

TEST_F(MainWindowTest, FitsASmallScreenAndKeepsTheKeys)
{
    EXPECT_EQ(window->minimumSizeHint().boundedTo(QSize(1280, 800)), window->minimumSizeHint());
    const QStringList withFocus{QStringLiteral("grapesViewButton"), QStringLiteral("circlesViewButton"),
                                QStringLiteral("expandOrloButton")};
    for (const QPushButton* each : window->findChildren<QPushButton*>()) {
        if (each->window() != window.get())
            continue;
        EXPECT_EQ(each->focusPolicy() != Qt::NoFocus, withFocus.contains(each->objectName()))
            << each->objectName().toStdString();
    }
    for (const QString& name : withFocus) {
        click(qPrintable(name));
        EXPECT_EQ(window->focusWidget(), window.get()) << name.toStdString();
    }
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
    emit player.macroNamesReceived({QStringLiteral("aTTACK"), QStringLiteral("x")});
    emit player.macroDefaultsReceived({0.25F, -1.0F});
    report();
    EXPECT_EQ(find<QLabel>("macroLabel1")->text(), QStringLiteral("Attack"));
    EXPECT_EQ(find<QLabel>("macroLabel3")->text(), QStringLiteral("Unused"));
    EXPECT_FALSE(slider("macroSlider3")->isEnabled());
    press(Qt::Key_S, Qt::AltModifier);
    EXPECT_EQ(commands(), QList<Command>(2, {OrloEvent::Macro1Set, 0.25F}));
    // A list that is longer than the sliders does no harm.
    emit player.macroDefaultsReceived(QList<float>(20, 0.5F));
    emit player.macroNamesReceived(QStringList(20, QStringLiteral("n")));
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
    for (const bool alt : {false, true, false}) {
        if (alt)
            QTest::keyPress(window.get(), Qt::Key_Alt);
        for (const auto& [name, back] : rows) {
            slider(name)->setValue(90);
            emit slider(name)->sliderReleased();
            EXPECT_EQ(slider(name)->value(), alt ? back : 90) << name;
        }
        if (alt)
            QTest::keyRelease(window.get(), Qt::Key_Alt);
    }
}

TEST_F(MainWindowTest, MonoAndPolyChangeOnlyWhenThePlayerAnswers)
{
    for (const bool mono : {true, false}) {
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
    click("circlesViewButton");
    click("circlesViewButton"); // stays lit
    EXPECT_EQ(window->orloView()->view(), OrloLeavesWidget::Circles);
    EXPECT_TRUE(button("circlesViewButton")->isChecked());
    EXPECT_FALSE(button("grapesViewButton")->isChecked());
    click("grapesViewButton");
    EXPECT_FALSE(settings.circlesView);

    click("relativeModeButton");
    EXPECT_EQ(settings.absRelView, 0);
    click("absoluteModeButton");
    EXPECT_EQ(settings.absRelView, 1);
    EXPECT_FALSE(button("relativeModeButton")->isChecked());
    click("normalizeRatiosButton");
    EXPECT_FALSE(settings.ratiosWithinOctave);
    const std::pair<const char*, int> clicks[] = {
        {"soundgrapeColourButton", 1}, {"soundgrapeBWButton", 2}, {"soundgrapeColourButton", 1}};
    for (const auto& [name, notation] : clicks) {
        click(name);
        EXPECT_EQ(settings.soundGrapeNotation, notation) << name;
        EXPECT_EQ(button("soundgrapeColourButton")->isChecked(), notation == 1);
        EXPECT_EQ(button("soundgrapeBWButton")->isChecked(), notation == 2);
    }
}

TEST_F(MainWindowTest, ExpandingLeavesTheRoomOfPanelAndStacksToTheLattice)
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
}

TEST_F(MainWindowTest, ReadoutShowsStepsAndFrequencies)
{
    window->resize(1280, 800);
    window->show();
    QTest::qWait(20);
    const auto line = [this](const char* name) { return find<QLabel>(name)->text(); };
    EXPECT_TRUE(line("infoLabel2").endsWith(QStringLiteral("[= 1/1 Frequency]: 440.000 Hz")));
    transposeBy({3, 5}); // 440 x 15/8
    EXPECT_TRUE(line("infoLabel1").endsWith(QStringLiteral(" /3/5")));
    EXPECT_TRUE(line("infoLabel2").contains(QStringLiteral(": 825.000 Hz  ")));

    transposeBy(QList<int>(60, 3)); // far more than the label holds
    EXPECT_TRUE(line("infoLabel1").contains(QChar(0x2026)));
}

TEST_F(MainWindowTest, KeysQueueCommands)
{
    constexpr auto alt = Qt::AltModifier;
    constexpr auto control = Qt::ControlModifier;
    constexpr auto shift = Qt::ShiftModifier;
    const std::tuple<Qt::Key, Qt::KeyboardModifiers, OrloEvent::Type> rows[] = {
        {Qt::Key_A, alt, OrloEvent::NodesSelectAllSounding},
        {Qt::Key_A, alt | shift, OrloEvent::None},
        {Qt::Key_N, alt | control | shift, OrloEvent::NodesResetAllDeselect},
        {Qt::Key_N, alt, OrloEvent::NodesResetAll},
        {Qt::Key_R, alt | control, OrloEvent::NodesResetAllAndControlsDeselect},
        {Qt::Key_R, alt | shift, OrloEvent::NodesResetAllAndControls},
        {Qt::Key_T, alt, OrloEvent::NodesToggleAllSelected},
        {Qt::Key_X, alt, OrloEvent::NodesResetSelectedDeselect},
        {Qt::Key_Z, alt | control, OrloEvent::NodesResetSelectedDeselect},
        {Qt::Key_Z, alt, OrloEvent::NodesResetSelected},
        {Qt::Key_Escape, control | alt, OrloEvent::AllNotesOffForced},
        {Qt::Key_Escape, alt, OrloEvent::NodesDeselectAll},
        {Qt::Key_Escape, shift, OrloEvent::AllNotesOff},
        {Qt::Key_M, shift, OrloEvent::MonophonicSet},
        {Qt::Key_P, Qt::NoModifier, OrloEvent::MonophonicSet},
    };
    for (const auto& [key, modifiers, type] : rows) {
        press(key, modifiers);
        const QList<Command> queued = commands();
        EXPECT_EQ(queued.size(), type == OrloEvent::None ? 0 : 1) << key << ' ' << modifiers;
        EXPECT_EQ(queued.value(0, {OrloEvent::None, 0.0F}).first, type) << key << ' ' << modifiers;
        report();
    }
}

TEST_F(MainWindowTest, VolumeKeysStopAtTheirEnds)
{
    QSlider* volume = slider("volumeSlider");
    const std::tuple<Qt::Key, Qt::KeyboardModifiers, int, int> rows[] = {
        {Qt::Key_K, Qt::NoModifier, 1, 1},       {Qt::Key_K, Qt::NoModifier, 2, 0},
        {Qt::Key_K, Qt::ControlModifier, 90, 0}, {Qt::Key_O, Qt::NoModifier, 138, 140},
        {Qt::Key_O, Qt::NoModifier, 139, 139},   {Qt::Key_O, Qt::ControlModifier, 3, 105}};
    for (const auto& [key, modifiers, before, after] : rows) {
        volume->setValue(before);
        QTest::keyClick(window.get(), key, modifiers);
        EXPECT_EQ(volume->value(), after) << key << ' ' << before;
    }
}

TEST_F(MainWindowTest, ArrowKeysChooseARowAndXSwitchesItsPrime)
{
    const std::tuple<Qt::Key, int, Qt::Key, OrloEvent::Type, float> rows[] = {
        {Qt::Key_Up, 1, Qt::Key_Right, OrloEvent::TransposeByPrimeStep, 2.0F}, // the first row already
        {Qt::Key_Down, 3, Qt::Key_X, OrloEvent::PrimeEnabledToggle, 7.0F},
        {Qt::Key_Down, 12, Qt::Key_Left, OrloEvent::TransposeByPrimeStep, -31.0F},
        {Qt::Key_Up, 10, Qt::Key_Backspace, OrloEvent::TransposeByPrimeStep, 0.0F},
        {Qt::Key_Down, 1, Qt::Key_Right, OrloEvent::TransposeByPrimeStep, 3.0F}};
    for (const auto& [move, times, act, type, value] : rows) {
        for (int i = 0; i < times; ++i)
            press(move);
        press(act);
        EXPECT_EQ(commands(), (QList<Command>{{type, value}}));
        report();
    }
}

// ---------------------------------------------------------------- the patch menu

class PatchMenuTest : public MainWindowTest
{
protected:
    QComboBox* menu() const { return find<QComboBox>("patchMenu"); }

    void load(const QString& path)
    {
        {
            const EngineClock clock(player);
            window->loadPatch(path);
        }
        settle();
    }

    BoxAnswers boxes;
};

TEST_F(PatchMenuTest, APatchFromElsewhereJoinsTheMenuOnce)
{
    const QString mine = home.path(QStringLiteral("My voice.pd"));
    ASSERT_TRUE(QFile::copy(menu()->currentData().toString(), mine));
    const int count = menu()->count();
    load(mine);
    load(mine);
    EXPECT_EQ(menu()->count(), count + 1);
    EXPECT_EQ(menu()->currentText(), QStringLiteral("My voice"));
    EXPECT_EQ(settings.defaultPatch, QStringLiteral("My voice.pd"));
}

TEST_F(PatchMenuTest, WhatIsNoVoiceIsNamedAndTheFormerPlaysOn)
{
    const QString good = menu()->currentText();
    const OrloNoteEvent note(OrloRatio(1, 1));
    player.queueEventGui(&note);
    settle();
    int toggles = 0;
    QObject::connect(
        &player, &PdPlayer::noteToggled, &player, [&] { ++toggles; }, Qt::DirectConnection);
    home.write(QStringLiteral("no.pd"), "#N canvas 0 0 200 200 12;\n#X obj 1 1 outlet~;\n");
    home.write(QStringLiteral("cut.pd"), "#N canvas 0 0 200 200 12;\n#N canvas 0 0 200 200 s 0;\n");
    QDir().mkpath(home.path(QStringLiteral("folder.pd")));
    const std::pair<const char*, const char*> rows[] = {
        {"no.pd", "no inlet"}, {"cut.pd", "cut short"}, {"folder.pd", "cannot be read"}};
    const LogCatcher quiet;
    for (const auto& [name, reason] : rows) {
        SCOPED_TRACE(name);
        const QString bad = home.path(QLatin1StringView(name));
        load(bad);
        const QString told = boxes.take().value(0);
        EXPECT_TRUE(told.startsWith(QStringLiteral("Failed to load patch %1.").arg(bad)));
        EXPECT_TRUE(told.contains(QLatin1StringView(reason))) << told.toStdString();
        EXPECT_EQ(menu()->currentText(), good);
        EXPECT_TRUE(player.isPatchOpen());
    }
    load(QString()); // the data of "None loaded": nothing happens
    EXPECT_EQ(toggles, 0);

    // What the check cannot foresee: the engine refuses the new one. It takes the former one again, if it
    // takes any.
    static const TestHome* runtime = nullptr;
    static const QByteArray mainPatch = home.read(QStringLiteral("patch/orlo_main.pd"));
    const auto mend = [](QtMsgType, const QMessageLogContext&, const QString& line) {
        if (runtime && line.startsWith(QStringLiteral("Failed to load")))
            runtime->write(QStringLiteral("patch/orlo_main.pd"), mainPatch);
    };
    const QtMessageHandler handler = qInstallMessageHandler(mend);
    for (const bool mended : {true, false}) {
        SCOPED_TRACE(mended);
        runtime = mended ? &home : nullptr;
        home.write(QStringLiteral("patch/orlo_main.pd"),
                   "#N canvas 0 0 200 200 12;\n#N canvas 0 0 200 200 s 0;\n");
        load(menu()->itemData(0).toString());
        EXPECT_EQ(boxes.take().size(), 1);
        EXPECT_EQ(menu()->currentText(), good);
        EXPECT_EQ(player.isPatchOpen(), mended);
    }
    qInstallMessageHandler(handler);
}

TEST_F(PatchMenuTest, SteppingWraps)
{
    menu()->setCurrentIndex(0);
    const EngineClock clock(player);
    button("patchDecButton")->click();
    EXPECT_EQ(menu()->currentIndex(), menu()->count() - 1);
    button("patchIncButton")->click();
    EXPECT_EQ(menu()->currentIndex(), 0);
}
