#include "ui/window/MainWindow.h"

#include "app/Accessors.h"
#include "app/ApplicationServices.h"
#include "app/Settings.h"
#include "app/StatusNotes.h"
#include "model/Orlo.h"
#include "sound/AudioOutput.h"
#include "sound/EngineRelay.h"
#include "sound/PdPlayer.h"
#include "ui/dialogs/DiagnosticsDialog.h"
#include "ui/dialogs/HelpDialog.h"
#include "ui/dialogs/OptionsDialog.h"
#include "ui/dialogs/TweakDialog.h"
#include "ui/firststeps/FirstSteps.h"
#include "ui/harmony/HarmonyDock.h"
#include "ui/keyboard/PlayFromMidi.h"
#include "ui/lattice/GeometryConstants.h"
#include "ui/lattice/OrloLeavesWidget.h"
#include "ui/lattice/OrloView.h"
#include "ui/panel/MenuButton.h"
#include "ui/panel/StatusLine.h"
#include "ui/stacks/OrloLayer.h"
#include "ui/tuning/ChordFiles.h"
#include "ui/window/FormSetUp.h"
#include "ui/window/FrameFit.h"
#include "ui/window/KeyMap.h"
#include "ui/window/PanelParts.h"
#include "ui/window/PressHelp.h"
#include "ui/window/Readout.h"
#include "ui_MainWindow.h"
#include "update/UpdateDialog.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QScreen>
#include <QThread>

namespace {

constexpr unsigned long TWEAK_PAUSE_MS = 100;

} // namespace

MainWindow::MainWindow(Orlo* orlo)
    : ui(std::make_unique<Ui::MainWindow>())
    , mOrlo(orlo)
{
    initIcons();
    ui->setupUi(this);
    setUpForm(*ui, this);
    mPanel = std::make_unique<PanelParts>(*ui);
    mReadout = std::make_unique<Readout>(ui->infoLabel1, ui->infoLabel2, orlo);
    mKeyMap =
        std::make_unique<KeyMap>(*ui, mPanel.get(), app::player(), [this] { on_optionsButton_clicked(); });
    setButtons();
    ui->transposeWidget->init(Qt::Vertical);
    ui->circleLayer->init(OrloLeavesWidget::Circles, orlo);
    ui->grapeLayer->init(OrloLeavesWidget::Grapes, orlo);
    mPanel->display.showPage();
    makeSwitcherLabels();
    connectPanel();
    connectPlayer();

    makeStatusLine(); // first, so that it also tells of a device that is lost while the patch opens
    mPanel->patches.initPatchMenu();
    mPanel->patches.loadDefaultPatch();
    onTransposeChanged();
    makeDevelopmentDialogs();
    fillMenu();
    makeOptionsDialog();
    ui->transposeWidget->highlight(ui->transposeWidget->highlightedRow(), true);
    applicationUpdateCheck();
    mPanel->chordPresets.repopulateChordBankMenu();

    // A small or finely scaled screen may be lower than the form.
    resize(size().boundedTo(screen()->availableGeometry().size()));
    activateWindow();
    setFocusPolicy(Qt::StrongFocus);
    setFocus();
    // These take the focus when they are clicked, and would keep the arrow keys with it.
    for (QPushButton* button : {ui->circlesViewButton, ui->grapesViewButton, ui->expandOrloButton})
        connect(button, &QPushButton::clicked, this, qOverload<>(&QWidget::setFocus));
}

MainWindow::~MainWindow()
{
    // Deleting the dialog ends an edit under way, whose signals still need this window's members.
    delete mOptionsDialog;
}

// ---------------------------------------------------------------- construction

void MainWindow::makeSwitcherLabels()
{
    auto* view = new QLabel(QStringLiteral("<a href=\"grapes\">Grapes</a> <a href=\"circles\">Flowers</a>"),
                            ui->centralWidget);
    auto* absRel =
        new QLabel(QStringLiteral("<a href=\"absolute\">Absolute</a> <a href=\"relative\">Relative</a> "
                                  "<a href=\"absolute2\">Absolute B</a>"),
                   ui->centralWidget);
    absRel->setFixedWidth(240);
    absRel->move(108, 148);
    view->setVisible(false);
    absRel->setVisible(false);
    connect(view, &QLabel::linkActivated, this, &MainWindow::onSwitcherClicked);
    connect(absRel, &QLabel::linkActivated, this, &MainWindow::onAbsRelSwitcherClicked);
}

