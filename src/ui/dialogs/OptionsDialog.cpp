#include "ui/dialogs/OptionsDialog.h"

#include "app/Accessors.h"
#include "app/Settings.h"
#include "external/MidiOutput.h"
#include "external/MpeBendRange.h"
#include "model/PitchRange.h"
#include "sound/AudioOutput.h"
#include "sound/PdPlayer.h"
#include "ui/dialogs/FrequencySpinBox.h"
#include "ui/dialogs/Notice.h"
#include "update/UpdateDialog.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QDebug>
#include <QKeyEvent>
#include <QLabel>
#include <QTabWidget>

#include <cmath>
#include <limits>

namespace {

constexpr double REFERENCE_A4 = 440.0;      // Hz, of the note table
constexpr double FURTHEST_FROM_NOTE = 50.0; // cents
constexpr int ZOOM_ON = 6;
constexpr int FIRST_SPLIT_INDEX_BELOW_A0 = 4;
constexpr int FIRST_SPLIT_INDEX_OF_A8 = 3;

/// While the frequency is typed: shorter than what the program shows, so that there is room.
int decimalsOfTyped(double frequency)
{
    if (frequency >= 10000.0)
        return 1;
    if (frequency >= 1000.0)
        return 2;
    return frequency >= 100.0 ? 3 : 4;
}

} // namespace

OptionsDialog::~OptionsDialog()
{
    // An edit that the closing ends still finds all of its parts.
    hide();
}

void OptionsDialog::loadData()
{
    const Settings* settings = app::settings();
    mCalibration = settings->calibrationFrequency;
    mOneOneFrequency = settings->baseFrequency;
    mOneOneNote = settings->baseNote;
    mOneOneNoteIndex = mNoteTable.indexOf(mOneOneNote);
}

// ---------------------------------------------------------------- the window

void OptionsDialog::selectTab(int index)
{
    mTabs->setCurrentIndex(index);
}

void OptionsDialog::rePosition()
{
    move(mSavedPosition);
}

void OptionsDialog::rePosition(QPoint position)
{
    move(position);
}

void OptionsDialog::applyRestrictions(bool restricted)
{
    if (restricted) {
        mMidiDeviceMenu->setCurrentIndex(0);
        mMidiChannelMenu->setCurrentIndex(0);
    } else {
        showMidi();
    }
    for (QWidget* control : std::initializer_list<QWidget*>{mMidiDeviceMenu, mMidiChannelMenu})
        control->setEnabled(!restricted);
    for (QDoubleSpinBox* range : mRangeEdits)
        range->setEnabled(!restricted);
}

void OptionsDialog::keyPressEvent(QKeyEvent* event)
{
    const bool comma = event->key() == Qt::Key_Comma && event->modifiers().testFlag(Qt::ControlModifier);
    if (event->key() == Qt::Key_Escape || comma)
        close();
    else
        event->ignore();
}

void OptionsDialog::closeEvent(QCloseEvent* event)
{
    qDebug() << "Options: position before" << mSavedPosition;
    mSavedPosition = pos();
    emit closedAt(mSavedPosition);
    qDebug() << "Options: position after" << mSavedPosition;
    event->accept();
}

// ---------------------------------------------------------------- 1/1

int OptionsDialog::getFloatDecimalPrecision(float frequency)
{
    int decimals = 6;
    for (float bound = 1.0F; decimals > 1 && frequency >= bound; bound *= 10.0F)
        --decimals;
    return decimals;
}

bool OptionsDialog::isOneOneFreqTempered(float calibration, float frequency, int noteIndex)
{
    const double tempered = static_cast<double>(mNoteTable.frequency(noteIndex))
                            * static_cast<double>(calibration) / REFERENCE_A4;
    const double given = static_cast<double>(frequency);
    const double difference = std::abs(tempered - given);
    qDebug() << "Options: 1/1 equal tempered? " << tempered << frequency << difference;
    // A note just chosen is rounded to its decimals as a float: that may go one float too far, as
    // with "Ab 5" at A4 = 442 Hz.
    const double roundingOfFloat = given * std::numeric_limits<float>::epsilon();
    const bool isTempered =
        difference < std::pow(10.0, -getFloatDecimalPrecision(frequency)) / 2.0 + roundingOfFloat;
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
    isOneOneFreqTempered(static_cast<float>(mCalibration), static_cast<float>(mOneOneFrequency),
                         mOneOneNoteIndex);
}

