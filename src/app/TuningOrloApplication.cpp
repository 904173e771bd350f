#include "app/TuningOrloApplication.h"

#include "app/Accessors.h"
#include "app/Autosave.h"
#include "app/FileTrouble.h"
#include "app/FirstStart.h"
#include "app/OptionsSync.h"
#include "app/StyleSheets.h"
#include "files/SoonSaver.h"
#include "memory/ChordFileError.h"
#include "model/OrloPath.h"
#include "sound/AudioLog.h"
#include "sound/PatchFolder.h"
#include "ui/dialogs/DiagnosticsDialog.h"
#include "ui/window/MainWindow.h"

#include <QDebug>
#include <QDir>
#include <QMessageBox>
#include <QStandardPaths>

TuningOrloApplication::TuningOrloApplication(int& argc, char** argv)
    : QApplication((setNames(), argc), argv) // before the members, some of which need the name
{
    setApplicationVersion(version());
    setDesktopFileName(QStringLiteral(ORLO_APP_ID));
    wireParts();
    connect(&mLicensing, &Licensing::restrictionsReported, this, &TuningOrloApplication::applyRestrictions);
    mLogFilter.setWords(argc, argv);
}

void TuningOrloApplication::setNames()
{
    setApplicationName(QStringLiteral("Brevick Tuning Orlo"));
}

TuningOrloApplication::~TuningOrloApplication()
{
    mSoonSaver.reset();
    mMainWindow.reset();
    qInstallMessageHandler(nullptr);
    // After a start-up that failed half way the stream still runs, and its callback uses the members.
    if (mSoundDevice->selectedDevice() != -1)
        mSoundDevice->term();
    app::setParts({});
}

void TuningOrloApplication::wireParts()
{
    MidiOutput* midi = mInterface.midiOutput;
    app::setParts({.application = this,
                   .orlo = &mOrlo,
                   .player = &mPlayer,
                   .settings = &mSettings,
                   .audioOutput = mSoundDevice,
                   .storeAndRecall = &mStoreAndRecall,
                   .saveAndLoad = &mSaveAndLoad,
                   .midiOutput = midi,
                   .midiPlaying = &mMidiPlaying,
                   .statusNotes = &mStatusNotes,
                   .connectLattice = &PdPlayer::connectLattice});
    mPlayer.setPortOpenFlag(&midi->portOpen);
    midi->setEngineRunner(
        [this](const std::function<void()>& work) { return mPlayer.handOver().runInBlock(work); });
}

void TuningOrloApplication::useDevices(AudioOutput& sound, MidiOutput& midi)
{
    mSoundDevice = &sound;
    mInterface.midiOutput = &midi;
    wireParts();
}

QString TuningOrloApplication::version() const
{
    return QStringLiteral(ORLO_VERSION);
}

QString TuningOrloApplication::configDirectory()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
}

QString TuningOrloApplication::resourceDirectory()
{
    return QCoreApplication::applicationDirPath();
}

// ---------------------------------------------------------------- start-up

