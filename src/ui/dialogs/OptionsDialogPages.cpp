#include "ui/dialogs/OptionsDialog.h"

#include "app/Accessors.h"
#include "app/Settings.h"
#include "external/MidiOutput.h"
#include "sound/AudioOutput.h"
#include "ui/dialogs/FrequencySpinBox.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFile>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QShortcut>
#include <QStyledItemDelegate>
#include <QTabWidget>

namespace {

constexpr int PAGE_MARGIN = 14;
constexpr int ROW_SPACING = 5;
constexpr int HEADING_SPACING = 8;
constexpr int SECTION_SPACING = 13;
constexpr int LABEL_WIDTH = 92;
constexpr int NUMBER_WIDTH = 80;
constexpr int SHORT_MENU_WIDTH = 64;
constexpr int INTERVAL_LABEL_WIDTH = 300;

constexpr double LOWEST_CALIBRATION = 349.0; // Hz of A4
constexpr double HIGHEST_CALIBRATION = 499.0;
constexpr int CALIBRATION_DECIMALS = 3;
constexpr double HIGHEST_FREQUENCY = 999999.0; // Hz that the box takes; the pitch is bounded later
constexpr double WIDEST_GLISSANDO = 9600.0;    // cents
// With the 50 cents of the distance to a key it makes 96 semitones, the most that MPE can have.
constexpr double WIDEST_MPE_GLISSANDO = 9550.0;

QLabel* label(const QString& text, QWidget* buddy = nullptr)
{
    auto* made = new QLabel(text);
    made->setBuddy(buddy);
    return made;
}

void setUpNumber(QDoubleSpinBox* box, double lowest, double highest, int decimals)
{
    box->setAlignment(Qt::AlignRight);
    box->setAccelerated(true);
    box->setCorrectionMode(QAbstractSpinBox::CorrectToNearestValue);
    box->setDecimals(decimals);
    box->setRange(lowest, highest);
    box->setFixedWidth(NUMBER_WIDTH);
}

/// The long names of devices must not widen the window.
void setUpMenu(QComboBox* menu)
{
    menu->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    menu->setItemDelegate(new QStyledItemDelegate(menu)); // without it the style sheet's rows are ignored
}

QHBoxLayout* row(std::initializer_list<QWidget*> widgets)
{
    auto* layout = new QHBoxLayout;
    layout->setSpacing(ROW_SPACING);
    for (QWidget* widget : widgets)
        layout->addWidget(widget);
    return layout;
}

QGridLayout* addGrid(QVBoxLayout* page)
{
    auto* grid = new QGridLayout;
    grid->setVerticalSpacing(ROW_SPACING);
    grid->setHorizontalSpacing(ROW_SPACING);
    grid->setColumnMinimumWidth(0, LABEL_WIDTH);
    grid->setColumnStretch(1, 1);
    page->addLayout(grid);
    return grid;
}

void addGridRow(QGridLayout* grid, QLabel* caption, QHBoxLayout* controls)
{
    const int number = grid->rowCount();
    grid->addWidget(caption, number, 0);
    grid->addLayout(controls, number, 1);
}

void addLongRow(QVBoxLayout* page, const QString& text, QComboBox* menu)
{
    setUpMenu(menu);
    menu->setFixedWidth(SHORT_MENU_WIDTH);
    QHBoxLayout* layout = row({label(text, menu)});
    layout->addStretch(1);
    layout->addWidget(menu);
    page->addLayout(layout);
}

QWidget* page()
{
    auto* widget = new QWidget;
    auto* layout = new QVBoxLayout(widget);
    layout->setContentsMargins(PAGE_MARGIN, PAGE_MARGIN, PAGE_MARGIN, PAGE_MARGIN);
    layout->setSpacing(SECTION_SPACING);
    return widget;
}

QVBoxLayout* layoutOf(QWidget* page)
{
    return static_cast<QVBoxLayout*>(page->layout());
}

} // namespace

