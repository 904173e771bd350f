#include "ui/window/MainWindow.h"

#include "app/Accessors.h"
#include "app/ApplicationServices.h"
#include "app/Settings.h"
#include "model/Orlo.h"
#include "sound/AudioOutput.h"
#include "sound/EngineRelay.h"
#include "sound/MacroList.h"
#include "sound/PdPlayer.h"
#include "ui/cards/FrequencyDecimals.h"
#include "ui/dialogs/DiagnosticsDialog.h"
#include "ui/dialogs/OptionsDialog.h"
#include "ui/dialogs/TweakDialog.h"
#include "ui/lattice/GeometryConstants.h"
#include "ui/lattice/OrloLeavesWidget.h"
#include "ui/lattice/OrloView.h"
#include "ui/stacks/OrloLayer.h"
#include "ui/window/StatusLine.h"
#include "ui_MainWindow.h"
#include "update/UpdateDialog.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDebug>
#include <QIcon>
#include <QLabel>
#include <QResizeEvent>
#include <QScreen>
#include <QSignalBlocker>
#include <QStyledItemDelegate>
#include <QThread>

#include <cmath>

namespace {

constexpr int MACRO_SLIDERS = 8;
constexpr unsigned long TWEAK_PAUSE_MS = 100;
constexpr QSize LOGO_SIZE(176, 56);
constexpr int CIRCLES_PAGE = 0;
constexpr int GRAPES_PAGE = 1;

/// 0 to 1 along the slider's range.
float fraction(const QSlider* slider, int value)
{
    return static_cast<float>(value - slider->minimum())
           / static_cast<float>(slider->maximum() - slider->minimum());
}

/// The opposite way, rounded half away from zero, and without an echo.
void setFraction(QSlider* slider, float value)
{
    const QSignalBlocker blocker(slider);
    const float span = static_cast<float>(slider->maximum() - slider->minimum());
    slider->setValue(static_cast<int>(std::round(static_cast<float>(slider->minimum()) + span * value)));
}

QString frequencyText(float frequency)
{
    return QString::number(static_cast<double>(frequency), 'f', texts::frequencyDecimals(frequency));
}

QString capitalised(const QString& name)
{
    return name.left(1).toUpper() + name.mid(1).toLower();
}

} // namespace

/// The icons lie in a static library, whose resources Qt does not find by itself.
static void initIcons()
{
    Q_INIT_RESOURCE(icons);
}

MainWindow::MainWindow(Orlo* orlo)
    : ui(std::make_unique<Ui::MainWindow>())
    , mOrlo(orlo)
{
    initIcons();
    ui->setupUi(this);
    setUpIcons();
    setButtons();
    alignControls();
    hideUnusedControls();
    ui->transposeWidget->init(Qt::Vertical);
    ui->circleLayer->init(OrloLeavesWidget::Circles, orlo);
    ui->grapeLayer->init(OrloLeavesWidget::Grapes, orlo);
    ui->centralStack->setCurrentIndex(app::settings()->circlesView ? CIRCLES_PAGE : GRAPES_PAGE);
    makeSwitcherLabels();
    connectSliders();
    connectPlayer();
    collectChordButtons();
    buildKeyMap();

    makeStatusLine(); // before anything can be lost
    initPatchMenu();
    loadDefaultPatch();
    onTransposeChanged();
    makeDevelopmentDialogs();
    makeOptionsDialog();
    ui->transposeWidget->highlight(mHighlightedRow, true);
    applicationUpdateCheck();
    repopulateChordBankMenu();

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
    // What is being edited in it ends with it, and still reaches the window.
    delete mOptionsDialog;
}

// ---------------------------------------------------------------- construction

void MainWindow::alignControls()
{
    ui->volumeLayout->setAlignment(ui->volumeSlider, Qt::AlignHCenter);
    ui->viewButtonsLayout->setAlignment(Qt::AlignHCenter);
    ui->expandOrloLayout->setAlignment(Qt::AlignHCenter);
    // A combo box without a delegate of its own ignores the style sheet's height of its rows.
    for (QComboBox* menu : {ui->patchMenu, ui->presetMenu, ui->saveChordBankMenu, ui->saveChordSetMenu})
        menu->setItemDelegate(new QStyledItemDelegate(menu));
}