void OptionsDialog::updateCentsDisplay()
{
    const double ratio = (mOneOneFrequency / static_cast<double>(mNoteTable.frequency(mOneOneNoteIndex)))
                         / (mCalibration / REFERENCE_A4);
    const float cents = std::log(static_cast<float>(ratio)) / 0.6931472F * 1200.0F;
    const double rounded = std::round(static_cast<double>(cents) * 100.0) / 100.0;

    // Also what is no number at all, of a calibration of 0 in the options.
    const bool isFar = !(std::abs(rounded) <= FURTHEST_FROM_NOTE);
    if (isFar)
        mCentsLabel->setText(QStringLiteral("..."));
    else if (rounded == 0.0)
        mCentsLabel->setText(QStringLiteral("0"));
    else
        mCentsLabel->setText(
            QStringLiteral("%1%2").arg(QChar(rounded > 0.0 ? u'+' : u'-')).arg(std::abs(rounded), 4, 'f', 2));

    // On while the pitch is too far from the note to be called by its name.
    Settings* settings = app::settings();
    if (settings->oneOneFreqTempered == isFar)
        return;
    settings->oneOneFreqTempered = isFar;
    emit displayChanged();
}

void OptionsDialog::onCalibrationFreqEditValueChanged(double value)
{
    mCalibration = value;
    app::settings()->calibrationFrequency = value;
    markNote();
    emit displayChanged();
    updateCentsDisplay();
}

/// The test goes by the place in the menu, which may still be that of another octave.
void OptionsDialog::chooseSplitNote()
{
    const QString octave = mOneOneOctaveEdit->currentText();
    const int place = mOneOneNoteInOctaveEdit->currentIndex();
    if ((octave == QStringLiteral("0") && place >= FIRST_SPLIT_INDEX_BELOW_A0)
        || (octave == QStringLiteral("8") && place < FIRST_SPLIT_INDEX_OF_A8))
        mOneOneNoteInOctaveEdit->setCurrentText(QStringLiteral("A"));
    mOneOneNote = mOneOneNoteInOctaveEdit->currentText() + u' ' + octave;
    mOneOneNoteEdit->setCurrentText(mOneOneNote);
    mOneOneNoteIndex = mOneOneNoteEdit->currentIndex();
}

