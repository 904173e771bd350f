#include "ui/MainWindow.h"

#include "app/ApplicationServices.h"
#include "support/EngineClock.h"
#include "support/LogCatcher.h"
#include "support/TestHome.h"
#include "ui/OrloView.h"
#include "ui/UiFixture.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QSlider>
#include <QStackedWidget>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <memory>
#include <optional>

namespace {

using Command = std::pair<OrloEvent::Type, float>;

class Services : public ApplicationServices
{
public:
    bool loadStyleSheet() override { return true; }
    void setPressMode(qint16 mode) override { pressMode = mode; }
    qint16 pressMode = 0;
};

QString shellFile(const QString& name)
{
    return QCoreApplication::applicationDirPath() + QStringLiteral("/patches/shell/") + name;
}

} // namespace

/// A window with the patch Sine loaded, over a player whose commands the test reads.
class MainWindowTest : public UiFixture
{
public:
    /// The look decides how much room the controls take.
    static void SetUpTestSuite()
    {
        QApplication::setStyle(QStringLiteral("Fusion"));
        QFile sheet(QCoreApplication::applicationDirPath() + QStringLiteral("/style.qss"));
        ASSERT_TRUE(sheet.open(QIODevice::ReadOnly));
        qApp->setStyleSheet(QString::fromLatin1(sheet.readAll()));
    }
    static void TearDownTestSuite() { qApp->setStyleSheet(QString()); }

protected:
    MainWindowTest()
    {
        app::Parts parts = app::parts();
        parts.application = &services;
        app::setParts(parts);
        const QDir patch(home.path(QStringLiteral("patch")));
        patch.mkpath(QStringLiteral("."));
        QFile::copy(shellFile(QStringLiteral("orlo_main_4voice.pd")), patch.filePath(QStringLiteral("orlo_main.pd")));
        for (const char* name : {"orlo_vprep.pd", "equal-loudness.pd", "tb_compressor~.pd", "tb_compressorUI.pd"})
            QFile::copy(shellFile(QLatin1StringView(name)), patch.filePath(QLatin1StringView(name)));
        {
            const EngineClock clock(player);
            window = std::make_unique<MainWindow>(&orlo);
        }
        settle();
    }

    ~MainWindowTest() override
    {
        const EngineClock clock(player);
        player.term();
        window.reset();
    }

    template <class Widget>
    Widget* find(const char* name) const
    {
        auto* widget = window->findChild<Widget*>(QLatin1StringView(name));
        if (!widget)
            qFatal("The window has no %s.", name);
        return widget;
    }
    QPushButton* button(const char* name) const { return find<QPushButton>(name); }
    QSlider* slider(const char* name) const { return find<QSlider>(name); }

    void click(const char* name) const { QTest::mouseClick(find<QWidget>(name), Qt::LeftButton); }
    /// A key that presses a button lets it flash, and the click comes at the flash's end.
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const
    {
        QTest::keyClick(window.get(), key, modifiers);
        const QList<QAbstractButton*> buttons = window->findChildren<QAbstractButton*>();
        const bool up = QTest::qWaitFor([&buttons] {
            return std::none_of(buttons.begin(), buttons.end(), [](const auto* each) { return each->isDown(); });
        });
        EXPECT_TRUE(up);
    }

    /// Type and value of what the window has queued since the last time.
    QList<Command> commands()
    {
        QList<Command> list;
        for (const PdMessageBuffer::Chunk& chunk : drain())
            list.append({static_cast<OrloEvent::Type>(chunk.type), chunk.value});
        return list;
    }

    /// Commands and answers, until neither side has anything to say.
    void settle()
    {
        for (int round = 0; round < 3; ++round) {
            report();
            drain();
        }
        report();
    }

    TestHome home; // before the window, whose options name its folders
    Services services;
    std::unique_ptr<MainWindow> window;
};

