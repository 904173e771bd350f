#pragma once

#include "app/ApplicationServices.h"
#include "app/Licensing.h"
#include "app/LogFile.h"
#include "app/LogFilter.h"
#include "app/Settings.h"
#include "app/TerminationSignals.h"
#include "external/Interface.h"
#include "external/UdpListener.h"
#include "memory/SaveAndLoad.h"
#include "memory/StoreAndRecall.h"
#include "model/Orlo.h"
#include "sound/PaAudioOutput.h"
#include "sound/PdPlayer.h"

#include <QApplication>

#include <memory>

class MainWindow;

/// The one object that owns the parts. It starts and stops them in a fixed order and takes what is
/// logged. Graphical thread, but for the message handler, which runs on whichever thread logs.
class TuningOrloApplication : public QApplication, public ApplicationServices
{
    Q_OBJECT

public:
    /// Each argument is a word of the log filter.
    TuningOrloApplication(int& argc, char** argv);
    ~TuningOrloApplication() override;

    /// The whole start-up. False means: end at once with exit code 1; the player has been told why.
    bool init();
    /// The orderly stop, only after a start-up that succeeded.
    void term();
    /// After term(): the process must end without destroying this.
    bool isSoundOver() const { return mPlayer.isSoundOver(); }

    QString version() const;
    /// Where every file that the program writes lies, or below it.
    static QString configDirectory();
    /// Read-only: style sheets, graphics, patches.
    static QString resourceDirectory();

    /// Plays through these instead of the machine's own devices. Before init(); they outlive this.
    void useDevices(AudioOutput& sound, MidiOutput& midi);

    /// Options into window and player; window and devices into options.
    void syncFromSettings();
    void syncToSettings();

    /// Copies unless the target is at least as new as the source or `overwrite` is set.
    bool copyFile(const QString& src, const QString& dst, bool overwrite);
    bool loadStyleSheet() override;
    bool loadChordsFromDiskToStorage(QDir* file) override;
    bool saveStoredChordsToDisk(QDir* file) override;
    /// Puts the main patch and its helpers into the runtime folder.
    bool initPatchFolder();

    /// Called by licensing; hands the flag on.
    void applyRestrictions(bool restricted);
    void setPressMode(qint16 mode) override { mPressMode = mode; }
    QMetaObject::Connection connectDiagnostics(DiagnosticsDialog* dialog) override;

    MainWindow* mainWindow() const { return mMainWindow.get(); }

    static void loggingMessageHandler(QtMsgType type, const QMessageLogContext& context,
                                      const QString& message);

public slots:
    /// The periodic safety save. A crash loses at most what came after it.
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
    bool startFailed(const QString& text);
    void loadRunningChords();
    void showCritical(const QString& text);
    void logMessage(QtMsgType type, const QMessageLogContext& context, const QString& message);

    std::unique_ptr<MainWindow> mMainWindow;
    Orlo mOrlo;
    UdpListener mUdpListener;
    PdPlayer mPlayer;
    Interface mInterface;
    PaAudioOutput mAudioOutput;
    AudioOutput* mSoundDevice = &mAudioOutput;
    Settings mSettings;
    LogFilter mLogFilter;
    LogFile mLogFile;
    StoreAndRecall mStoreAndRecall{&mPlayer};
    SaveAndLoad mSaveAndLoad;
    QString mChordPresetsDirectory;
    Licensing mLicensing;
    TerminationSignals mTerminationSignals;
    qint16 mPressMode = 0;
};