void OptionsDialog::onOneOneNoteChanged(int)
{
    Settings* settings = app::settings();
    if (settings->oneOneMenuSplitOctaves) {
        chooseSplitNote();
    } else {
        mOneOneNoteIndex = mOneOneNoteEdit->currentIndex();
        mOneOneNote = mNoteTable.names().value(mOneOneNoteIndex);
    }
    settings->baseNote = mOneOneNote;
    settings->baseNoteFreqRatio = static_cast<float>(mOneOneFrequency / mCalibration);

    const double tempered =
        static_cast<double>(mNoteTable.frequency(mOneOneNoteIndex)) * mCalibration / REFERENCE_A4;
    if (tempered == mOneOneFrequency) { // the former note may have been marked
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
    const QString note = mOneOneNote.section(u' ', 0, 0);
    const QString octave = mOneOneNote.section(u' ', 1, 1);
    mOneOneOctaveEdit->clear();
    mOneOneNoteInOctaveEdit->clear();
    mOneOneOctaveEdit->addItems(mNoteTable.octaves());
    mOneOneOctaveEdit->setCurrentText(octave);
    mOneOneNoteInOctaveEdit->addItems(mNoteTable.notesOf(octave));
    mOneOneNoteInOctaveEdit->setCurrentText(note);
}

void OptionsDialog::showSplitMenus(bool split)
{
    mOneOneNoteEdit->setVisible(!split);
    mOneOneNoteInOctaveEdit->setVisible(split);
    mOneOneOctaveEdit->setVisible(split);
}

void OptionsDialog::onOneOneFreqEditValueChanged(double value)
{
    mOneOneFreqEdit->setShownDecimals(decimalsOfTyped(value));
    // One step of the arrows acts at once, what is typed when the edit ends.
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
    mOneOneFrequency = static_cast<double>(frequency);
    app::settings()->baseFrequency = mOneOneFrequency;
    markNote();
    app::player()->queueGui(OrloEvent::BaseFrequencySet, frequency);
    updateCentsDisplay();
}

// ---------------------------------------------------------------- devices

void OptionsDialog::listAudioDevices()
{
    mAudioDeviceMenu->clear();
    mAudioDeviceMenu->addItems(app::audioOutput()->devices());
    showAudioDevice();
}

void OptionsDialog::showAudioDevice()
{
    mAudioDeviceMenu->setCurrentIndex(app::audioOutput()->selectedDevice());
}

void OptionsDialog::showMidi()
{
    mMidiDeviceMenu->setCurrentIndex(qMax(0, mMidiDeviceMenu->findText(app::midiOutput()->portName)));
    mMidiChannelMenu->setCurrentIndex(app::midiOutput()->channel + 1);
}

void OptionsDialog::onAudioDeviceMenuActivated(int index)
{
    AudioOutput* output = app::audioOutput();
    int former = output->selectedDevice();
    const QString formerName = mAudioDeviceMenu->itemText(former);
    const QString name = mAudioDeviceMenu->itemText(index); // the list may change
    if (!output->selectDevice(index)) {
        notice::show(this, QMessageBox::Critical,
                     QStringLiteral("Failed to open audio device %1.").arg(name));
        if (mAudioDeviceMenu->itemText(former) != formerName)
            former = mAudioDeviceMenu->findText(formerName);
        output->selectDevice(former);
    }
    showAudioDevice();
}

void OptionsDialog::onMidiOutputDeviceMenuActivated(int index)
{
    MidiOutput* output = app::midiOutput();
    const QString former = output->portName;
    const QString chosen = mMidiDeviceMenu->itemText(index);
    const bool endsWaiting = index == 0 && !output->missingPort().isEmpty();
    if (chosen == former && !endsWaiting)
        return;
    if (index == 0) {
        if (output->selectPort(-1)) {
            notice::show(this, QMessageBox::Critical,
                         QStringLiteral("Failed to close Midi output port / device %1.").arg(former));
            mMidiDeviceMenu->setCurrentText(former);
        }
    } else if (!output->selectPort(chosen)) {
        notice::show(this, QMessageBox::Critical,
                     QStringLiteral("Failed to open Midi output port / device %1.").arg(chosen));
        mMidiDeviceMenu->setCurrentIndex(0);
    }
}

void OptionsDialog::onMidiOutputChannelMenuActivated(int index)
{
    app::midiOutput()->setChannel(index - 1);
    qDebug() << "Midi channel set to: " << index - 1;
}

void OptionsDialog::onMidiPortBack(const QString& name)
{
    if (mMidiDeviceMenu->findText(name) < 0)
        mMidiDeviceMenu->addItem(name);
    if (mMidiDeviceMenu->isEnabled())
        showMidi();
}

void OptionsDialog::onMidiPortLost(const QString& name)
{
    mMidiDeviceMenu->setCurrentIndex(0);
    notice::show( // over the window, since the dialog may be closed
        parentWidget(), QMessageBox::Warning,
        QStringLiteral("The Midi output port / device %1 no longer answers and was closed.").arg(name));
}

void OptionsDialog::onMainPatchNumberOfVoicesMenuActivated(int index)
{
    Settings* settings = app::settings();
    const int voices = settings->mainPatchVoiceChoices.value(index);
    if (voices == settings->mainPatchNumberOfVoices)
        return;
    settings->mainPatchNumberOfVoices = voices;
    notice::show(this, QMessageBox::Information,
                 QStringLiteral("Changing the maximum number of voices will only be effective after restart. "
                                "Please close and restart the application!"));
}

// ---------------------------------------------------------------- the rest

void OptionsDialog::onCentsShowDecimalsChanged(int index)
{
    app::settings()->centsShowDecimals = index;
    emit displayChanged();
}

void OptionsDialog::onGlissOneRangeChanged(double value)
{
    app::settings()->glissOneRangeCents = static_cast<float>(value);
    app::player()->queueGui(OrloEvent::GlissOneReset, 1.0F);
}

void OptionsDialog::onGlissTwoRangeChanged(double value)
{
    app::settings()->glissTwoRangeCents = static_cast<float>(value);
    app::player()->queueGui(OrloEvent::GlissTwoReset, 1.0F);
}

void OptionsDialog::onGlissRangeMPEChanged(double value)
{
    const int cents = static_cast<int>(value);
    app::settings()->glissRangeMPECents = cents;
    app::midiOutput()->mpeSetPitchBendRange(mpe::bendRange(cents));
}

void OptionsDialog::onFurtherOptionsChanged2(bool on)
{
    app::settings()->centralNodeColourRelativeMode = on;
    emit displayChanged();
}

void OptionsDialog::onFurtherOptionsChanged5(bool on)
{
    app::settings()->oneOneMenuSplitOctaves = on;
    showSplitMenus(on);
}

void OptionsDialog::onMaintainMacrosChanged(bool on)
{
    app::settings()->maintainMacroParameters = on;
}

void OptionsDialog::onAllowZoomChanged(bool on)
{
    app::settings()->orloZoomMode = on ? ZOOM_ON : 0;
    emit zoomModeChanged();
}

void OptionsDialog::onSoftNodeResetChanged(bool on)
{
    app::settings()->softNodeReset = on;
}

void OptionsDialog::onUpdateCheckFrequencyActivated(int index)
{
    app::settings()->updateCheckInterval = index;
}

void OptionsDialog::onUpdateButtonClicked()
{
    UpdateDialog::startCheck(this, true);
}
