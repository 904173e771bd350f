#include "ui/keyboard/PlayingPage.h"

#include "keyboard/MidiPlaying.h"
#include "ui/dialogs/OptionsPageRows.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QSpinBox>
#include <QVBoxLayout>

using namespace optionspage;

namespace {

constexpr int MACROS = 8;

} // namespace

PlayingPage::PlayingPage(MidiPlaying& playing)
    : mPlaying(playing)
    , mBend(new QSpinBox)
    , mMpe(new QCheckBox(QStringLiteral("Keyboards may announce MPE zones")))
    , mPressure(macroMenu("pressureMacroMenu", playing.settings().pressureMacro))
    , mTimbre(macroMenu("timbreMacroMenu", playing.settings().timbreMacro))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(PAGE_MARGIN, PAGE_MARGIN, PAGE_MARGIN, PAGE_MARGIN);
    QGridLayout* grid = addGrid(layout);

    mBend->setObjectName(QStringLiteral("bendRangeEdit"));
    mBend->setRange(0, KeySettings::MAX_BEND_SEMITONES);
    mBend->setValue(playing.settings().bendSemitones);
    mBend->setKeyboardTracking(false);
    mBend->setAlignment(Qt::AlignRight);
    mBend->setFixedWidth(NUMBER_WIDTH);
    QHBoxLayout* bend = row({mBend, label(QStringLiteral("semitones"))});
    bend->addStretch(1);
    addGridRow(grid, label(QStringLiteral("Pitch bend"), mBend), bend);
    addGridRow(grid, label(QStringLiteral("Pressure"), mPressure), row({mPressure}));
    addGridRow(grid, label(QStringLiteral("Controller 74"), mTimbre), row({mTimbre}));

    mMpe->setObjectName(QStringLiteral("heedMpeBox"));
    mMpe->setChecked(playing.settings().mpe);
    layout->addWidget(mMpe);
    auto* showKeys = new QCheckBox(QStringLiteral("Show keys on the lattice"));
    showKeys->setObjectName(QStringLiteral("showKeysBox"));
    showKeys->setChecked(playing.showsKeys());
    layout->addWidget(showKeys);
    layout->addStretch(1);

    connect(mBend, &QSpinBox::valueChanged, this, &PlayingPage::applySettings);
    connect(mMpe, &QCheckBox::toggled, this, &PlayingPage::applySettings);
    connect(mPressure, &QComboBox::currentIndexChanged, this, &PlayingPage::applySettings);
    connect(mTimbre, &QComboBox::currentIndexChanged, this, &PlayingPage::applySettings);
    connect(showKeys, &QCheckBox::toggled, &playing, &MidiPlaying::setShowsKeys);
}

/// Its index is the macro's number.
QComboBox* PlayingPage::macroMenu(const char* name, int macro)
{
    auto* menu = new QComboBox;
    menu->setObjectName(QLatin1StringView(name));
    setUpMenu(menu);
    menu->addItem(QStringLiteral("Nothing"));
    for (int number = 1; number <= MACROS; ++number)
        menu->addItem(QStringLiteral("Patch parameter %1").arg(number));
    menu->setCurrentIndex(macro);
    return menu;
}

void PlayingPage::applySettings()
{
    KeySettings settings = mPlaying.settings();
    settings.bendSemitones = static_cast<std::uint8_t>(mBend->value());
    settings.mpe = mMpe->isChecked();
    settings.pressureMacro = static_cast<std::uint8_t>(mPressure->currentIndex());
    settings.timbreMacro = static_cast<std::uint8_t>(mTimbre->currentIndex());
    mPlaying.setSettings(settings);
}