void MainWindow::connectPlayer()
{
    connect(mOrlo, &Orlo::transposeOrBaseFrequencyChanged, this, &MainWindow::onTransposeChanged);

    const EngineRelay* relay = &app::player()->relay();
    connect(relay, &EngineRelay::volumeChanged, this, &MainWindow::onVolumeChanged);
    connect(relay, &EngineRelay::monophonicChanged, this, &MainWindow::onMonophonicChanged);
    connect(relay, &EngineRelay::macroValueChanged, this, &MainWindow::onMacroValueChanged);
    connect(relay, &EngineRelay::macroNamesReceived, this, &MainWindow::onMacroNamesReceived);
    connect(relay, &EngineRelay::macroDefaultsReceived, this, &MainWindow::onMacroDefaultsReceived);
    connect(relay, &EngineRelay::setMacroSliders, this, &MainWindow::onSetMacroSliders);
    connect(relay, &EngineRelay::patchDecRequested, this, &MainWindow::onPatchDecRequested);
    connect(relay, &EngineRelay::patchIncRequested, this, &MainWindow::onPatchIncRequested);
    connect(relay, &EngineRelay::resetGlissSliders, this, &MainWindow::onResetGlissSliders);
}

void MainWindow::connectPanel()
{
    connect(&mPanel->display, &DisplaySwitches::displayChanged, this, &MainWindow::updateOrloView);
    for (const QSlider* slider : mPanel->macros.sliders())
        connect(slider, &QSlider::valueChanged, this, &MainWindow::onMacroSliderValueChanged);
}

void MainWindow::makeDevelopmentDialogs()
{
    mDiagnosticsDialog = new DiagnosticsDialog(this);
    mTweakDialog = new TweakDialog(this);
    connect(mTweakDialog, &TweakDialog::updateRequested, this, &MainWindow::updateTweaks);
    for (const GeometryConstant& constant : GEOMETRY_CONSTANTS)
        mTweakDialog->addInt(QLatin1StringView(constant.name), constant.value);
}

void MainWindow::makeStatusLine()
{
    auto* line = new StatusLine(ui->centralStack);
    line->follow(app::audioOutput());
    line->follow(app::midiOutput());
    connect(line, &StatusLine::tryAgainRequested, app::audioOutput(), &AudioOutput::tryAgain);
    connect(app::parts().statusNotes, &StatusNotes::said, line, &StatusLine::say);
}

void MainWindow::fillMenu()
{
    MenuButton* menu = ui->menuButton;
    menu->add(QStringLiteral("Help and keys"), Qt::Key_F1, [this] { showHelp(); });
    menu->add(QStringLiteral("First steps"), QKeySequence(), [this] { showFirstSteps(); });
    if (app::midiPlaying()) {
        auto* playing = new PlayFromMidi({ui->circleLayer->orloView(), ui->grapeLayer->orloView()},
                                         *app::midiPlaying(), this);
        menu->add(QStringLiteral("Play from MIDI..."), QKeySequence(), [playing] { playing->open(); });
    }
    QAction* harmony =
        menu->add(QStringLiteral("Harmony"), Qt::CTRL | Qt::Key_D, [this] { mHarmony->toggle(); });
    mHarmony = new HarmonyDock(ui->centralStack, this, harmony);
    DisplaySwitches* display = &mPanel->display;
    display->takeHelmholtzEllis(menu->add(QStringLiteral("Helmholtz-Ellis"), QKeySequence(),
                                          [display] { display->helmholtzEllisTriggered(); }));
    mChordFiles = new ChordFiles(*app::player(), *app::storeAndRecall(), *mOrlo, this);
    menu->add(QStringLiteral("Chord to file..."), QKeySequence(), [this] { mChordFiles->openOut(); });
    menu->add(QStringLiteral("Scala file to chord..."), QKeySequence(), [this] { mChordFiles->openIn(); });
    menu->add(
        QStringLiteral("Full screen"), Qt::Key_F11, [this] { toggleFullScreen(); }, MenuButton::Window);
    menu->add(
        QStringLiteral("Quit"), Qt::CTRL | Qt::Key_Q, [this] { close(); }, MenuButton::Window);
}

MenuButton* MainWindow::menuButton() const
{
    return ui->menuButton;
}

void MainWindow::showHelp()
{
    auto* help = findChild<HelpDialog*>();
    if (!help) {
        QList<HelpSection> sections = pressHelp() + mKeyMap->help();
        for (const QAction* entry : actions()) { // those of the menu
            if (!entry->shortcut().isEmpty())
                sections.last().add(entry->shortcut()[0], entry->text());
        }
        help = new HelpDialog(sections, this);
    }
    help->show();
    help->raise();
    help->activateWindow();
}