TEST_F(MainWindowTest, EveryControlOfTheFormHasItsRangeAndTakesNoFocus)
{
    struct Range
    {
        const char* name;
        int maximum;
        int value;
    };
    for (const Range& range : {Range{"glissSliderSmall", 100, 50}, Range{"glissSliderBig", 400, 200},
                               Range{"glissFineSliderBig", 400, 200}}) {
        EXPECT_EQ(slider(range.name)->minimum(), 0);
        EXPECT_EQ(slider(range.name)->maximum(), range.maximum) << range.name;
        EXPECT_EQ(slider(range.name)->value(), range.value) << range.name;
    }
    EXPECT_EQ(slider("volumeSlider")->maximum(), 140);
    for (int number = 1; number <= 8; ++number)
        EXPECT_EQ(slider(qPrintable(QStringLiteral("macroSlider%1").arg(number)))->maximum(), 120);

    EXPECT_EQ(window->windowTitle(), QStringLiteral("Brevick Tuning Orlo 2"));
    EXPECT_EQ(window->focusPolicy(), Qt::StrongFocus);
    const QStringList withFocus{QStringLiteral("grapesViewButton"), QStringLiteral("circlesViewButton"),
                                QStringLiteral("expandOrloButton")};
    for (const QPushButton* each : window->findChildren<QPushButton*>())
        EXPECT_EQ(each->focusPolicy() == Qt::NoFocus, !withFocus.contains(each->objectName()))
            << each->objectName().toStdString();
    EXPECT_LE(window->minimumSizeHint().width(), 1280);
    EXPECT_LE(window->minimumSizeHint().height(), 800);
}

TEST_F(MainWindowTest, SignOnlyControlsSayWhatTheyAre)
{
    for (const char* name : {"glissButton", "glissFineButton", "glissResetButton", "optionsButton", "patchDecButton",
                             "patchIncButton", "expandOrloButton", "chordAdditiveRecallButton",
                             "chordAlternatingRecallButton", "chordHoldButton", "saveChordDirectoryButton",
                             "chordButton_01", "chordButton_20", "chordRowButton_01"}) {
        EXPECT_FALSE(button(name)->toolTip().isEmpty()) << name;
        EXPECT_FALSE(button(name)->accessibleName().isEmpty()) << name;
    }
}

TEST_F(MainWindowTest, SlidersQueueTheirFractionAndFollowThePlayerWithoutEcho)
{
    slider("volumeSlider")->setValue(70);
    slider("macroSlider3")->setValue(30);
    slider("macroSlider8")->setValue(120);
    EXPECT_EQ(commands(), (QList<Command>{{OrloEvent::MasterVolumeSet, 0.5F},
                                          {OrloEvent::Macro3Set, 0.25F},
                                          {OrloEvent::Macro8Set, 1.0F}}));

    // 140 x 0.375 is 52.5, away from zero.
    emit player.volumeChanged(0.375F);
    emit player.macroValueChanged(2, 0.7541F); // 90.49
    emit player.macroValueChanged(9, 0.5F);    // no such slider
    report();
    EXPECT_EQ(slider("volumeSlider")->value(), 53);
    EXPECT_EQ(slider("macroSlider2")->value(), 90);
    EXPECT_TRUE(commands().isEmpty());
}