bool TuningOrloApplication::init()
{
    mLicensing.start();
    qRegisterMetaType<OrloPath>();
    qRegisterMetaType<OrloRatio>();
    qRegisterMetaType<QList<float>>();
    setStyle(QStringLiteral("Fusion"));
    setPalette(StyleSheets::withLinkColours(palette()));
    if (!makeDirectories())
        return false;
    if (mLogFile.open(configDirectory() + QStringLiteral("/log.txt")))
        qInstallMessageHandler(&TuningOrloApplication::loggingMessageHandler);
    if (!loadStyleSheet())
        return startFailed(
            QStringLiteral("Initialisation of style sheet failed.\n\nThe program will now shut down."));
    const bool isFirstStart = FirstStart::isNow(configDirectory());
    if (!mSettings.init()) {
        const QString text =
            QStringLiteral("Failed to read saved options. All options will be reset to defaults.");
        showCritical(text);
        qCritical().noquote() << text;
    }
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedKingdom));
    if (!startSound())
        return false;
    if (!mOrlo.init(&mPlayer))
        return startFailed(QStringLiteral("Orlo initialisation failed.\n\nThe program will now shut down."),
                           FileTrouble::moveMarked(mOrlo.path()));

    OptionsSync::toMidi();
    mMidiPlaying.load(configDirectory());
    mMainWindow = std::make_unique<MainWindow>(&mOrlo);
    mMainWindow->show();
    syncFromSettings();
    startDeviceListener();
    connect(&mPlayer, &PdPlayer::instructionsToInterface, &mInterface, &Interface::receiveInstructions,
            Qt::DirectConnection);
    connect(&mPlayer, &PdPlayer::notesRetuned, &mInterface, &Interface::receiveRetuning,
            Qt::DirectConnection);
    loadRunningChords();
    if (isFirstStart)
        mMainWindow->showFirstSteps();
    Autosave::start(this, [this] { autoSafe(); });
    mSoonSaver = Autosave::afterChanges(*mMainWindow, configDirectory());
    mLicensing.check();
    if (mTerminationSignals.wasAsked())
        QMetaObject::invokeMethod(this, &QCoreApplication::quit, Qt::QueuedConnection);
    return true;
}

bool TuningOrloApplication::makeDirectories()
{
    const QString config = configDirectory();
    const bool made = QDir().mkpath(config);
    qDebug() << "Config dir:" << config;
    qDebug() << "Resource dir:" << resourceDirectory();
    if (!made) {
        // The placeholder is wrong on purpose: it stays in the text.
        qCritical().noquote() << QStringLiteral("Could not create config directory %s.").arg(config);
        showCritical(
            QStringLiteral("Creation of config directory failed.\n\nThe program will now shut down."));
        return false;
    }
    mChordPresetsDirectory = config + QStringLiteral("/chord_presets");
    if (!QDir().mkpath(mChordPresetsDirectory))
        qCritical().noquote()
            << QStringLiteral("Couldn't create %1 as default for chord presets.").arg(mChordPresetsDirectory);
    return true;
}

bool TuningOrloApplication::loadStyleSheet()
{
    return StyleSheets::load(resourceDirectory());
}

bool TuningOrloApplication::startSound()
{
    if (!mPlayer.init())
        return startFailed(QStringLiteral("PD initialisation failed. This means no audio playback will be "
                                          "possible.\n\nThe program will now shut down."));
    if (!mSoundDevice->init(mSettings.framesPerBuffer, mSettings.audioDevice, &mPlayer)) {
        startFailed(
            QStringLiteral("Initialisation of audio device failed. This means no audio playback will be "
                           "possible.\n\nThe program will now shut down."));
        mSoundDevice->logDevices();
        return false;
    }
    mSoundDevice->logDevices();
    connect(mSoundDevice, &AudioOutput::selectedDeviceChanged, this, &OptionsSync::keepDevice);
    if (!initPatchFolder())
        return startFailed(
            QStringLiteral("Initialisation of patch directory failed. This means no audio playback "
                           "will be possible.\n\nThe program will now shut down."));
    return true;
}

/// The physical device is used only when there is a map of its tags.
void TuningOrloApplication::startDeviceListener()
{
    if (!QFile::exists(configDirectory() + QStringLiteral("/rfid_map.json")))
        return;
    connect(&mUdpListener, &UdpListener::eventReceived, &mPlayer, &PdPlayer::queueEventSerial,
            Qt::DirectConnection);
    connect(&mUdpListener, &UdpListener::fatalError, this, &TuningOrloApplication::onUdpFatalError,
            Qt::QueuedConnection);
    mUdpListener.start();
}

void TuningOrloApplication::onUdpFatalError(const QString& error)
{
    showCritical(QStringLiteral("Failed to connect to the orlo, only screen-based interaction will be "
                                "possible.\n\nError: %1")
                     .arg(error));
}

bool TuningOrloApplication::initPatchFolder()
{
    return PatchFolder(configDirectory()).install(resourceDirectory(), mSettings.mainPatchNumberOfVoices);
}