void MainWindow::setUpIcons()
{
    // A label does not find the picture for a finer screen by itself; an icon does.
    ui->logoLabel->setPixmap(
        QIcon(QStringLiteral(":/icons/logo.png")).pixmap(LOGO_SIZE, devicePixelRatioF()));
    const std::pair<QPushButton*, const char*> icons[] = {
        {ui->patchDecButton, "arrowleft"},
        {ui->patchIncButton, "arrowright"},
        {ui->presetDecButton, "arrowleft"},
        {ui->presetIncButton, "arrowright"},
        {ui->chordStorageUpButton, "arrowup"},
        {ui->chordStorageDownButton, "arrowdown"},
        {ui->optionsButton, "cog"},
    };
    for (const auto& [button, name] : icons)
        button->setIcon(QIcon(QStringLiteral(":/icons/%1.png").arg(QLatin1StringView(name))));
    QIcon windowIcon;
    for (const int size : {16, 24, 32, 48, 64, 128, 256, 512})
        windowIcon.addFile(QStringLiteral(":/icons/app-%1.png").arg(size));
    setWindowIcon(windowIcon);
}

void MainWindow::hideUnusedControls()
{
    QWidget* const hidden[] = {
        ui->chordIncludeMacrosButton, ui->glissLabel,         ui->glissSliderSmall,
        ui->glissSliderBig,           ui->glissFineSliderBig, ui->glissCLineLeft,
        ui->glissCLineCenter,         ui->glissCLineRight,    ui->presetDecButton,
        ui->presetIncButton,          ui->presetMenu,         ui->savePresetButton,
        ui->toggleModeButton,         ui->shiftModeButton,    ui->removeModeButton,
        ui->selectApplyModeButton,    ui->testingOptions,     ui->chordStorageUpButton,
        ui->chordStorageDownButton,   ui->chordWindowButton,  ui->chordSequencerWindowButton,
    };
    for (QWidget* widget : hidden)
        widget->hide();
}

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

void MainWindow::connectSliders()
{
    for (int number = 1; number <= MACRO_SLIDERS; ++number) {
        QSlider* slider = macroSlider(number);
        connect(slider, &QSlider::valueChanged, this, &MainWindow::onMacroSliderValueChanged);
        connect(slider, &QSlider::sliderReleased, this,
                [this, slider, number] { snapBack(slider, macroDefaultPosition(number)); });
    }
    for (QSlider* slider : {ui->glissSliderBig, ui->glissFineSliderBig})
        connect(slider, &QSlider::sliderReleased, this,
                [this, slider] { snapBack(slider, slider->maximum() / 2); });
    connect(ui->volumeSlider, &QSlider::sliderReleased, this, [this] {
        snapBack(ui->volumeSlider, static_cast<int>(ui->volumeSlider->maximum() * Settings::DEFAULT_VOLUME));
    });
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
}

void MainWindow::applicationUpdateCheck()
{
    const Settings* settings = app::settings();
    if (UpdateDialog::isCheckDue(settings->updateCheckInterval, settings->tSysLastUpdateCheck,
                                 QDateTime::currentDateTime()))
        UpdateDialog::startCheck(this, false);
}

// ---------------------------------------------------------------- pages

OrloLayer* MainWindow::currentLayer() const
{
    return ui->centralStack->currentIndex() == CIRCLES_PAGE ? ui->circleLayer : ui->grapeLayer;
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
    app::player()->queueEventGui(&mAllNotesOff);
    QThread::msleep(TWEAK_PAUSE_MS);
    QCoreApplication::processEvents();
    app::application()->loadStyleSheet();
    mOrlo->load();
    OrloLeavesWidget::clearPositions();
    orloView()->buildScene(orloView()->view());
}

void MainWindow::setButtons()
{
    const Settings* settings = app::settings();
    ui->normalizeRatiosButton->setChecked(settings->ratiosWithinOctave);
    if (settings->soundGrapeNotation < 3) {
        ui->soundgrapeColourButton->setChecked((settings->soundGrapeNotation & 1) != 0);
        ui->soundgrapeBWButton->setChecked(settings->soundGrapeNotation == 2);
    }
    ui->absoluteModeButton->setChecked(settings->absRelView != 0);
    ui->relativeModeButton->setChecked(settings->absRelView == 0);
    ui->circlesViewButton->setChecked(settings->circlesView);
    ui->grapesViewButton->setChecked(!settings->circlesView);
}

void MainWindow::onSwitcherClicked(QString link)
{
    const bool circles = link == QStringLiteral("circles");
    if (!circles && link != QStringLiteral("grapes"))
        return;
    ui->centralStack->setCurrentIndex(circles ? CIRCLES_PAGE : GRAPES_PAGE);
    app::settings()->circlesView = circles;
    setButtons();
    updateOrloView();
}

