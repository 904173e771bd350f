#pragma once

#include "sound/OrloEvent.h"

#include <QHash>
#include <QList>
#include <QMainWindow>
#include <QPoint>

#include <functional>
#include <memory>
#include <optional>

class ChordPresets;
class DiagnosticsDialog;
class OptionsDialog;
class Orlo;
class OrloLayer;
class OrloView;
class QComboBox;
class QPushButton;
class QSlider;
class TweakDialog;

namespace Ui {
class MainWindow;
}

/// The one window: the panel with the sound controls, the two pages of the lattice, the readout
/// and the keyboard map. Every sound action goes to the player as an event; what comes back is
/// written into the controls with their signals blocked, so that it cannot echo.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(Orlo* orlo);
    ~MainWindow() override;

    /// Of the page now shown.
    OrloView* orloView() const;
    /// Balls and cards of the page now shown, by the present options.
    void updateOrloView();
    /// After the geometry constants were edited. Rebuilds the page now shown only.
    void updateTweaks();
    /// Applies the option `orloZoomMode` to the page now shown.
    void updateZoomMode();
    /// The display switches as the options have them.
    void setButtons();
    void setMacroSlidersToDefault();
    /// The chord panel and the two big glissando sliders are unavailable.
    void applyRestrictions(bool restricted);

    /// Where the options dialog opens the next time.
    void setOptionsDialogPosition(QPoint position);
    /// Stores what sounds once more and recalls it, by way of the scratch slot.
    void reloadAllSoundingRatios();
    /// Stores without asking, an empty chord too.
    void overrideChordButtonStorage(int number);
    void setChordButton(int number, bool on);
    /// As the chord memory is.
    void refreshChordButtons();
    void clearAllChordButtons();

    /// Tries the voice file, copies it into the runtime folder and opens the patch. An empty path does
    /// nothing; a failure ends at a message box, and the former voice plays on.
    void loadPatch(const QString& path);
    /// By index in the menu.
    void patch_by_Index(int index);

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
    struct KeyRow;

    void alignControls();
    void setUpIcons();
    void hideUnusedControls();
    void makeSwitcherLabels();
    void connectPlayer();
    void connectSliders();
    /// Asks for a newer version, as often as the options want it.
    void applicationUpdateCheck();
    void makeDevelopmentDialogs();
    void makeOptionsDialog();
    void makeStatusLine();
    void updateReadout();
    OrloLayer* currentLayer() const;

    void setMacro(int index, int sliderValue);
    void queueMacros(const QList<float>& values);
    QSlider* macroSlider(int number) const;
    void snapBack(QSlider* slider, int value);
    int macroDefaultPosition(int number) const;
    void modeButtonClicked(const QPushButton* clicked);

    void toggleGlissSliders();
    void showGlissSliders();
    void rememberGlissButtons();

    void collectChordButtons();
    QPushButton* chordOfRow(int index) const { return mChordButtons[10 * mChordRow + index]; }
    void chordButtonClicked(int number);
    void storeChord(int number);
    void recallChord(int number);
    void chooseChordRow(int row);
    void cycleRecallMode();
    bool ask(const QString& title, const QString& question);
    void tell(const QString& text);

    ChordPresets chordPresets() const;
    void repopulateChordBankMenu();
    void repopulateChordSetMenu();
    void createBank();
    void removeLastBank();
    void createPreset();
    void removeLastPreset();
    void updatePresetButtons();
    QString chosenPresetFile() const;

    void buildKeyMap();
    void addKey(int key, const KeyRow& row);
    void moveHighlight(int by);

    void initPatchMenu();
    void loadDefaultPatch();
    void addPatchToMenu(const QString& path);
    std::optional<QString> changeVoice(const QString& path);
    bool openVoicePatch(const QString& path);
    void tellPatchFailed(const QString& path, const QString& reason);
    void tellPatch();
    void setNoPatchLoaded(bool on);
    void stepPatch(int by);

    std::unique_ptr<Ui::MainWindow> ui;
    Orlo* mOrlo;
    QHash<int, QList<KeyRow>> mKeyMap; // rows of one key are tried in their order
    int mHighlightedRow = 1;           // of the transpose column, 1 to 11
    QList<float> mMacroDefaults;
    QList<QPushButton*> mChordButtons; // 1 to 20
    int mChordRow = 0;                 // that the number keys address, 0 or 1
    bool mGlissWasOn = false;
    bool mGlissFineWasOn = false;
    QString mLastBank = QStringLiteral("*"); // the menus' first item: no choice
    QString mLastPreset = QStringLiteral("*");
    bool mAltDown = false;
    bool mRestricted = false;
    int mCurrentPatch = -1; // index in the menu
    bool mChangingVoice = false;
    QString mNextVoice;                      // asked for meanwhile
    OptionsDialog* mOptionsDialog = nullptr; // a new one each time it opens
    QPoint mOptionsDialogPosition;           // (0, 0): where the screen puts it
    // Child dialogs that only a developer shows.
    DiagnosticsDialog* mDiagnosticsDialog = nullptr;
    TweakDialog* mTweakDialog = nullptr;

    const OrloEvent mAllNotesOff{OrloEvent::AllNotesOff, 1.0F};
    const OrloEvent mAllNotesOffForced{OrloEvent::AllNotesOffForced, 1.0F};
    const OrloEvent mNodesDeselectAll{OrloEvent::NodesDeselectAll, 1.0F};
};

/// One row of the keyboard map.
struct MainWindow::KeyRow
{
    enum Rule {
        Any,     // modifiers do not matter
        Exactly, // these and no others
        With,    // these, others may be held too
    };
    Rule rule;
    Qt::KeyboardModifiers modifiers;
    std::function<void()> action;

    bool matches(Qt::KeyboardModifiers held) const;
};