/// The text lies in a static library, whose resources Qt does not find by itself.
static void initTexts()
{
    Q_INIT_RESOURCE(text);
}

OptionsDialog::OptionsDialog(QWidget* parent)
    : QDialog(parent, Qt::Tool)
{
    initTexts();
    setWindowTitle(QStringLiteral("Options"));
    setFixedSize(450, 540);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    mTabs = new QTabWidget;
    mTabs->addTab(buildOptionsPage(), QStringLiteral("Options"));
    mTabs->addTab(buildRegisterPage(), QStringLiteral("Register"));
    mTabs->addTab(buildUpdatePage(), QStringLiteral("Update"));
    mTabs->addTab(buildAboutPage(), QStringLiteral("About"));
    layout->addWidget(mTabs, 1);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, Qt::Horizontal);
    buttons->setStyleSheet(QStringLiteral("margin: 12px;"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QWidget::close);
    layout->addWidget(buttons);

    // A menu that has the focus looks for an entry of this key instead of passing it on.
    auto* closing = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_Comma), this);
    connect(closing, &QShortcut::activated, this, &QWidget::close);
    // Before the options are stored for the last time: it ends what is being edited.
    connect(qApp, &QCoreApplication::aboutToQuit, this, &QWidget::hide);
}

// ---------------------------------------------------------------- options

QWidget* OptionsDialog::buildOptionsPage()
{
    loadData();
    QWidget* widget = page();
    QVBoxLayout* layout = layoutOf(widget);
    addVoicesRow(layout);
    QGridLayout* grid = addGrid(layout);
    addDeviceRows(grid);
    addPitchRows(grid);
    addCardRow(layout);
    addGlissandoRows(layout);
    addSwitches(layout);
    layout->addStretch(1);

    showSplitMenus(app::settings()->oneOneMenuSplitOctaves);
    populateOneOneSplitMenu();
    markNote();
    return widget;
}

void OptionsDialog::addVoicesRow(QVBoxLayout* layout)
{
    const Settings* settings = app::settings();
    auto* menu = new QComboBox;
    menu->setObjectName(QStringLiteral("numberOfVoicesMenu"));
    for (const int voices : settings->mainPatchVoiceChoices)
        menu->addItem(QString::number(voices));
    menu->setCurrentIndex(
        static_cast<int>(settings->mainPatchVoiceChoices.indexOf(settings->mainPatchNumberOfVoices)));
    connect(menu, &QComboBox::activated, this, &OptionsDialog::onMainPatchNumberOfVoicesMenuActivated);
    addLongRow(layout, QStringLiteral("Maximum number of voices (restart required)"), menu);
}