void MainWindow::onAbsRelSwitcherClicked(QString link)
{
    static const QHash<QString, int> modes{
        {QStringLiteral("relative"), 0}, {QStringLiteral("absolute"), 1}, {QStringLiteral("absolute2"), 2}};
    const auto mode = modes.find(link);
    if (mode == modes.end())
        return;
    app::settings()->absRelView = mode.value();
    setButtons();
    updateOrloView();
}

void MainWindow::on_circlesViewButton_clicked()
{
    onSwitcherClicked(QStringLiteral("circles"));
}

void MainWindow::on_grapesViewButton_clicked()
{
    onSwitcherClicked(QStringLiteral("grapes"));
}

void MainWindow::on_absoluteModeButton_clicked()
{
    onAbsRelSwitcherClicked(QStringLiteral("absolute"));
}

void MainWindow::on_relativeModeButton_clicked()
{
    onAbsRelSwitcherClicked(QStringLiteral("relative"));
}

void MainWindow::on_normalizeRatiosButton_clicked()
{
    app::settings()->ratiosWithinOctave = ui->normalizeRatiosButton->isChecked();
    updateOrloView();
}

void MainWindow::on_soundgrapeColourButton_clicked()
{
    app::settings()->soundGrapeNotation = ui->soundgrapeColourButton->isChecked() ? 1 : 0;
    ui->soundgrapeBWButton->setChecked(false);
    updateOrloView();
}

void MainWindow::on_soundgrapeBWButton_clicked()
{
    app::settings()->soundGrapeNotation = ui->soundgrapeBWButton->isChecked() ? 2 : 0;
    ui->soundgrapeColourButton->setChecked(false);
    updateOrloView();
}

void MainWindow::on_expandOrloButton_clicked()
{
    const bool show = !ui->topFrame->isVisible();
    ui->topFrame->setVisible(show);
    ui->circleLayer->showStacks(show);
    ui->grapeLayer->showStacks(show);
    ui->expandOrloButton->setText(show ? QStringLiteral("< >") : QStringLiteral("> <"));
}

// ---------------------------------------------------------------- sound controls

void MainWindow::on_monoButton_clicked()
{
    if (!ui->monoButton->isChecked()) { // it was on, and a click does not turn it off
        ui->monoButton->setChecked(true);
        ui->polyButton->setChecked(false);
        return;
    }
    app::player()->queueGui(OrloEvent::MonophonicSet, 1.0F);
}

void MainWindow::on_polyButton_clicked()
{
    if (!ui->polyButton->isChecked()) {
        ui->monoButton->setChecked(false);
        ui->polyButton->setChecked(true);
        return;
    }
    app::player()->queueGui(OrloEvent::MonophonicSet, 0.0F);
}

void MainWindow::onMonophonicChanged(bool on)
{
    ui->monoButton->setChecked(on);
    ui->polyButton->setChecked(!on);
}

void MainWindow::on_stopAllButton_clicked()
{
    app::player()->queueEventGui(&mAllNotesOffForced);
}

void MainWindow::on_volumeSlider_valueChanged(int value)
{
    app::player()->queueGui(OrloEvent::MasterVolumeSet, fraction(ui->volumeSlider, value));
}

void MainWindow::onVolumeChanged(float volume)
{
    setFraction(ui->volumeSlider, volume);
}

QSlider* MainWindow::macroSlider(int number) const
{
    return findChild<QSlider*>(QStringLiteral("macroSlider%1").arg(number));
}

void MainWindow::onMacroSliderValueChanged(int value)
{
    const int number = sender()->objectName().last(1).toInt();
    setMacro(number - 1, value);
}

void MainWindow::setMacro(int index, int sliderValue)
{
    app::player()->queueGui(static_cast<OrloEvent::Type>(OrloEvent::Macro1Set + index),
                            fraction(ui->macroSlider1, sliderValue));
}

void MainWindow::onMacroValueChanged(int macro, float value)
{
    if (QSlider* slider = macroSlider(macro))
        setFraction(slider, value);
}

void MainWindow::onMacroNamesReceived(QStringList names)
{
    for (int number = 1; number <= MACRO_SLIDERS; ++number) {
        auto* label = findChild<QLabel*>(QStringLiteral("macroLabel%1").arg(number));
        QSlider* slider = macroSlider(number);
        const bool used = number <= names.size();
        const QString name = used ? capitalised(names[number - 1]) : QStringLiteral("Unused");
        label->setText(name);
        label->setEnabled(used);
        slider->setEnabled(used);
        slider->setAccessibleName(name);
    }
}

void MainWindow::queueMacros(const QList<float>& values)
{
    const auto count = qMin<qsizetype>(values.size(), MACRO_SLIDERS);
    for (qsizetype i = 0; i < count; ++i) {
        if (MacroList::isDefault(values[i]))
            app::player()->queueGui(static_cast<OrloEvent::Type>(OrloEvent::Macro1Set + i), values[i]);
    }
}

