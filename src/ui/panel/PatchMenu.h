#pragma once

#include <QObject>

#include <optional>

class PdPlayer;
class QComboBox;
class Settings;

/// The menu of voice patches: lists them, and opens the one that is chosen in the player. An entry's data
/// is the voice's absolute path. The last voice loaded is the option `defaultPatch`.
class PatchMenu : public QObject
{
    Q_OBJECT

public:
    /// None is owned.
    PatchMenu(QComboBox* menu, PdPlayer* player, Settings* settings);

    /// Lists the program's own voices.
    void initPatchMenu();
    /// The voice of the last run, else Sine, else none.
    void loadDefaultPatch();

    /// Tries the voice file, copies it into the runtime folder and opens the patch. An empty path does
    /// nothing; a failure ends at a message box, and the former voice plays on.
    void loadPatch(const QString& path);
    /// By index in the menu.
    void patch_by_Index(int index);
    /// The next or previous one, around the ends. The menu steps at once, and a voice is opened at once; of
    /// further steps that come before the event loop runs again only the voice where they end is opened.
    void stepPatch(int by);
    /// Lets the player choose a file; the first time it is said before what a voice can do.
    void browse();

signals:
    /// A patch has been opened and knows neither volume nor macros yet.
    void patchOpened();

private:
    void addPatchToMenu(const QString& path);
    void setNoPatchLoaded(bool on);
    void waitForMore();
    void loadNextVoice();
    std::optional<QString> changeVoice(const QString& path);
    bool openVoicePatch(const QString& path);
    void tellThatVoicesArePrograms();
    void tellPatchFailed(const QString& path, const QString& reason);

    QComboBox* mMenu;
    PdPlayer* mPlayer;
    Settings* mSettings;
    int mCurrentPatch = -1; // index in the menu, -1: none was ever opened
    bool mChangingVoice = false;
    bool mToldOfPrograms = false; // in this run
    QString mNextVoice;           // asked for while another one was opened, or stepped to since
    bool mWaitsForMore = false;   // loadNextVoice() is called soon
};