void OptionsDialog::addDeviceRows(QGridLayout* grid)
{
    mAudioDeviceMenu = new QComboBox;
    mAudioDeviceMenu->setPlaceholderText(QStringLiteral("- none open -"));
    mMidiDeviceMenu = new QComboBox;
    mMidiDeviceMenu->setObjectName(QStringLiteral("midiOutputDeviceMenu"));
    mMidiChannelMenu = new QComboBox;
    mMidiChannelMenu->setObjectName(QStringLiteral("midiOutputChannelMenu"));
    mMidiChannelMenu->setAccessibleName(QStringLiteral("MIDI mode and channel"));
    for (QComboBox* menu : {mAudioDeviceMenu, mMidiDeviceMenu, mMidiChannelMenu})
        setUpMenu(menu);
    for (QComboBox* menu : {mAudioDeviceMenu, mMidiDeviceMenu}) // names longer than the menu
        connect(menu, &QComboBox::currentTextChanged, menu, &QWidget::setToolTip);
    listAudioDevices();
    mMidiDeviceMenu->addItem(MidiOutput::deactivatedName());
    mMidiDeviceMenu->addItems(app::midiOutput()->availablePorts());
    mMidiChannelMenu->addItem(QStringLiteral("MPE"));
    for (int channel = 1; channel <= MidiOutput::CHANNELS; ++channel)
        mMidiChannelMenu->addItem(QStringLiteral("MTS Ch ") + QString::number(channel));
    showMidi();
    connect(mAudioDeviceMenu, &QComboBox::activated, this, &OptionsDialog::onAudioDeviceMenuActivated);
    connect(mMidiDeviceMenu, &QComboBox::activated, this, &OptionsDialog::onMidiOutputDeviceMenuActivated);
    connect(mMidiChannelMenu, &QComboBox::activated, this, &OptionsDialog::onMidiOutputChannelMenuActivated);
    connect(app::audioOutput(), &AudioOutput::selectedDeviceChanged, this, &OptionsDialog::showAudioDevice);
    connect(app::audioOutput(), &AudioOutput::devicesChanged, this, &OptionsDialog::listAudioDevices);
    connect(app::midiOutput(), &MidiOutput::portLost, this, &OptionsDialog::onMidiPortLost);
    connect(app::midiOutput(), &MidiOutput::portBack, this, &OptionsDialog::onMidiPortBack);

    addGridRow(grid, label(QStringLiteral("Audio Device"), mAudioDeviceMenu), row({mAudioDeviceMenu}));
    QHBoxLayout* midi = row({mMidiDeviceMenu, mMidiChannelMenu});
    midi->setStretch(0, 5);
    midi->setStretch(1, 3);
    addGridRow(grid, label(QStringLiteral("MIDI Output"), mMidiDeviceMenu), midi);
}

void OptionsDialog::addPitchRows(QGridLayout* grid)
{
    auto* calibration = new QDoubleSpinBox;
    setUpNumber(calibration, LOWEST_CALIBRATION, HIGHEST_CALIBRATION, CALIBRATION_DECIMALS);
    calibration->setKeyboardTracking(false);
    calibration->setValue(mCalibration);
    connect(calibration, &QDoubleSpinBox::valueChanged, this,
            &OptionsDialog::onCalibrationFreqEditValueChanged);
    QHBoxLayout* calibrationRow =
        row({label(QStringLiteral("A4 ="), calibration), calibration, label(QStringLiteral("Hz"))});
    calibrationRow->addStretch(1);
    addGridRow(grid, label(QStringLiteral("Calibration"), calibration), calibrationRow);

    auto* split = new QCheckBox(QStringLiteral("Split octaves and notes"));
    split->setObjectName(QStringLiteral("splitOctavesNotes"));
    split->setChecked(app::settings()->oneOneMenuSplitOctaves);
    connect(split, &QCheckBox::clicked, this, &OptionsDialog::onFurtherOptionsChanged5);
    grid->addWidget(split, grid->rowCount(), 1);

    mOneOneNoteEdit = new QComboBox;
    mOneOneNoteEdit->setObjectName(QStringLiteral("oneOneNoteEdit"));
    mOneOneNoteInOctaveEdit = new QComboBox;
    mOneOneNoteInOctaveEdit->setObjectName(QStringLiteral("oneOneNoteInOctaveEdit"));
    mOneOneNoteInOctaveEdit->setAccessibleName(QStringLiteral("1/1 note within its octave"));
    mOneOneOctaveEdit = new QComboBox;
    mOneOneOctaveEdit->setObjectName(QStringLiteral("oneOneOctaveEdit"));
    mOneOneOctaveEdit->setAccessibleName(QStringLiteral("Octave of the 1/1 note"));
    for (QComboBox* menu : {mOneOneNoteEdit, mOneOneNoteInOctaveEdit, mOneOneOctaveEdit}) {
        setUpMenu(menu);
        menu->setFixedWidth(menu == mOneOneNoteEdit ? NUMBER_WIDTH : SHORT_MENU_WIDTH);
        connect(menu, &QComboBox::activated, this, &OptionsDialog::onOneOneNoteChanged);
    }
    mOneOneNoteEdit->addItems(mNoteTable.names());
    mOneOneNoteEdit->setCurrentIndex(mOneOneNoteIndex);
    mCentsLabel = label(QStringLiteral("-"));
    QHBoxLayout* noteRow = row({mOneOneNoteEdit, mOneOneNoteInOctaveEdit, mOneOneOctaveEdit, mCentsLabel,
                                label(QStringLiteral("cents"))});
    noteRow->addStretch(1);
    mOneOneNoteLabel = label(QStringLiteral("1/1 Note"), mOneOneNoteEdit);
    addGridRow(grid, mOneOneNoteLabel, noteRow);

    mOneOneFreqEdit = new FrequencySpinBox;
    const float frequency = static_cast<float>(mOneOneFrequency);
    setUpNumber(mOneOneFreqEdit, 0.0, HIGHEST_FREQUENCY, getFloatDecimalPrecision(frequency));
    mOneOneFreqEdit->setValue(mOneOneFrequency);
    mPreviousFrequency = frequency;
    connect(mOneOneFreqEdit, &QDoubleSpinBox::valueChanged, this,
            &OptionsDialog::onOneOneFreqEditValueChanged);
    connect(mOneOneFreqEdit, &QDoubleSpinBox::editingFinished, this,
            &OptionsDialog::onOneOneFreqEditEditingFinished);
    QHBoxLayout* frequencyRow = row({mOneOneFreqEdit, label(QStringLiteral("Hz"))});
    frequencyRow->addStretch(1);
    addGridRow(grid, label(QStringLiteral("1/1 Frequency"), mOneOneFreqEdit), frequencyRow);
}

