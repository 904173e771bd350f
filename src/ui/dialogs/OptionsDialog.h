#pragma once

#include "ui/dialogs/ReferencePitch.h"

#include <QDialog>
#include <QPoint>

class FrequencySpinBox;
class QComboBox;
class QDoubleSpinBox;
class QGridLayout;
class QLabel;
class QTabWidget;
class QVBoxLayout;

/// All options in one window. A control acts when it is changed: it writes its option and tells the
/// sound, the MIDI output or, by a signal, the main window. Closing takes nothing back. Graphical thread.
///
/// A new note of 1/1 sets its frequency, by the calibration of A4. The note never follows the frequency;
/// where the two differ, the note is marked.
class OptionsDialog : public QDialog
{
    Q_OBJECT

public:
    /// Shows the present options. `updateCentsDisplay` comes after it, when the signals are connected.
    explicit OptionsDialog(QWidget* parent);
    ~OptionsDialog() override;

    void selectTab(int index);
    /// Moves the dialog to where it was last closed.
    void rePosition();
    void rePosition(QPoint position);
    /// Disables the MIDI menus and the glissando ranges, or enables them again.
    void applyRestrictions(bool restricted);

    /// Calls ReferencePitch::isTempered, and marks the note when the result is false.
    bool isOneOneFreqTempered(float calibration, float frequency, int noteIndex);
    /// Calls ReferencePitch::shownDecimals.
    static int getFloatDecimalPrecision(float frequency);
    /// Fills the menus of octave and note from the text of the 1/1 note.
    void populateOneOneSplitMenu();
    /// Shows how far 1/1 is from its note, and sets the option by which notes bear names relative to it.
    void updateCentsDisplay();

signals:
    /// An option has changed by which balls and cards are drawn.
    void displayChanged();
    void zoomModeChanged();
    /// The dialog was closed at this place on the screen.
    void closedAt(QPoint position);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private slots:
    void onMainPatchNumberOfVoicesMenuActivated(int index);
    void onAudioDeviceMenuActivated(int index);
    void onMidiOutputDeviceMenuActivated(int index);
    void onMidiOutputChannelMenuActivated(int index);
    void onMidiPortLost(const QString& name);
    void onMidiPortBack(const QString& name);
    void onCalibrationFreqEditValueChanged(double value);
    void onOneOneNoteChanged(int index);
    void onOneOneFreqEditValueChanged(double value);
    void onOneOneFreqEditEditingFinished();
    void onCentsShowDecimalsChanged(int index);
    void onGlissOneRangeChanged(double value);
    void onGlissTwoRangeChanged(double value);
    void onGlissRangeMPEChanged(double value);
    void onFurtherOptionsChanged2(bool on);
    void onFurtherOptionsChanged5(bool on);
    void onMaintainMacrosChanged(bool on);
    void onAllowZoomChanged(bool on);
    void onSoftNodeResetChanged(bool on);
    void onUpdateCheckFrequencyActivated(int index);
    void onUpdateButtonClicked();

private:
    QWidget* buildOptionsPage();
    QWidget* buildRegisterPage();
    QWidget* buildUpdatePage();
    QWidget* buildAboutPage();
    void addVoicesRow(QVBoxLayout* layout);
    void addDeviceRows(QGridLayout* grid);
    void addPitchRows(QGridLayout* grid);
    void addCardRow(QVBoxLayout* layout);
    void addGlissandoRows(QVBoxLayout* layout);
    void addSwitches(QVBoxLayout* layout);

    void letStyleForget();
    void loadData();
    void listAudioDevices();
    void showAudioDevice();
    void showMidi();
    void markNote();
    void showSplitMenus(bool split);

    QPoint mSavedPosition;

    ReferencePitch mOneOne{440.0, 440.0, {}};
    float mPreviousFrequency = 440.0F; // Hz, that the frequency box had last

    QTabWidget* mTabs = nullptr;
    QComboBox* mAudioDeviceMenu = nullptr;
    QComboBox* mMidiDeviceMenu = nullptr;
    QComboBox* mMidiChannelMenu = nullptr;
    QLabel* mOneOneNoteLabel = nullptr;
    QComboBox* mOneOneNoteEdit = nullptr;
    QComboBox* mOneOneNoteInOctaveEdit = nullptr;
    QComboBox* mOneOneOctaveEdit = nullptr;
    QLabel* mCentsLabel = nullptr;
    FrequencySpinBox* mOneOneFreqEdit = nullptr;
    QList<QDoubleSpinBox*> mRangeEdits;
};
