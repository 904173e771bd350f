#pragma once

#include "app/ApplicationServices.h"
#include "app/Licensing.h"
#include "app/LogFile.h"
#include "app/LogFilter.h"
#include "app/Settings.h"
#include "app/StatusNotes.h"
#include "app/TerminationSignals.h"
#include "external/Interface.h"
#include "external/UdpListener.h"
#include "keyboard/MidiPlaying.h"
#include "memory/SaveAndLoad.h"
#include "memory/StoreAndRecall.h"
#include "model/Orlo.h"
#include "sound/PaAudioOutput.h"
#include "sound/PdPlayer.h"

#include <QApplication>

#include <memory>

class MainWindow;
class SoonSaver;

/// The one object that owns the parts. It starts and stops them in a fixed order and takes what is
/// logged. Graphical thread, but for the message handler, which runs on whichever thread logs.
class TuningOrloApplication : public QApplication, public ApplicationServices
{
    Q_OBJECT

public:
    /// Qt derives the config directory's path from the application's name.
    static void setNames();

    /// Each argument is a word of the log filter.
    TuningOrloApplication(int& argc, char** argv);
    ~TuningOrloApplication() override;

    /// The whole start-up. False, after a message box with the reason: the program ends at once with
    /// exit code 1.
    bool init();
    /// The orderly stop. Called only after a start-up that succeeded.
    void term();
    /// When true after term(), the process must end without destroying this object.
    bool isSoundOver() const { return mPlayer.isSoundOver(); }

    QString version() const;
    /// Every file that the program writes is in this folder or below it.
    static QString configDirectory();
    /// Read-only: style sheets, graphics, patches.
    static QString resourceDirectory();

    /// Plays through these instead of the machine's own devices. Called before init(); both must
    /// outlive this object.
    void useDevices(AudioOutput& sound, MidiOutput& midi);

    /// From the options to window and player, and from window and devices to the options.
    void syncFromSettings();
    void syncToSettings();

    /// Copies unless the target is at least as new as the source or `overwrite` is set.
    bool copyFile(const QString& src, const QString& dst, bool overwrite);
    bool loadStyleSheet() override;
    bool loadChordsFromDiskToStorage(QDir* file) override;
    bool saveStoredChordsToDisk(QDir* file) override;
    /// Puts the main patch and its helpers into the runtime folder.
    bool initPatchFolder();

    /// Called by licensing; passes the flag to window and MIDI.
    void applyRestrictions(bool restricted);
    void setPressMode(qint16 mode) override { mPressMode = mode; }
    QMetaObject::Connection connectDiagnostics(DiagnosticsDialog* dialog) override;

    MainWindow* mainWindow() const { return mMainWindow.get(); }

    static void loggingMessageHandler(QtMsgType type, const QMessageLogContext& context,
                                      const QString& message);

public slots:
    /// The periodic save of options and chords.
    void autoSafe();
    void onUdpFatalError(const QString& error);

signals:
    /// One filtered log line, from any thread.
    void diagnosticMessage(const QString& line);

private:
    void wireParts();
    bool makeDirectories();
    bool startSound();
    void startDeviceListener();
    /// The details stand below the text, and are not logged.
    bool startFailed(const QString& text, const QString& details = {});
    void loadRunningChords();
    void showCritical(const QString& text, const QString& details = {});
    void logMessage(QtMsgType type, const QMessageLogContext& context, const QString& message);

    std::unique_ptr<MainWindow> mMainWindow;
    Orlo mOrlo;
    UdpListener mUdpListener;
    PdPlayer mPlayer;
    Interface mInterface;
    PaAudioOutput mAudioOutput;
    AudioOutput* mSoundDevice = &mAudioOutput;
    MidiPlaying mMidiPlaying{mPlayer};
    Settings mSettings;
    StatusNotes mStatusNotes;
    LogFilter mLogFilter;
    LogFile mLogFile;
    StoreAndRecall mStoreAndRecall{&mPlayer};
    SaveAndLoad mSaveAndLoad;
    QString mChordPresetsDirectory;
    std::unique_ptr<SoonSaver> mSoonSaver; // from start to end of the run
    Licensing mLicensing;
    TerminationSignals mTerminationSignals;
    qint16 mPressMode = 0;
};