/// A maximised window is maximised again afterwards.
void MainWindow::toggleFullScreen()
{
    setWindowState(windowState() ^ Qt::WindowFullScreen);
}

void MainWindow::applicationUpdateCheck()
{
    const Settings* settings = app::settings();
    if (UpdateDialog::CHECKS_AT_START
        && UpdateDialog::isCheckDue(settings->updateCheckInterval, settings->tSysLastUpdateCheck,
                                    QDateTime::currentDateTime()))
        UpdateDialog::startCheck(this, false);
}

// ---------------------------------------------------------------- pages

OrloLayer* MainWindow::currentLayer() const
{
    return mPanel->display.isCirclesPage() ? ui->circleLayer : ui->grapeLayer;
}

OrloView* MainWindow::orloView() const
{
    return currentLayer()->orloView();
}

void MainWindow::updateOrloView()
{
    orloView()->updateOrloBalls();
    orloView()->updateCardStack();
}

void MainWindow::updateZoomMode()
{
    orloView()->setTestingVariables(app::settings()->orloZoomMode);
}

void MainWindow::updateTweaks()
{
    app::player()->queueEventGui(&mPanel->allNotesOff);
    QThread::msleep(TWEAK_PAUSE_MS);
    QCoreApplication::processEvents();
    app::application()->loadStyleSheet();
    mOrlo->load();
    OrloLeavesWidget::clearPositions();
    orloView()->buildScene(orloView()->view());
}

void MainWindow::on_expandOrloButton_clicked()
{
    const bool show = !ui->topFrame->isVisible();
    ui->topFrame->setVisible(show);
    ui->circleLayer->showStacks(show);
    ui->grapeLayer->showStacks(show);
    mHarmony->setStacksShown(show);
    ui->expandOrloButton->setText(show ? QStringLiteral("< >") : QStringLiteral("> <"));
}

void MainWindow::showFirstSteps()
{
    delete mFirstSteps;
    mFirstSteps = new FirstSteps(ui->centralStack, {ui->glissSliderBig, ui->glissFineSliderBig});
}

void MainWindow::applyRestrictions(bool restricted)
{
    mRestricted = restricted;
    mPanel->setRestricted(restricted);
    mChordFiles->setRestricted(restricted);
    mOptionsDialog->applyRestrictions(restricted);
}

// ---------------------------------------------------------------- options dialog

void MainWindow::makeOptionsDialog()
{
    mOptionsDialog = new OptionsDialog(this);
    connect(mOptionsDialog, &OptionsDialog::displayChanged, this, &MainWindow::updateOrloView);
    connect(mOptionsDialog, &OptionsDialog::zoomModeChanged, this, &MainWindow::updateZoomMode);
    connect(mOptionsDialog, &OptionsDialog::closedAt, this, &MainWindow::setOptionsDialogPosition);
    connect(mOptionsDialog, &OptionsDialog::closedAt, this, &MainWindow::reloadAllSoundingRatios);
    // Later, since only the hiding ends an edit under way, whose frequency counts too.
    connect(mOptionsDialog, &OptionsDialog::closedAt, app::player(), &PdPlayer::retuneNotes,
            Qt::QueuedConnection);
    mOptionsDialog->updateCentsDisplay(); // may change the option that decides how notes are named
}

void MainWindow::on_optionsButton_clicked()
{
    if (mOptionsDialog->isVisible()) {
        mOptionsDialogPosition = mOptionsDialog->pos();
        mOptionsDialog->close();
        return;
    }
    delete mOptionsDialog;
    makeOptionsDialog();
    mOptionsDialog->applyRestrictions(mRestricted);
    if (!mOptionsDialogPosition.isNull())
        mOptionsDialog->rePosition(mOptionsDialogPosition);
    mOptionsDialog->show();
}

// ---------------------------------------------------------------- events

void MainWindow::onTransposeChanged()
{
    mReadout->update();
    updateOrloView();
}

void MainWindow::resizeEvent(QResizeEvent* event)
{
    QMainWindow::resizeEvent(event);
    mReadout->update();
}

void MainWindow::fitFrame()
{
    mFrameFits = true;
    // Nobody sees a window without a window system: its size is the caller's.
    if (isMaximized() || isFullScreen() || QGuiApplication::platformName() == u"offscreen")
        return;
    const auto [pos, size] = framefit::inside(screen()->availableGeometry(), frameGeometry(), this->size());
    if (size == this->size())
        return;
    resize(size);
    move(pos);
}

void MainWindow::keyPressEvent(QKeyEvent* event)
{
    if (!mKeyMap->press(event->key(), event->modifiers()))
        QMainWindow::keyPressEvent(event);
}