TEST_F(MainWindowTest, MacroNamesAndDefaultsComeFromThePatch)
{
    emit player.macroNamesReceived({QStringLiteral("aTTACK"), QStringLiteral("x")});
    emit player.macroDefaultsReceived({0.25F, -1.0F});
    report();
    EXPECT_EQ(find<QLabel>("macroLabel1")->text(), QStringLiteral("Attack"));
    EXPECT_EQ(find<QLabel>("macroLabel2")->text(), QStringLiteral("X"));
    EXPECT_TRUE(slider("macroSlider2")->isEnabled());
    for (int number = 3; number <= 8; ++number) {
        EXPECT_EQ(find<QLabel>(qPrintable(QStringLiteral("macroLabel%1").arg(number)))->text(),
                  QStringLiteral("Unused"));
        EXPECT_FALSE(slider(qPrintable(QStringLiteral("macroSlider%1").arg(number)))->isEnabled());
    }
    EXPECT_EQ(commands(), (QList<Command>{{OrloEvent::Macro1Set, 0.25F}}));

    window->setMacroSlidersToDefault();
    EXPECT_EQ(commands(), (QList<Command>{{OrloEvent::Macro1Set, 0.25F}}));
    // A list that is longer than the sliders, or empty, does no harm.
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
    } rows[] = {{"macroSlider1", 100, 39}, // int(120 x 0.33)
                {"macroSlider2", 100, 100}, // no default
                {"macroSlider7", 90, 90},   // beyond the list
                {"glissSliderBig", 10, 200},
                {"volumeSlider", 7, 105}};
    for (const auto& row : rows) {
        slider(row.name)->setValue(row.moved);
        emit slider(row.name)->sliderReleased();
        EXPECT_EQ(slider(row.name)->value(), row.moved) << row.name;
    }
    QTest::keyPress(window.get(), Qt::Key_Alt);
    for (const auto& row : rows) {
        emit slider(row.name)->sliderReleased();
        EXPECT_EQ(slider(row.name)->value(), row.back) << row.name;
    }
    QTest::keyRelease(window.get(), Qt::Key_Alt);
    slider("glissSliderBig")->setValue(3);
    emit slider("glissSliderBig")->sliderReleased();
    EXPECT_EQ(slider("glissSliderBig")->value(), 3);
}

TEST_F(MainWindowTest, MonoAndPolyChangeOnlyWhenThePlayerAnswers)
{
    click("monoButton");
    EXPECT_TRUE(button("polyButton")->isChecked());
    EXPECT_EQ(commands(), (QList<Command>{{OrloEvent::MonophonicSet, 1.0F}}));
    report();
    EXPECT_FALSE(button("polyButton")->isChecked());

    click("monoButton"); // on already: stays on, and nothing is queued
    EXPECT_TRUE(button("monoButton")->isChecked());
    EXPECT_TRUE(commands().isEmpty());

    click("polyButton");
    EXPECT_EQ(commands(), (QList<Command>{{OrloEvent::MonophonicSet, 0.0F}}));
    report();
    EXPECT_FALSE(button("monoButton")->isChecked());
    EXPECT_TRUE(button("polyButton")->isChecked());

    click("stopAllButton");
    EXPECT_EQ(commands(), (QList<Command>{{OrloEvent::AllNotesOffForced, 1.0F}}));
}