void OptionsDialog::addCardRow(QVBoxLayout* layout)
{
    auto* menu = new QComboBox;
    menu->setObjectName(QStringLiteral("centsDisplayDecimals"));
    menu->addItems({QStringLiteral("0"), QStringLiteral("1"), QStringLiteral("2")});
    const int decimals = app::settings()->centsShowDecimals;
    if (decimals >= 0 && decimals < menu->count())
        menu->setCurrentIndex(decimals);
    connect(menu, &QComboBox::activated, this, &OptionsDialog::onCentsShowDecimalsChanged);
    addLongRow(layout, QStringLiteral("Cards: Round cents display to decimals: "), menu);
}

void OptionsDialog::addGlissandoRows(QVBoxLayout* layout)
{
    auto* heading = label(QStringLiteral("Glissando range (one way)"));
    heading->setObjectName(QStringLiteral("optionsHeading"));
    auto* section = new QVBoxLayout;
    section->setSpacing(HEADING_SPACING);
    layout->addLayout(section);
    section->addWidget(heading);
    QGridLayout* grid = addGrid(section);
    const Settings* settings = app::settings();
    struct Row
    {
        QString caption;
        double widest;
        double value;
        void (OptionsDialog::*slot)(double);
    };
    const Row rows[] = {
        {QStringLiteral("G-slider "), WIDEST_GLISSANDO, static_cast<double>(settings->glissOneRangeCents),
         &OptionsDialog::onGlissOneRangeChanged},
        {QStringLiteral("g-slider "), WIDEST_GLISSANDO, static_cast<double>(settings->glissTwoRangeCents),
         &OptionsDialog::onGlissTwoRangeChanged},
        {QStringLiteral("MIDI MPE limit "), WIDEST_MPE_GLISSANDO,
         static_cast<double>(settings->glissRangeMPECents), &OptionsDialog::onGlissRangeMPEChanged},
    };
    for (const auto& [caption, widest, value, slot] : rows) {
        auto* box = new QDoubleSpinBox;
        setUpNumber(box, 0.0, widest, 0);
        box->setKeyboardTracking(false);
        box->setValue(value);
        connect(box, &QDoubleSpinBox::valueChanged, this, slot);
        QHBoxLayout* controls = row({box, label(QStringLiteral("cents"))});
        controls->addStretch(1);
        addGridRow(grid, label(caption, box), controls);
        mRangeEdits.append(box);
    }
}