void MainWindow::keyReleaseEvent(QKeyEvent* event)
{
    if (!mKeyMap->release(event->key()))
        QMainWindow::keyReleaseEvent(event);
}

void MainWindow::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::ActivationChange && isActiveWindow() && !mFrameFits)
        fitFrame();
    // When Alt leads to another window, its release does not come here.
    if (event->type() == QEvent::ActivationChange && !isActiveWindow())
        mPanel->snapBack.setAltDown(false);
    QMainWindow::changeEvent(event);
}

// ---------------------------------------------------------------- handed on to the parts of the panel

// clang-format off
void MainWindow::setOptionsDialogPosition(QPoint position) { mOptionsDialogPosition = position; }
void MainWindow::setButtons() { mPanel->display.setButtons(); }
void MainWindow::setMacroSlidersToDefault() { mPanel->macros.queueDefaults(); }
void MainWindow::reloadAllSoundingRatios() { mPanel->chords.reloadAllSoundingRatios(); }
void MainWindow::overrideChordButtonStorage(int number) { mPanel->chords.overrideChordButtonStorage(number); }
void MainWindow::setChordButton(int number, bool on) { mPanel->chords.setChordButton(number, on); }
void MainWindow::refreshChordButtons() { mPanel->chords.refreshChordButtons(); }
void MainWindow::clearAllChordButtons() { mPanel->chords.clearAllChordButtons(); }
void MainWindow::loadPatch(const QString& path) { mPanel->patches.loadPatch(path); }
void MainWindow::patch_by_Index(int index) { mPanel->patches.patch_by_Index(index); }

// What the player reports; it counts macros from 1.
void MainWindow::onVolumeChanged(float volume) { mPanel->volume.showVolume(volume); }
void MainWindow::onMonophonicChanged(bool on) { mPanel->monoPoly.showMonophonic(on); }
void MainWindow::onMacroValueChanged(int macro, float value) { mPanel->macros.showValue(macro - 1, value); }
void MainWindow::onMacroNamesReceived(QStringList names) { mPanel->macros.showNames(names); }
void MainWindow::onMacroDefaultsReceived(QList<float> defaults) { mPanel->macros.takeDefaults(defaults); }
void MainWindow::onSetMacroSliders(QList<float> values) { mPanel->macros.queueValues(values); }
void MainWindow::onPatchDecRequested() { on_patchDecButton_clicked(); }
void MainWindow::onPatchIncRequested() { on_patchIncButton_clicked(); }
void MainWindow::onResetGlissSliders(short which) { mPanel->glissando.showReset(which); }

void MainWindow::onMacroSliderValueChanged(int) { mPanel->macros.queueMacroOf(sender()); }
void MainWindow::onSwitcherClicked(QString link) { mPanel->display.chooseView(link); }
void MainWindow::onAbsRelSwitcherClicked(QString link) { mPanel->display.chooseAbsRel(link); }
void MainWindow::on_circlesViewButton_clicked() { onSwitcherClicked(QStringLiteral("circles")); }
void MainWindow::on_grapesViewButton_clicked() { onSwitcherClicked(QStringLiteral("grapes")); }
void MainWindow::on_absoluteModeButton_clicked() { onAbsRelSwitcherClicked(QStringLiteral("absolute")); }
void MainWindow::on_relativeModeButton_clicked() { onAbsRelSwitcherClicked(QStringLiteral("relative")); }
void MainWindow::on_normalizeRatiosButton_clicked() { mPanel->display.normalizeRatiosClicked(); }
void MainWindow::on_soundgrapeColourButton_clicked() { mPanel->display.soundgrapeColourClicked(); }
void MainWindow::on_soundgrapeBWButton_clicked() { mPanel->display.soundgrapeBWClicked(); }

void MainWindow::on_monoButton_clicked() { mPanel->monoPoly.monoClicked(); }
void MainWindow::on_polyButton_clicked() { mPanel->monoPoly.polyClicked(); }
void MainWindow::on_stopAllButton_clicked() { app::player()->queueEventGui(&mPanel->allNotesOffForced); }
void MainWindow::on_volumeSlider_valueChanged(int) { mPanel->volume.queueVolume(); }
void MainWindow::on_glissSliderBig_valueChanged(int) { mPanel->glissando.queueCoarse(); }
void MainWindow::on_glissFineSliderBig_valueChanged(int) { mPanel->glissando.queueFine(); }
void MainWindow::on_glissButton_clicked() { mPanel->glissando.buttonClicked(); }
void MainWindow::on_glissFineButton_clicked() { mPanel->glissando.buttonClicked(); }
void MainWindow::on_glissResetButton_clicked() { mPanel->glissando.centreBoth(); }
void MainWindow::on_toggleModeButton_clicked() { mPanel->pressMode.clicked(ui->toggleModeButton); }
void MainWindow::on_shiftModeButton_clicked() { mPanel->pressMode.clicked(ui->shiftModeButton); }
void MainWindow::on_removeModeButton_clicked() { mPanel->pressMode.clicked(ui->removeModeButton); }
void MainWindow::on_selectApplyModeButton_clicked() { mPanel->pressMode.clicked(ui->selectApplyModeButton); }