bool TuningOrloApplication::copyFile(const QString& src, const QString& dst, bool overwrite)
{
    return PatchFolder::copyFile(src, dst, overwrite);
}

bool TuningOrloApplication::startFailed(const QString& text, const QString& details)
{
    showCritical(text, details);
    qCritical().noquote() << text;
    return false;
}

void TuningOrloApplication::showCritical(const QString& text, const QString& details)
{
    QMessageBox box(QMessageBox::Critical, applicationName(), text, QMessageBox::Ok);
    box.setInformativeText(details);
    box.exec();
}

void TuningOrloApplication::applyRestrictions(bool restricted)
{
    if (mMainWindow)
        mMainWindow->applyRestrictions(restricted);
    mInterface.setRestricted(restricted);
}

// ---------------------------------------------------------------- options

void TuningOrloApplication::syncFromSettings()
{
    OptionsSync::toProgram(*mMainWindow);
}

void TuningOrloApplication::syncToSettings()
{
    OptionsSync::fromProgram(*mMainWindow);
}

void TuningOrloApplication::autoSafe()
{
    mSoonSaver->letOthersWrite();
    Autosave::save(*mMainWindow, configDirectory());
}

// ---------------------------------------------------------------- chords

bool TuningOrloApplication::loadChordsFromDiskToStorage(QDir* file)
{
    qWarning() << "Loading chords from " << file->path();
    try {
        mSaveAndLoad.getDataFromFile(file, mStoreAndRecall.storedChords(), StoreAndRecall::SETS);
    } catch (const ChordFileError& error) {
        error.log(file->path());
    }
    return true;
}

bool TuningOrloApplication::saveStoredChordsToDisk(QDir* file)
{
    qWarning() << "Saving stored chords to " << file->path();
    mSaveAndLoad.saveDataToFile(file, mStoreAndRecall.storedChords(), StoreAndRecall::SETS);
    return true;
}

void TuningOrloApplication::loadRunningChords()
{
    QDir file(Autosave::chordFile(configDirectory()));
    loadChordsFromDiskToStorage(&file);
    mMainWindow->refreshChordButtons();
}

// ---------------------------------------------------------------- stop

void TuningOrloApplication::term()
{
    mSoonSaver.reset();
    syncToSettings();
    QDir chords(Autosave::chordFile(configDirectory()));
    saveStoredChordsToDisk(&chords);
    mSettings.save(); // early: nothing is lost when a sound system crashes in what follows
    mMidiPlaying.save();
    mMidiPlaying.end();
    mUdpListener.term();
    static_cast<SerializableRoot&>(mOrlo).term();
    mPlayer.term(); // before the sound device: closing the patch needs its callback
    // A stream that is stuck in the patch cannot be stopped, only left.
    if (!isSoundOver())
        mSoundDevice->term();
    mInterface.term();
    static_cast<SerializableRoot&>(mSettings).term();
    AudioLog::drain(); // what the engine has logged since the event loop ended
    qInstallMessageHandler(nullptr);
}

// ---------------------------------------------------------------- log

QMetaObject::Connection TuningOrloApplication::connectDiagnostics(DiagnosticsDialog* dialog)
{
    return connect(this, &TuningOrloApplication::diagnosticMessage, dialog, &DiagnosticsDialog::onMessage,
                   Qt::AutoConnection);
}

void TuningOrloApplication::loggingMessageHandler(QtMsgType type, const QMessageLogContext& context,
                                                  const QString& message)
{
    if (auto* application = qobject_cast<TuningOrloApplication*>(instance()))
        application->logMessage(type, context, message);
}

void TuningOrloApplication::logMessage(QtMsgType type, const QMessageLogContext& context,
                                       const QString& message)
{
    const QString stamp = mLogFile.stamp();
    if (!mLogFilter.passes(context.file))
        return;
    if (mLogFilter.shows(context.file))
        emit diagnosticMessage(QStringLiteral("%1 %2\n").arg(stamp, message));
    mLogFile.write(type, stamp, message);
}
