// The note and the frequency of ratio 1/1, and the calibration of A4.
#include "ui/dialogs/OptionsDialog.h"

#include "app/Accessors.h"
#include "app/Settings.h"
#include "model/PitchRange.h"
#include "sound/PdPlayer.h"
#include "ui/dialogs/FrequencySpinBox.h"
#include "ui/dialogs/OneOneNotes.h"
#include "ui/dialogs/OptionsPageRows.h"
#include "ui/hints/ControlHints.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDebug>
#include <QGridLayout>
#include <QLabel>

#include <cmath>

using namespace optionspage;

namespace {

constexpr double LOWEST_CALIBRATION = 349.0; // Hz of A4
constexpr double HIGHEST_CALIBRATION = 499.0;
constexpr int CALIBRATION_DECIMALS = 3;
constexpr double HIGHEST_FREQUENCY =
    999999.0; // Hz that can be typed; the pitch range bounds it at the end of the edit

} // namespace

void OptionsDialog::loadData()
{
    const Settings* settings = app::settings();
    mOneOne = {settings->calibrationFrequency, settings->baseFrequency, settings->baseNote};
}

void OptionsDialog::addPitchRows(QGridLayout* grid)
{
    auto* calibration = new QDoubleSpinBox;
    setUpNumber(calibration, LOWEST_CALIBRATION, HIGHEST_CALIBRATION, CALIBRATION_DECIMALS);
    calibration->setKeyboardTracking(false);
    hints::give(calibration, "calibrationEdit");
    calibration->setValue(mOneOne.calibration());
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
    mOneOneOctaveEdit = new QComboBox;
    mOneOneOctaveEdit->setObjectName(QStringLiteral("oneOneOctaveEdit"));
    for (QComboBox* menu : {mOneOneNoteEdit, mOneOneNoteInOctaveEdit, mOneOneOctaveEdit}) {
        setUpMenu(menu);
        menu->setFixedWidth(menu == mOneOneNoteEdit ? NUMBER_WIDTH : SHORT_MENU_WIDTH);
        connect(menu, &QComboBox::activated, this, &OptionsDialog::onOneOneNoteChanged);
    }
    mOneOneNoteEdit->addItems(OneOneNotes::table().names());
    mOneOneNoteEdit->setCurrentIndex(mOneOne.noteIndex());
    mCentsLabel = label(QStringLiteral("-"));
    hints::give(mCentsLabel, "oneOneCentsLabel");
    QHBoxLayout* noteRow = row({mOneOneNoteEdit, mOneOneNoteInOctaveEdit, mOneOneOctaveEdit, mCentsLabel,
                                label(QStringLiteral("cents"))});
    noteRow->addStretch(1);
    mOneOneNoteLabel = label(QStringLiteral("1/1 Note"), mOneOneNoteEdit);
    addGridRow(grid, mOneOneNoteLabel, noteRow);

    mOneOneFreqEdit = new FrequencySpinBox;
    hints::give(mOneOneFreqEdit, "oneOneFrequencyEdit");
    const float frequency = static_cast<float>(mOneOne.frequency());
    setUpNumber(mOneOneFreqEdit, 0.0, HIGHEST_FREQUENCY, getFloatDecimalPrecision(frequency));
    mOneOneFreqEdit->setValue(mOneOne.frequency());
    mPreviousFrequency = frequency;
    connect(mOneOneFreqEdit, &QDoubleSpinBox::valueChanged, this,
            &OptionsDialog::onOneOneFreqEditValueChanged);
    connect(mOneOneFreqEdit, &QDoubleSpinBox::editingFinished, this,
            &OptionsDialog::onOneOneFreqEditEditingFinished);
    QHBoxLayout* frequencyRow = row({mOneOneFreqEdit, label(QStringLiteral("Hz"))});
    frequencyRow->addStretch(1);
    addGridRow(grid, label(QStringLiteral("1/1 Frequency"), mOneOneFreqEdit), frequencyRow);
}

// ---------------------------------------------------------------- note and frequency compared

int OptionsDialog::getFloatDecimalPrecision(float frequency)
{
    return ReferencePitch::shownDecimals(frequency);
}

bool OptionsDialog::isOneOneFreqTempered(float calibration, float frequency, int noteIndex)
{
    const double tempered = ReferencePitch::temperedFrequency(static_cast<double>(calibration), noteIndex);
    qDebug() << "Options: 1/1 equal tempered? " << tempered << frequency
             << std::abs(tempered - static_cast<double>(frequency));
    const bool isTempered = ReferencePitch::isTempered(calibration, frequency, noteIndex);
    qDebug() << "Is equal tempered" << isTempered;

    const QString menuLook =
        isTempered ? styleSheet() : QStringLiteral("background-color: rgb(32, 32, 32) ;");
    const QString labelLook =
        isTempered ? styleSheet() : QStringLiteral("color: rgb(255, 0, 0) ; font-style: italic ;");
    for (QComboBox* menu : {mOneOneNoteEdit, mOneOneNoteInOctaveEdit, mOneOneOctaveEdit})
        menu->setStyleSheet(menuLook);
    mOneOneNoteLabel->setStyleSheet(labelLook);
    return isTempered;
}