void OptionsDialog::addSwitches(QVBoxLayout* layout)
{
    const Settings* settings = app::settings();
    struct Switch
    {
        const char* name;
        QString text;
        bool on;
        void (OptionsDialog::*slot)(bool);
    };
    const Switch switches[] = {
        {"centralNodePIRM", QStringLiteral("Central node turns pale when shifting in relative mode"),
         settings->centralNodeColourRelativeMode, &OptionsDialog::onFurtherOptionsChanged2},
        {"maintainMacros", QStringLiteral("Maintain macro parameters when switching patches"),
         settings->maintainMacroParameters, &OptionsDialog::onMaintainMacrosChanged},
        {"allowZoom", QStringLiteral("Orlo: Allow zoom"), settings->orloZoomMode > 0,
         &OptionsDialog::onAllowZoomChanged},
        {"softNodeReset", QStringLiteral("Nodes: Soft reset"), settings->softNodeReset,
         &OptionsDialog::onSoftNodeResetChanged},
    };
    auto* column = new QVBoxLayout;
    column->setSpacing(ROW_SPACING);
    layout->addLayout(column);
    for (const auto& [name, text, on, slot] : switches) {
        auto* box = new QCheckBox(text);
        box->setObjectName(QLatin1StringView(name));
        box->setChecked(on);
        connect(box, &QCheckBox::clicked, this, slot);
        column->addWidget(box);
    }
}

// ---------------------------------------------------------------- the other pages

QWidget* OptionsDialog::buildRegisterPage()
{
    QWidget* widget = page();
    auto* text = label(
        QStringLiteral("This build of %1 needs no registration.").arg(QCoreApplication::applicationName()));
    text->setWordWrap(true);
    layoutOf(widget)->addWidget(text);
    layoutOf(widget)->addStretch(1);
    return widget;
}

QWidget* OptionsDialog::buildUpdatePage()
{
    QWidget* widget = page();
    QVBoxLayout* layout = layoutOf(widget);
    layout->addWidget(
        label(QStringLiteral("The current version is: ") + QCoreApplication::applicationVersion()));

    auto* interval = new QComboBox;
    interval->setObjectName(QStringLiteral("updateIntervalBox"));
    setUpMenu(interval);
    interval->addItems({QStringLiteral("always"), QStringLiteral("weekly"), QStringLiteral("monthly"),
                        QStringLiteral("quarterly"), QStringLiteral("never")});
    interval->setCurrentIndex(app::settings()->updateCheckInterval);
    connect(interval, &QComboBox::activated, this, &OptionsDialog::onUpdateCheckFrequencyActivated);
    auto* caption = label(QStringLiteral("Check for updates automatically at startup:"), interval);
    caption->setWordWrap(true);
    caption->setMinimumWidth(INTERVAL_LABEL_WIDTH);
    layout->addLayout(row({caption, interval}));
    layout->addStretch(1);

    auto* button = new QPushButton(QStringLiteral("Search for updates now ..."));
    button->setObjectName(QStringLiteral("updateCheckButton"));
    connect(button, &QPushButton::clicked, this, &OptionsDialog::onUpdateButtonClicked);
    layout->addWidget(button);
    return widget;
}

QWidget* OptionsDialog::buildAboutPage()
{
    QFile file(QStringLiteral(":/text/about.html"));
    if (!file.open(QIODevice::ReadOnly))
        qCritical() << "The text about the program is missing.";
    auto* text = label(QString::fromUtf8(file.readAll())
                           .replace(QStringLiteral("<version>"), QCoreApplication::applicationVersion()));
    text->setTextFormat(Qt::RichText);
    text->setWordWrap(true);
    text->setOpenExternalLinks(true);
    text->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    text->setContentsMargins(PAGE_MARGIN, PAGE_MARGIN, PAGE_MARGIN, PAGE_MARGIN);
    auto* scroll = new QScrollArea;
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setWidget(text);
    return scroll;
}
