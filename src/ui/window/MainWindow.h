#pragma once

#include <QList>
#include <QMainWindow>
#include <QPoint>
#include <QPointer>

#include <memory>

class ChordFiles;
class DiagnosticsDialog;
class FirstSteps;
class HarmonyDock;
class KeyMap;
class MenuButton;
class OptionsDialog;
class Orlo;
class OrloLayer;
class OrloView;
class Readout;
class TweakDialog;
struct PanelParts;

namespace Ui {
class MainWindow;
}

/// The one window. It holds the form, the two pages of the lattice and the dialogs, and hands each slot
/// on to the part of the panel that does the work. Every sound action goes to the player as an event;
/// what comes back is written into the controls with their signals blocked, so that it is not sent again.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(Orlo* orlo);
    ~MainWindow() override;

    /// The view of the page now shown.
    OrloView* orloView() const;
    /// Draws balls and cards of the page now shown by the present options.
    void updateOrloView();
    /// Rebuilds the page now shown, and only this one, after the geometry constants were edited.
    void updateTweaks();
    /// Applies the option `orloZoomMode` to the page now shown.
    void updateZoomMode();
    /// Sets the display switches as the options have them.
    void setButtons();
    void setMacroSlidersToDefault();
    /// Makes the chord panel and the two big glissando sliders unavailable, or available again.
    void applyRestrictions(bool restricted);

    /// Begins the first steps, from the first card on.
    void showFirstSteps();

    /// Where the options dialog opens the next time.
    void setOptionsDialogPosition(QPoint position);
    // What ChordPanel does under these names.
    void reloadAllSoundingRatios();
    void overrideChordButtonStorage(int number);
    void setChordButton(int number, bool on);
    void refreshChordButtons();
    void clearAllChordButtons();

    // What PatchMenu does under these names.
    void loadPatch(const QString& path);
    void patch_by_Index(int index);

    /// Further entries may be added.
    MenuButton* menuButton() const;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private slots:
    void onTransposeChanged();
    void onVolumeChanged(float volume);
    void onMonophonicChanged(bool on);
    void onMacroValueChanged(int macro, float value);
    void onMacroNamesReceived(QStringList names);
    void onMacroDefaultsReceived(QList<float> defaults);
    void onSetMacroSliders(QList<float> values);
    void onPatchDecRequested();
    void onPatchIncRequested();
    void onResetGlissSliders(short which);

    void onMacroSliderValueChanged(int value);
    void onSwitcherClicked(QString link);
    void onAbsRelSwitcherClicked(QString link);

    void on_circlesViewButton_clicked();
    void on_grapesViewButton_clicked();
    void on_absoluteModeButton_clicked();
    void on_relativeModeButton_clicked();
    void on_normalizeRatiosButton_clicked();
    void on_soundgrapeColourButton_clicked();
    void on_soundgrapeBWButton_clicked();
    void on_expandOrloButton_clicked();
    void on_optionsButton_clicked();
    void on_monoButton_clicked();
    void on_polyButton_clicked();
    void on_stopAllButton_clicked();
    void on_volumeSlider_valueChanged(int value);
    void on_glissSliderBig_valueChanged(int value);
    void on_glissFineSliderBig_valueChanged(int value);
    void on_glissButton_clicked();
    void on_glissFineButton_clicked();
    void on_glissResetButton_clicked();
    void on_toggleModeButton_clicked();
    void on_shiftModeButton_clicked();
    void on_removeModeButton_clicked();
    void on_selectApplyModeButton_clicked();

    void on_chordButton_01_clicked();
    void on_chordButton_02_clicked();
    void on_chordButton_03_clicked();
    void on_chordButton_04_clicked();
    void on_chordButton_05_clicked();
    void on_chordButton_06_clicked();
    void on_chordButton_07_clicked();
    void on_chordButton_08_clicked();
    void on_chordButton_09_clicked();
    void on_chordButton_10_clicked();
    void on_chordButton_11_clicked();
    void on_chordButton_12_clicked();
    void on_chordButton_13_clicked();
    void on_chordButton_14_clicked();
    void on_chordButton_15_clicked();
    void on_chordButton_16_clicked();
    void on_chordButton_17_clicked();
    void on_chordButton_18_clicked();
    void on_chordButton_19_clicked();
    void on_chordButton_20_clicked();
    void on_chordRowButton_01_clicked();
    void on_chordRowButton_02_clicked();
    void on_chordStoreToButton_clicked();
    void on_chordClearButton_clicked();
    void on_chordClearAllButton_clicked();
    void on_chordAdditiveRecallButton_clicked();
    void on_chordAlternatingRecallButton_clicked();
    void on_chordHoldButton_clicked();
    void on_chordStorageUpButton_clicked() {}
    void on_chordStorageDownButton_clicked() {}
    void on_saveChordBankMenu_activated();
    void on_saveChordSetMenu_activated();
    void on_saveChordDirectoryButton_clicked();
    void on_saveChordSetLoadButton_clicked();
    void on_saveChordSetSaveButton_clicked();

    void on_patchMenu_activated(int index);
    void on_patchDecButton_clicked();
    void on_patchIncButton_clicked();
    void on_loadPatchButton_clicked();

private:
    void makeSwitcherLabels();
    void connectPlayer();
    void connectPanel();
    void makeStatusLine();
    void fillMenu();
    void showHelp();
    void toggleFullScreen();
    void fitFrame();
    void makeDevelopmentDialogs();
    void makeOptionsDialog();
    /// Asks for a newer version, as often as the options want it.
    void applicationUpdateCheck();
    OrloLayer* currentLayer() const;

    std::unique_ptr<Ui::MainWindow> ui;
    Orlo* mOrlo;
    std::unique_ptr<PanelParts> mPanel;
    std::unique_ptr<Readout> mReadout;
    std::unique_ptr<KeyMap> mKeyMap;
    bool mRestricted = false;
    bool mFrameFits = false;                 // looked at once
    OptionsDialog* mOptionsDialog = nullptr; // a new one each time it opens
    QPoint mOptionsDialogPosition;           // (0, 0): the window system places it
    HarmonyDock* mHarmony = nullptr;
    ChordFiles* mChordFiles = nullptr;
    QPointer<FirstSteps> mFirstSteps; // deletes itself
    // Child dialogs that only a developer shows.
    DiagnosticsDialog* mDiagnosticsDialog = nullptr;
    TweakDialog* mTweakDialog = nullptr;
};