void OptionsDialog::markNote()
{
    isOneOneFreqTempered(static_cast<float>(mOneOne.calibration()), static_cast<float>(mOneOne.frequency()),
                         mOneOne.noteIndex());
}

void OptionsDialog::updateCentsDisplay()
{
    mCentsLabel->setText(mOneOne.centsText());
    // The flag reads the wrong way round: it is on while 1/1 lies too far from its note.
    const bool isFar = mOneOne.isTooFarFromNote();
    Settings* settings = app::settings();
    if (settings->oneOneFreqTempered == isFar)
        return;
    settings->oneOneFreqTempered = isFar;
    emit displayChanged();
}

// ---------------------------------------------------------------- what the player changes

void OptionsDialog::onCalibrationFreqEditValueChanged(double value)
{
    mOneOne.setCalibration(value);
    app::settings()->calibrationFrequency = value;
    markNote();
    emit displayChanged();
    updateCentsDisplay();
}

void OptionsDialog::onOneOneNoteChanged(int)
{
    Settings* settings = app::settings();
    if (settings->oneOneMenuSplitOctaves) {
        mOneOne.setNote(ReferencePitch::noteOfMenus(mOneOneNoteInOctaveEdit->currentText(),
                                                    mOneOneNoteInOctaveEdit->currentIndex(),
                                                    mOneOneOctaveEdit->currentText()));
        mOneOneNoteEdit->setCurrentIndex(mOneOne.noteIndex());
    } else {
        mOneOne.setNote(mOneOneNoteEdit->currentIndex());
    }
    settings->baseNote = mOneOne.note();
    settings->baseNoteFreqRatio = static_cast<float>(mOneOne.frequency() / mOneOne.calibration());

    const double tempered = mOneOne.temperedFrequency();
    if (tempered == mOneOne.frequency()) { // the former note may have been marked
        markNote();
        updateCentsDisplay();
    } else {
        const float value = static_cast<float>(tempered);
        mOneOneFreqEdit->setShownDecimals(getFloatDecimalPrecision(value));
        mOneOneFreqEdit->setValue(static_cast<double>(value));
        emit mOneOneFreqEdit->editingFinished(); // so that the sound follows at once
    }
    populateOneOneSplitMenu();
    emit displayChanged();
}

void OptionsDialog::populateOneOneSplitMenu()
{
    const OneOneNotes& table = OneOneNotes::table();
    const QString note = mOneOne.note().section(u' ', 0, 0);
    const QString octave = mOneOne.note().section(u' ', 1, 1);
    mOneOneOctaveEdit->clear();
    mOneOneNoteInOctaveEdit->clear();
    mOneOneOctaveEdit->addItems(table.octaves());
    mOneOneOctaveEdit->setCurrentText(octave);
    mOneOneNoteInOctaveEdit->addItems(table.notesOf(octave));
    mOneOneNoteInOctaveEdit->setCurrentText(note);
}

void OptionsDialog::showSplitMenus(bool split)
{
    mOneOneNoteEdit->setVisible(!split);
    mOneOneNoteInOctaveEdit->setVisible(split);
    mOneOneOctaveEdit->setVisible(split);
}

void OptionsDialog::onFurtherOptionsChanged5(bool on)
{
    app::settings()->oneOneMenuSplitOctaves = on;
    showSplitMenus(on);
}

void OptionsDialog::onOneOneFreqEditValueChanged(double value)
{
    mOneOneFreqEdit->setShownDecimals(ReferencePitch::typedDecimals(value));
    // One step of the arrows acts at once; what is typed acts when the edit ends.
    const double step = std::abs(value - static_cast<double>(mPreviousFrequency));
    if (step > 0.99 && step < 1.01)
        emit mOneOneFreqEdit->editingFinished();
    mPreviousFrequency = static_cast<float>(value);
}

void OptionsDialog::onOneOneFreqEditEditingFinished()
{
    const float typed = static_cast<float>(mOneOneFreqEdit->value());
    const float frequency = qBound(pitchrange::LOWEST, typed, pitchrange::HIGHEST);
    if (frequency != typed)
        mOneOneFreqEdit->setValue(static_cast<double>(frequency));
    mOneOne.setFrequency(static_cast<double>(frequency));
    app::settings()->baseFrequency = mOneOne.frequency();
    markNote();
    app::player()->queueGui(OrloEvent::BaseFrequencySet, frequency);
    updateCentsDisplay();
}