TEST_F(MainWindowTest, DisplaySwitchesWriteTheOptions)
{
    click("circlesViewButton");
    EXPECT_TRUE(settings.circlesView);
    EXPECT_EQ(find<QStackedWidget>("centralStack")->currentIndex(), 0);
    EXPECT_FALSE(button("grapesViewButton")->isChecked());
    click("circlesViewButton"); // stays lit
    EXPECT_TRUE(button("circlesViewButton")->isChecked());
    click("grapesViewButton");
    EXPECT_FALSE(settings.circlesView);
    EXPECT_EQ(window->orloView()->view(), OrloLeavesWidget::Grapes);

    click("relativeModeButton");
    EXPECT_EQ(settings.absRelView, 0);
    EXPECT_FALSE(button("absoluteModeButton")->isChecked());
    click("absoluteModeButton");
    EXPECT_EQ(settings.absRelView, 1);
    settings.absRelView = 2;
    window->setButtons();
    EXPECT_TRUE(button("absoluteModeButton")->isChecked());

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

TEST_F(MainWindowTest, ExpandingHidesPanelAndStacks)
{
    window->show();
    const auto* stack = window->orloView()->parentWidget()->parentWidget()->findChild<QWidget*>(
        QStringLiteral("rightFrame"));
    ASSERT_TRUE(stack);
    const int before = window->orloView()->height();
    click("expandOrloButton");
    QTest::qWait(20);
    EXPECT_FALSE(find<QWidget>("topFrame")->isVisible());
    EXPECT_EQ(button("expandOrloButton")->text(), QStringLiteral("> <"));
    EXPECT_GT(window->orloView()->height(), before);
    click("expandOrloButton");
    EXPECT_TRUE(find<QWidget>("topFrame")->isVisible());
    EXPECT_EQ(button("expandOrloButton")->text(), QStringLiteral("< >"));
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

    orlo.onTransposed(OrloRatio(1, 1), 0);
    const std::pair<float, const char*> frequencies[] = {{9.5F, "9.50000"},   {10.0F, "10.0000"},
                                                         {100.0F, "100.000"}, {1000.0F, "1000.00"},
                                                         {10000.0F, "10000.0"}};
    for (const auto& [frequency, text] : frequencies) {
        orlo.onBaseFrequencyChanged(frequency);
        EXPECT_EQ(line("infoLabel2"), QStringLiteral("Frequency of central node [= 1/1 Frequency]: %1 Hz")
                                          .arg(QLatin1StringView(text)));
    }
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
    } rows[] = {{Qt::Key_K, Qt::NoModifier, 1, 1},      {Qt::Key_K, Qt::NoModifier, 2, 0},
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
    press(Qt::Key_Up); // at the first row already
    for (int i = 0; i < 3; ++i)
        press(Qt::Key_Down);
    press(Qt::Key_X); // row 4 is the prime 7
    EXPECT_EQ(commands(), (QList<Command>{{OrloEvent::PrimeEnabledToggle, 7.0F}}));
    press(Qt::Key_Right);
    EXPECT_EQ(commands(), (QList<Command>{{OrloEvent::TransposeByPrimeStep, 7.0F}}));
    for (int i = 0; i < 12; ++i)
        press(Qt::Key_Down);
    press(Qt::Key_Left);
    EXPECT_EQ(commands(), (QList<Command>{{OrloEvent::TransposeByPrimeStep, -31.0F}}));
    report();
    press(Qt::Key_Backspace);
    EXPECT_EQ(commands(), (QList<Command>{{OrloEvent::TransposeByPrimeStep, 0.0F}}));
}

TEST_F(MainWindowTest, TheArrowKeysStayTheWindowsAfterAClickOnAButtonThatTakesTheFocus)
{
    for (const char* name : {"circlesViewButton", "grapesViewButton", "expandOrloButton"}) {
        click(name);
        EXPECT_EQ(window->focusWidget(), window.get()) << name;
    }
}

TEST_F(MainWindowTest, ModeButtonsExcludeEachOther)
{
    button("shiftModeButton")->click();
    EXPECT_EQ(services.pressMode, 2);
    button("selectApplyModeButton")->click();
    EXPECT_EQ(services.pressMode, 4);
    EXPECT_FALSE(button("shiftModeButton")->isChecked());
    button("selectApplyModeButton")->click();
    EXPECT_EQ(services.pressMode, 0);
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

    /// Presses Return on the box that the next load shows, and keeps its text.
    void expectBox()
    {
        boxText.reset();
        QTimer::singleShot(50, window.get(), [this] { closeBox(); });
    }
    void closeBox()
    {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box) {
            QTimer::singleShot(50, window.get(), [this] { closeBox(); });
            return;
        }
        boxText = box->text();
        box->accept();
    }

    std::optional<QString> boxText;
};

TEST_F(PatchMenuTest, ListsThePatchesByNameAndLoadsSineFirst)
{
    ASSERT_GE(menu()->count(), 1);
    QStringList names;
    for (int i = 0; i < menu()->count(); ++i) {
        names.append(menu()->itemText(i));
        EXPECT_TRUE(menu()->itemData(i).toString().endsWith(u'/' + names.last() + QStringLiteral(".pd")));
    }
    QStringList sorted = names;
    sorted.sort();
    EXPECT_EQ(names, sorted);
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
    for (const QString& bad : {home.path(QStringLiteral("absent.pd")), home.path(QStringLiteral("folder.pd"))}) {
        const LogCatcher log;
        expectBox();
        load(bad);
        EXPECT_EQ(boxText, QStringLiteral("Failed to load patch %1.").arg(bad));
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
    const int start = menu()->currentIndex();
    const EngineClock clock(player);
    for (int i = 1; i <= 2; ++i) {
        button("patchIncButton")->click();
        EXPECT_EQ(menu()->currentIndex(), (start + i) % count);
    }
    for (int i = 1; i >= -1; --i) {
        button("patchDecButton")->click();
        EXPECT_EQ(menu()->currentIndex(), (start + i + count) % count);
    }
}
