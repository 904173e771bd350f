#include "support/EngineClock.h"
#include "support/LogCatcher.h"
#include "ui/BoxAnswers.h"
#include "ui/OrloView.h"
#include "ui/WindowFixture.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QStackedWidget>
#include <QTest>

#include <algorithm>

using MainWindowTest = WindowFixture;

TEST_F(MainWindowTest, FitsASmallScreenAndKeepsTheKeys)
{
    EXPECT_LE(window->minimumSizeHint().width(), 1280);
    EXPECT_LE(window->minimumSizeHint().height(), 800);
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
    QList<Command> expected{
        {OrloEvent::MasterVolumeSet, 0.5F}, {OrloEvent::GlissOneSet, 0.75F}, {OrloEvent::GlissTwoSet, 0.0F}};
    for (int i = 0; i < 8; ++i) {
        slider("macroSlider" + QByteArray::number(i + 1))->setValue(15 * (i + 1));
        expected.append(
            {static_cast<OrloEvent::Type>(OrloEvent::Macro1Set + i), static_cast<float>(i + 1) / 8.0F});
    }
    EXPECT_EQ(commands(), expected);
    press(Qt::Key_G, Qt::AltModifier);
    EXPECT_EQ(commands(), QList<Command>({{OrloEvent::GlissTwoSet, 0.5F}}));
    click("glissResetButton");
    EXPECT_EQ(commands(), QList<Command>({{OrloEvent::GlissOneSet, 0.5F}}));

    // 140 x 0.375 is 52.5, away from zero.
    emit player.volumeChanged(0.375F);
    emit player.macroValueChanged(2, 0.7541F); // 90.49
    emit player.macroValueChanged(9, 0.5F);    // no such slider
    report();
    EXPECT_EQ(slider("volumeSlider")->value(), 53);
    EXPECT_EQ(slider("macroSlider2")->value(), 90);
    EXPECT_TRUE(commands().isEmpty());
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

TEST_F(MainWindowTest, MacroNamesAndDefaultsComeFromThePatch)
{
    emit player.macroNamesReceived({QStringLiteral("aTTACK"), QStringLiteral("x")});
    emit player.macroDefaultsReceived({0.25F, -1.0F});
    report();
    const char* const names[] = {"Attack", "X", "Unused", "Unused", "Unused", "Unused", "Unused", "Unused"};
    for (int i = 0; i < 8; ++i) {
        const QByteArray number = QByteArray::number(i + 1);
        EXPECT_EQ(find<QLabel>("macroLabel" + number)->text(), QLatin1StringView(names[i]));
        EXPECT_EQ(slider("macroSlider" + number)->isEnabled(), i < 2);
    }
    EXPECT_EQ(commands(), (QList<Command>{{OrloEvent::Macro1Set, 0.25F}}));
    press(Qt::Key_S, Qt::AltModifier);
    EXPECT_EQ(commands(), (QList<Command>{{OrloEvent::Macro1Set, 0.25F}}));
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
    const struct
    {
        const char* name;
        int moved;
        int back;
    } rows[] = {{"macroSlider1", 100, 39},  // int(120 x 0.33)
                {"macroSlider2", 100, 100}, // no default
                {"macroSlider7", 90, 90},   // beyond the list
                {"glissSliderBig", 10, 200}, {"glissFineSliderBig", 10, 200}, {"volumeSlider", 7, 105}};
    for (const bool alt : {false, true, false}) {
        if (alt)
            QTest::keyPress(window.get(), Qt::Key_Alt);
        for (const auto& row : rows) {
            slider(row.name)->setValue(row.moved);
            emit slider(row.name)->sliderReleased();
            EXPECT_EQ(slider(row.name)->value(), alt ? row.back : row.moved) << row.name;
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
    EXPECT_TRUE(settings.circlesView);
    EXPECT_EQ(find<QStackedWidget>("centralStack")->currentIndex(), 0);
    EXPECT_TRUE(button("circlesViewButton")->isChecked());
    EXPECT_FALSE(button("grapesViewButton")->isChecked());
    click("grapesViewButton");
    EXPECT_FALSE(settings.circlesView);
    EXPECT_EQ(window->orloView()->view(), OrloLeavesWidget::Grapes);

    click("relativeModeButton");
    EXPECT_EQ(settings.absRelView, 0);
    EXPECT_FALSE(button("absoluteModeButton")->isChecked());
    click("absoluteModeButton");
    EXPECT_EQ(settings.absRelView, 1);
    click("normalizeRatiosButton");
    EXPECT_FALSE(settings.ratiosWithinOctave);
    const std::pair<const char*, int> clicks[] = {
        {"soundgrapeColourButton", 1}, {"soundgrapeBWButton", 2}, {"soundgrapeColourButton", 1},
        {"soundgrapeColourButton", 0}, {"soundgrapeBWButton", 2}, {"soundgrapeBWButton", 0}};
    for (const auto& [name, notation] : clicks) {
        click(name);
        EXPECT_EQ(settings.soundGrapeNotation, notation) << name;
        EXPECT_EQ(button("soundgrapeColourButton")->isChecked(), notation == 1);
        EXPECT_EQ(button("soundgrapeBWButton")->isChecked(), notation == 2);
    }
    EXPECT_TRUE(commands().isEmpty());
}

TEST_F(MainWindowTest, ExpandingLeavesTheRoomOfPanelAndStacksToTheLattice)
{
    window->show();
    const auto* view = window->orloView();
    const auto* layer = view->parentWidget()->parentWidget();
    const int before = view->height();
    for (const bool shown : {false, true}) {
        click("expandOrloButton");
        QTest::qWait(20);
        EXPECT_EQ(find<QWidget>("topFrame")->isVisible(), shown);
        EXPECT_EQ(view->height() > before, !shown);
        EXPECT_EQ(view->width() == layer->width() - 12, !shown) << "the margins of the empty frame stay";
    }
}

TEST_F(MainWindowTest, ReadoutShowsStepsAndFrequencies)
{
    window->resize(1280, 800);
    window->show();
    QTest::qWait(20);
    const auto line = [this](const char* name) { return find<QLabel>(name)->text(); };
    EXPECT_EQ(line("infoLabel1"), QStringLiteral("Shifted prime steps: /"));
    EXPECT_EQ(line("infoLabel2"), QStringLiteral("Frequency of central node [= 1/1 Frequency]: 440.000 Hz"));
    transposeBy({3, 5}); // 440 x 15/8
    EXPECT_EQ(line("infoLabel1"), QStringLiteral("Shifted prime steps: /3/5"));
    EXPECT_EQ(line("infoLabel2"),
              QStringLiteral("Frequency of central node: 825.000 Hz        1/1 Frequency: 440.000 Hz"));

    transposeBy(QList<int>(60, 3)); // far more than the label holds
    EXPECT_TRUE(line("infoLabel1").contains(QChar(0x2026)));
    EXPECT_LE(find<QLabel>("infoLabel1")->fontMetrics().horizontalAdvance(line("infoLabel1")),
              find<QLabel>("infoLabel1")->width());
}

TEST_F(MainWindowTest, KeysQueueCommands)
{
    constexpr auto alt = Qt::AltModifier;
    constexpr auto control = Qt::ControlModifier;
    constexpr auto shift = Qt::ShiftModifier;
    const struct
    {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        OrloEvent::Type type; // None: nothing is queued
    } rows[] = {
        {Qt::Key_A, alt, OrloEvent::NodesSelectAllSounding},
        {Qt::Key_A, alt | shift, OrloEvent::None},
        {Qt::Key_N, alt | control | shift, OrloEvent::NodesResetAllDeselect},
        {Qt::Key_N, alt, OrloEvent::NodesResetAll},
        {Qt::Key_R, alt | control, OrloEvent::NodesResetAllAndControlsDeselect},
        {Qt::Key_R, alt | shift, OrloEvent::NodesResetAllAndControls},
        {Qt::Key_T, alt, OrloEvent::NodesToggleAllSelected},
        {Qt::Key_T, Qt::NoModifier, OrloEvent::None},
        {Qt::Key_X, alt, OrloEvent::NodesResetSelectedDeselect},
        {Qt::Key_Z, alt | control, OrloEvent::NodesResetSelectedDeselect},
        {Qt::Key_Z, alt, OrloEvent::NodesResetSelected},
        {Qt::Key_Z, Qt::NoModifier, OrloEvent::None},
        {Qt::Key_Escape, control | alt, OrloEvent::AllNotesOffForced},
        {Qt::Key_Escape, alt, OrloEvent::NodesDeselectAll},
        {Qt::Key_Escape, shift, OrloEvent::AllNotesOff},
        {Qt::Key_M, shift, OrloEvent::MonophonicSet},
        {Qt::Key_P, Qt::NoModifier, OrloEvent::MonophonicSet},
        {Qt::Key_Right, Qt::NoModifier, OrloEvent::TransposeByPrimeStep},
        {Qt::Key_Left, Qt::NoModifier, OrloEvent::TransposeByPrimeStep},
        {Qt::Key_Q, Qt::NoModifier, OrloEvent::None},
    };
    for (const auto& row : rows) {
        press(row.key, row.modifiers);
        const QList<Command> queued = commands();
        ASSERT_EQ(queued.size(), row.type == OrloEvent::None ? 0 : 1) << row.key << ' ' << row.modifiers;
        if (!queued.isEmpty()) {
            EXPECT_EQ(queued.first().first, row.type) << row.key << ' ' << row.modifiers;
        }
        report();
    }
}

TEST_F(MainWindowTest, VolumeKeysStopAtTheirEnds)
{
    QSlider* volume = slider("volumeSlider");
    const struct
    {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        int before;
        int after;
    } rows[] = {{Qt::Key_K, Qt::NoModifier, 1, 1},       {Qt::Key_K, Qt::NoModifier, 2, 0},
                {Qt::Key_K, Qt::ControlModifier, 90, 0}, {Qt::Key_O, Qt::NoModifier, 138, 140},
                {Qt::Key_O, Qt::NoModifier, 139, 139},   {Qt::Key_O, Qt::ControlModifier, 3, 105}};
    for (const auto& row : rows) {
        volume->setValue(row.before);
        QTest::keyClick(window.get(), row.key, row.modifiers);
        EXPECT_EQ(volume->value(), row.after) << row.key << ' ' << row.before;
    }
}

TEST_F(MainWindowTest, ArrowKeysChooseARowAndXSwitchesItsPrime)
{
    const struct
    {
        Qt::Key move;
        int times;
        Qt::Key act;
        OrloEvent::Type type;
        float value;
    } rows[] = {
        {Qt::Key_Up, 1, Qt::Key_Right, OrloEvent::TransposeByPrimeStep, 2.0F}, // the first row already
        {Qt::Key_Down, 3, Qt::Key_X, OrloEvent::PrimeEnabledToggle, 7.0F},
        {Qt::Key_Down, 12, Qt::Key_Left, OrloEvent::TransposeByPrimeStep, -31.0F},
        {Qt::Key_Up, 10, Qt::Key_Backspace, OrloEvent::TransposeByPrimeStep, 0.0F},
        {Qt::Key_Down, 1, Qt::Key_Right, OrloEvent::TransposeByPrimeStep, 3.0F}};
    for (const auto& row : rows) {
        for (int i = 0; i < row.times; ++i)
            press(row.move);
        press(row.act);
        EXPECT_EQ(commands(), (QList<Command>{{row.type, row.value}}));
        report();
    }
}

TEST_F(MainWindowTest, ModeButtonsExcludeEachOther)
{
    const std::pair<const char*, int> clicks[] = {{"toggleModeButton", 1},      {"shiftModeButton", 2},
                                                  {"removeModeButton", 3},      {"selectApplyModeButton", 4},
                                                  {"selectApplyModeButton", 0}, {"shiftModeButton", 2}};
    for (const auto& [name, mode] : clicks) {
        button(name)->click();
        EXPECT_EQ(services.pressMode, mode) << name;
    }
    EXPECT_FALSE(button("toggleModeButton")->isChecked());
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

TEST_F(PatchMenuTest, ListsThePatchesByNameAndLoadsSineFirst)
{
    QStringList names;
    for (int i = 0; i < menu()->count(); ++i) {
        names.append(menu()->itemText(i));
        EXPECT_TRUE(menu()->itemData(i).toString().endsWith(u'/' + names.last() + QStringLiteral(".pd")));
    }
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
    EXPECT_EQ(menu()->currentText(), QStringLiteral("Sine"));
    EXPECT_EQ(settings.defaultPatch, QStringLiteral("Sine.pd"));
    EXPECT_TRUE(player.isPatchOpen());
    EXPECT_EQ(find<QLabel>("macroLabel1")->text(), QStringLiteral("Level"));
}

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
    EXPECT_EQ(home.read(QStringLiteral("patch/orlo_voice.pd")), home.read(QStringLiteral("My voice.pd")));
}

TEST_F(PatchMenuTest, AFailureTellsAndGoesBackToTheLastGoodName)
{
    const QString good = menu()->currentText();
    home.configDir().mkpath(QStringLiteral("folder.pd"));
    for (const QString& bad :
         {home.path(QStringLiteral("absent.pd")), home.path(QStringLiteral("folder.pd"))}) {
        const LogCatcher log;
        load(bad);
        EXPECT_EQ(boxes.take(),
                  QStringList{QStringLiteral("Brevick Tuning Orlo|Failed to load patch %1.").arg(bad)});
        EXPECT_TRUE(log.has(QtCriticalMsg, QStringLiteral("Failed to copy")));
        EXPECT_EQ(menu()->currentText(), good);
        EXPECT_FALSE(player.isPatchOpen());
    }
    load(menu()->currentData().toString());
    EXPECT_TRUE(player.isPatchOpen());
    load(QString()); // the data of "None loaded": nothing happens
    EXPECT_TRUE(player.isPatchOpen());
}

TEST_F(PatchMenuTest, SteppingWraps)
{
    const int count = menu()->count();
    menu()->setCurrentIndex(0);
    const EngineClock clock(player);
    for (const int expected : {count - 1, count - 2}) {
        button("patchDecButton")->click();
        EXPECT_EQ(menu()->currentIndex(), expected);
    }
    for (const int expected : {count - 1, 0}) {
        button("patchIncButton")->click();
        EXPECT_EQ(menu()->currentIndex(), expected);
    }
}