void MainWindow::onMacroDefaultsReceived(QList<float> defaults)
{
    queueMacros(defaults);
    mMacroDefaults = defaults;
}

void MainWindow::onSetMacroSliders(QList<float> values)
{
    queueMacros(values);
}

void MainWindow::setMacroSlidersToDefault()
{
    onMacroDefaultsReceived(QList<float>(mMacroDefaults));
}

/// A slider that is let go while Alt is down returns to its default.
void MainWindow::snapBack(QSlider* slider, int value)
{
    if (mAltDown)
        slider->setValue(value);
}

/// Where the macro's default lies; where the slider is when the patch gave none.
int MainWindow::macroDefaultPosition(int number) const
{
    const QSlider* slider = macroSlider(number);
    if (number > mMacroDefaults.size() || !MacroList::isDefault(mMacroDefaults[number - 1]))
        return slider->value();
    return static_cast<int>(static_cast<float>(slider->maximum()) * mMacroDefaults[number - 1]);
}

void MainWindow::applyRestrictions(bool restricted)
{
    mRestricted = restricted;
    QWidget* const restrictedOnes[] = {ui->chordFrame,      ui->chordStoreFrame, ui->chordPresetsFrame,
                                       ui->chordHoldButton, ui->glissSliderBig,  ui->glissFineSliderBig};
    for (QWidget* widget : restrictedOnes)
        widget->setEnabled(!restricted);
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
    mOptionsDialog->updateCentsDisplay(); // the names of the notes may change by it
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

void MainWindow::setOptionsDialogPosition(QPoint position)
{
    mOptionsDialogPosition = position;
}

// ---------------------------------------------------------------- mode buttons

void MainWindow::modeButtonClicked(const QPushButton* clicked)
{
    QPushButton* const buttons[] = {ui->toggleModeButton, ui->shiftModeButton, ui->removeModeButton,
                                    ui->selectApplyModeButton};
    qint16 mode = 0;
    for (qint16 number = 1; number <= 4; ++number) {
        QPushButton* button = buttons[number - 1];
        if (button != clicked)
            button->setChecked(false);
        else if (button->isChecked())
            mode = number;
    }
    app::application()->setPressMode(mode);
}

void MainWindow::on_toggleModeButton_clicked()
{
    modeButtonClicked(ui->toggleModeButton);
}

void MainWindow::on_shiftModeButton_clicked()
{
    modeButtonClicked(ui->shiftModeButton);
}

void MainWindow::on_removeModeButton_clicked()
{
    modeButtonClicked(ui->removeModeButton);
}

void MainWindow::on_selectApplyModeButton_clicked()
{
    modeButtonClicked(ui->selectApplyModeButton);
}

// ---------------------------------------------------------------- readout

void MainWindow::onTransposeChanged()
{
    updateReadout();
    updateOrloView();
}

void MainWindow::updateReadout()
{
    const OrloRatio& transposition = mOrlo->transposition();
    const float base = mOrlo->baseFrequency();
    const float central = static_cast<float>(transposition.numerator())
                          / static_cast<float>(transposition.denominator()) * base;

    QString steps;
    for (const int step : mOrlo->transposeSteps())
        steps += u'/' + QString::number(step);
    if (steps.isEmpty())
        steps = QStringLiteral("/");
    const QString prefix = QStringLiteral("Shifted prime steps: ");
    const QFontMetrics metrics(font());
    const int room = ui->infoLabel1->width() - metrics.horizontalAdvance(prefix);
    ui->infoLabel1->setText(
        QStringLiteral("%1%2").arg(prefix, metrics.elidedText(steps, Qt::ElideMiddle, room)));

    if (central == base) {
        ui->infoLabel2->setText(
            QStringLiteral("Frequency of central node [= 1/1 Frequency]: %1 Hz").arg(frequencyText(central)));
    } else {
        ui->infoLabel2->setText(QStringLiteral("Frequency of central node: %1 Hz        1/1 Frequency: %2 Hz")
                                    .arg(frequencyText(central), frequencyText(base)));
    }
}

void MainWindow::resizeEvent(QResizeEvent* event)
{
    QMainWindow::resizeEvent(event);
    updateReadout(); // the list of steps is cut to the label's width
}

void MainWindow::changeEvent(QEvent* event)
{
    // The release of an Alt that leads to another window does not come here.
    if (event->type() == QEvent::ActivationChange && !isActiveWindow())
        mAltDown = false;
    QMainWindow::changeEvent(event);
}
