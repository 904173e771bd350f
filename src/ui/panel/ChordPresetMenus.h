#pragma once

#include <QObject>

class ApplicationServices;
class ChordPresets;
class QComboBox;
class QPushButton;
class QWidget;
class SaveAndLoad;
class Settings;

/// The menus of chord banks and presets on disk, with their buttons. The presets directory is the
/// option `lastDirPath`.
class ChordPresetMenus : public QObject
{
    Q_OBJECT

public:
    /// Not owned.
    struct Widgets
    {
        QWidget* frame;
        QComboBox* banks;
        QComboBox* presets;
        QPushButton* load;
        QPushButton* save;
    };
    ChordPresetMenus(const Widgets& widgets, Settings* settings, ApplicationServices* application,
                     const SaveAndLoad* files);

    /// Lists the banks anew, and no bank is chosen.
    void repopulateChordBankMenu();

    // After a choice in a menu or a click on a button.
    void bankActivated();
    void presetActivated();
    void directoryClicked();
    void loadClicked();
    // What the keys do: a press of the button, or what it wants.
    void pressLoad();
    void pressSave();
    void saveClicked();

    void setRestricted(bool restricted);

signals:
    /// The chord memory holds what a preset's file gave.
    void chordsLoaded();

private:
    ChordPresets chordPresets() const;
    void repopulateChordSetMenu();
    void createBank();
    void removeLastBank();
    void createPreset();
    void removeLastPreset();
    void updateButtons();
    QString chosenPresetFile() const;
    void press(QPushButton* button);
    void onFileWritten(const QString& path);
    QWidget* window() const;

    Widgets mWidgets;
    Settings* mSettings;
    ApplicationServices* mApplication;
    // Each starts as the menu's first item, which is no choice.
    QString mLastBank;
    QString mLastPreset;
};