void MainWindow::on_chordButton_01_clicked() { mPanel->chords.chordButtonClicked(1); }
void MainWindow::on_chordButton_02_clicked() { mPanel->chords.chordButtonClicked(2); }
void MainWindow::on_chordButton_03_clicked() { mPanel->chords.chordButtonClicked(3); }
void MainWindow::on_chordButton_04_clicked() { mPanel->chords.chordButtonClicked(4); }
void MainWindow::on_chordButton_05_clicked() { mPanel->chords.chordButtonClicked(5); }
void MainWindow::on_chordButton_06_clicked() { mPanel->chords.chordButtonClicked(6); }
void MainWindow::on_chordButton_07_clicked() { mPanel->chords.chordButtonClicked(7); }
void MainWindow::on_chordButton_08_clicked() { mPanel->chords.chordButtonClicked(8); }
void MainWindow::on_chordButton_09_clicked() { mPanel->chords.chordButtonClicked(9); }
void MainWindow::on_chordButton_10_clicked() { mPanel->chords.chordButtonClicked(10); }
void MainWindow::on_chordButton_11_clicked() { mPanel->chords.chordButtonClicked(11); }
void MainWindow::on_chordButton_12_clicked() { mPanel->chords.chordButtonClicked(12); }
void MainWindow::on_chordButton_13_clicked() { mPanel->chords.chordButtonClicked(13); }
void MainWindow::on_chordButton_14_clicked() { mPanel->chords.chordButtonClicked(14); }
void MainWindow::on_chordButton_15_clicked() { mPanel->chords.chordButtonClicked(15); }
void MainWindow::on_chordButton_16_clicked() { mPanel->chords.chordButtonClicked(16); }
void MainWindow::on_chordButton_17_clicked() { mPanel->chords.chordButtonClicked(17); }
void MainWindow::on_chordButton_18_clicked() { mPanel->chords.chordButtonClicked(18); }
void MainWindow::on_chordButton_19_clicked() { mPanel->chords.chordButtonClicked(19); }
void MainWindow::on_chordButton_20_clicked() { mPanel->chords.chordButtonClicked(20); }
void MainWindow::on_chordRowButton_01_clicked() { mPanel->chords.chooseRow(0); }
void MainWindow::on_chordRowButton_02_clicked() { mPanel->chords.chooseRow(1); }
void MainWindow::on_chordStoreToButton_clicked() { mPanel->chords.storeToClicked(); }
void MainWindow::on_chordClearButton_clicked() { mPanel->chords.clearClicked(); }
void MainWindow::on_chordClearAllButton_clicked() { mPanel->chords.clearAllClicked(); }
void MainWindow::on_chordAdditiveRecallButton_clicked() { mPanel->chords.additiveRecallClicked(); }
void MainWindow::on_chordAlternatingRecallButton_clicked() { mPanel->chords.alternatingRecallClicked(); }
void MainWindow::on_chordHoldButton_clicked() { mPanel->chords.holdClicked(); }
void MainWindow::on_saveChordBankMenu_activated() { mPanel->chordPresets.bankActivated(); }
void MainWindow::on_saveChordSetMenu_activated() { mPanel->chordPresets.presetActivated(); }
void MainWindow::on_saveChordDirectoryButton_clicked() { mPanel->chordPresets.directoryClicked(); }
void MainWindow::on_saveChordSetLoadButton_clicked() { mPanel->chordPresets.loadClicked(); }
void MainWindow::on_saveChordSetSaveButton_clicked() { mPanel->chordPresets.saveClicked(); }

void MainWindow::on_patchMenu_activated(int index) { mPanel->patches.patch_by_Index(index); }
void MainWindow::on_patchDecButton_clicked() { mPanel->patches.stepPatch(-1); }
void MainWindow::on_patchIncButton_clicked() { mPanel->patches.stepPatch(1); }
void MainWindow::on_loadPatchButton_clicked() { mPanel->patches.browse(); }
// clang-format on
