#include "app/TuningOrloApplication.h"

#include "app/Accessors.h"
#include "app/DebugLog.h"
#include "external/MpeBendRange.h"
#include "memory/ChordFileError.h"
#include "model/OrloPath.h"
#include "sound/AudioLog.h"
#include "sound/EngineRelay.h"
#include "sound/OrloEvent.h"
#include "sound/PatchFolder.h"
#include "ui/dialogs/DiagnosticsDialog.h"
#include "ui/lattice/OrloView.h"
#include "ui/window/MainWindow.h"

#include <QDateTime>
#include <QDir>
#include <QMessageBox>
#include <QScreen>
#include <QStandardPaths>
#include <QTextStream>
#include <QTimer>

#include <algorithm>

namespace {

constexpr int AUTOSAVE_INTERVAL_MS = 900000;
constexpr int CHORD_SETS = StoreAndRecall::LAST_SLOT + 1;

/// The name must be set before the members are built: the options' defaults name the config
/// directory, and Qt derives that from the application's name.
std::nullptr_t setNames()
{
    QCoreApplication::setApplicationName(QStringLiteral("Brevick Tuning Orlo"));
    return nullptr;
}

/// False for a place on a screen that was taken away since.
bool isOnAScreen(const QPoint& windowPos)
{
    constexpr QSize reachable(100, 30); // enough of a title bar to drag
    const QList<QScreen*> screens = QGuiApplication::screens();
    return std::any_of(screens.begin(), screens.end(), [&](const QScreen* screen) {
        return screen->availableGeometry().intersects(QRect(windowPos, reachable));
    });
}

/// Carries the chords from one run to the next.
QString runningChordFile()
{
    return TuningOrloApplication::configDirectory() + QStringLiteral("/.temp.btoc");
}

/// "src/sound/PdPlayer.cpp" is "PdPlayer"; empty for a name without a separator.
QString sourceBaseName(const char* file)
{
    const QString path = QString::fromLocal8Bit(file);
    qsizetype separator = path.lastIndexOf(u'/');
    if (separator < 0)
        separator = path.lastIndexOf(u'\\');
    if (separator < 0)
        return QString();
    const QString name = path.mid(separator + 1);
    return name.left(name.lastIndexOf(u'.'));
}

} // namespace

TuningOrloApplication::TuningOrloApplication(int& argc, char** argv)
    : QApplication(argc, argv)
    , mMainWindow(setNames())
{
    setApplicationVersion(version());
    setDesktopFileName(QStringLiteral("brevick-tuning-orlo"));
    app::setParts({.application = this,
                   .orlo = &mOrlo,
                   .player = &mPlayer,
                   .settings = &mSettings,
                   .audioOutput = &mAudioOutput,
                   .storeAndRecall = &mStoreAndRecall,
                   .saveAndLoad = &mSaveAndLoad,
                   .midiOutput = mInterface.midiOutput,
                   .connectLattice = &PdPlayer::connectLattice});
    mPlayer.setPortOpenFlag(&mInterface.midiOutput->portOpen);
    mInterface.midiOutput->setEngineRunner(
        [this](const std::function<void()>& work) { return mPlayer.handOver().runInBlock(work); });
    connect(&mLicensing, &Licensing::restrictionsReported, this, &TuningOrloApplication::applyRestrictions);
    readLogFilter(argc, argv);
}

TuningOrloApplication::~TuningOrloApplication()
{
    mMainWindow.reset();
    qInstallMessageHandler(nullptr);
    // A start-up that failed half way leaves the stream running, and its callback reads the parts.
    if (mAudioOutput.selectedDevice() != -1)
        mAudioOutput.term();
    app::setParts({});
}

void TuningOrloApplication::readLogFilter(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i) {
        QString word = QString::fromLocal8Bit(argv[i]);
        if (word.startsWith(u'-'))
            word.remove(0, 1);
        mLogFilter.insert(word.toLower());
    }
    app::debugListening.store(!mLogFilter.isEmpty());
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
    setLinkColours();
    if (!makeDirectories())
        return false;
    startLog();
    if (!loadStyleSheet())
        return startFailed(
            QStringLiteral("Initialisation of style sheet failed.\n\nThe program will now shut down."));
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
        return startFailed(QStringLiteral("Orlo initialisation failed.\n\nThe program will now shut down."));

    startMidi();
    mMainWindow = std::make_unique<MainWindow>(&mOrlo);
    mMainWindow->show();
    syncFromSettings();
    startDeviceListener();
    connect(&mPlayer, &PdPlayer::instructionsToInterface, &mInterface, &Interface::receiveInstructions,
            Qt::DirectConnection);
    loadRunningChords();
    startAutosave();
    mLicensing.check();
    if (mTerminationSignals.wasAsked())
        QMetaObject::invokeMethod(this, &QCoreApplication::quit, Qt::QueuedConnection);
    return true;
}

/// Style sheets do not reach the links in texts, and Qt's blue is too dark for these grounds.
void TuningOrloApplication::setLinkColours()
{
    QPalette colours = palette();
    for (const QPalette::ColorRole role : {QPalette::Link, QPalette::LinkVisited})
        colours.setColor(role, QColor(0x8a, 0xb8, 0xff));
    setPalette(colours);
}

bool TuningOrloApplication::makeDirectories()
{
    const QString config = configDirectory();
    const bool made = QDir().mkpath(config);
    qDebug() << "Config dir:" << config;
    qDebug() << "Resource dir:" << resourceDirectory();
    if (!made) {
        // The place holder stays in the text.
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

void TuningOrloApplication::startLog()
{
    mLogFile.setFileName(configDirectory() + QStringLiteral("/log.txt"));
    if (!mLogFile.open(QIODevice::WriteOnly | QIODevice::Append)) {
        qCritical().noquote()
            << QStringLiteral("Couldn't open log file %1 for writing.").arg(mLogFile.fileName());
        return;
    }
    qInstallMessageHandler(&TuningOrloApplication::loggingMessageHandler);
    QTextStream(&mLogFile) << '\n'
                           << QString(78, u'-') << '\n'
                           << "Starting app at "
                           << QDateTime::currentDateTime().toString(QStringLiteral("dd/MM/yy hh:mm:ss.z"))
                           << '\n';
    mLogFile.flush();
}

bool TuningOrloApplication::loadStyleSheet()
{
    struct Sheet
    {
        QString path;
        QString missing;
    };
    const Sheet sheets[] = {
        {resourceDirectory() + QStringLiteral("/style.qss"),
         QStringLiteral("Failed to find style sheet file %1.")},
        {resourceDirectory() + QStringLiteral("/style_mac.qss"),
         QStringLiteral("Failed to find platform-specific style sheet file %1.")},
    };
    QString text;
    for (const Sheet& sheet : sheets) {
        QFile file(sheet.path);
        if (!file.exists()) {
            qCritical().noquote() << sheet.missing.arg(sheet.path);
            return false;
        }
        if (!file.open(QIODevice::ReadOnly)) {
            qCritical().noquote() << QStringLiteral("Failed to open file %1 for reading.").arg(sheet.path);
            return false;
        }
        text += QString::fromLatin1(file.readAll());
    }
    setStyleSheet(text);
    return true;
}

bool TuningOrloApplication::startSound()
{
    if (!mPlayer.init())
        return startFailed(QStringLiteral("PD initialisation failed. This means no audio playback will be "
                                          "possible.\n\nThe program will now shut down."));
    if (!mAudioOutput.init(mSettings.framesPerBuffer, mSettings.audioDevice, &mPlayer)) {
        startFailed(
            QStringLiteral("Initialisation of audio device failed. This means no audio playback will be "
                           "possible.\n\nThe program will now shut down."));
        mAudioOutput.logDevices();
        return false;
    }
    mAudioOutput.logDevices();
    connect(&mAudioOutput, &AudioOutput::selectedDeviceChanged, this, &TuningOrloApplication::keepDevice);
    if (!initPatchFolder())
        return startFailed(
            QStringLiteral("Initialisation of patch directory failed. This means no audio playback "
                           "will be possible.\n\nThe program will now shut down."));
    return true;
}

void TuningOrloApplication::startMidi()
{
    MidiOutput* output = mInterface.midiOutput;
    output->selectPort(mSettings.midiOutDevice);
    output->setChannel(mSettings.midiOutChannel);
    output->mpeSetPitchBendRange(mpe::bendRange(mSettings.glissRangeMPECents));
}

/// Without a map of its tags there is no physical device.
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

bool TuningOrloApplication::startFailed(const QString& text)
{
    showCritical(text);
    qCritical().noquote() << text;
    return false;
}

void TuningOrloApplication::showCritical(const QString& text)
{
    QMessageBox::critical(nullptr, applicationName(), text, QMessageBox::Ok);
}

void TuningOrloApplication::startAutosave()
{
    auto* timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, &TuningOrloApplication::autoSafe);
    timer->setInterval(AUTOSAVE_INTERVAL_MS);
    timer->setTimerType(Qt::VeryCoarseTimer);
    timer->start();
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
    if (mSettings.windowSize != QSize(-1, -1))
        mMainWindow->resize(mSettings.windowSize.boundedTo(primaryScreen()->availableVirtualSize()));
    if (mSettings.windowPos != QPoint(-1, -1) && isOnAScreen(mSettings.windowPos))
        mMainWindow->move(mSettings.windowPos);
    if (mSettings.windowMaximized)
        mMainWindow->showMaximized();
    mMainWindow->updateZoomMode();

    const std::pair<OrloEvent::Type, float> events[] = {
        {OrloEvent::BaseFrequencySet, static_cast<float>(mSettings.baseFrequency)},
        {OrloEvent::MasterVolumeSet, mSettings.masterVolume},
        {OrloEvent::MonophonicSet, mSettings.monophonic ? 1.0F : 0.0F},
    };
    for (const auto& [type, value] : events) {
        mPlayer.queueGui(type, value);
    }

    // Only now, so that these events do not write back what was just read.
    const EngineRelay* relay = &mPlayer.relay();
    connect(relay, &EngineRelay::baseFrequencyChanged, &mSettings, &Settings::onBaseFrequencyChanged);
    connect(relay, &EngineRelay::volumeChanged, &mSettings, &Settings::onMasterVolumeChanged);
    connect(relay, &EngineRelay::monophonicChanged, &mSettings, &Settings::onMonophonicChanged);
}

/// One that is lost is wanted back at the next start.
void TuningOrloApplication::keepDevice(int index)
{
    if (index != -1)
        mSettings.audioDevice = index;
}

void TuningOrloApplication::syncToSettings()
{
    mSettings.circlesView = mMainWindow->orloView()->view() == OrloLeavesWidget::Circles;
    mSettings.windowMaximized = mMainWindow->isMaximized();
    if (!mSettings.windowMaximized) {
        mSettings.windowSize = mMainWindow->size();
        mSettings.windowPos = mMainWindow->pos();
    }
    keepDevice(mAudioOutput.selectedDevice());
    const MidiOutput* midi = mInterface.midiOutput;
    mSettings.midiOutDevice = midi->wantedPort.isEmpty() ? midi->portName : midi->wantedPort;
    mSettings.midiOutChannel = mInterface.midiOutput->channel;
}

void TuningOrloApplication::autoSafe()
{
    syncToSettings();
    mSettings.save();
    saveRunningChords();
    qDebug() << "Autosafe called ... " << QDateTime::currentDateTime().toString(Qt::TextDate);
}

// ---------------------------------------------------------------- chords

bool TuningOrloApplication::loadChordsFromDiskToStorage(QDir* file)
{
    qWarning() << "Loading chords from " << file->path();
    try {
        mSaveAndLoad.getDataFromFile(file, mStoreAndRecall.storedChords(), CHORD_SETS);
    } catch (const ChordFileError& error) {
        for (const ChordFileError::Part& part : error.parts())
            qCritical().noquote()
                << QStringLiteral(
                       "The chord file %1 has no ratio in slot %2: \"%3\". The chord ends before it.")
                       .arg(file->path())
                       .arg(part.slot)
                       .arg(part.text);
    }
    return true;
}

bool TuningOrloApplication::saveStoredChordsToDisk(QDir* file)
{
    qWarning() << "Saving stored chords to " << file->path();
    mSaveAndLoad.saveDataToFile(file, mStoreAndRecall.storedChords(), CHORD_SETS);
    return true;
}

void TuningOrloApplication::loadRunningChords()
{
    QDir file(runningChordFile());
    loadChordsFromDiskToStorage(&file);
    mMainWindow->refreshChordButtons();
}

void TuningOrloApplication::saveRunningChords()
{
    QDir file(runningChordFile());
    saveStoredChordsToDisk(&file);
}

// ---------------------------------------------------------------- stop

void TuningOrloApplication::term()
{
    syncToSettings();
    saveRunningChords();
    mSettings.save(); // once more at the end; a sound system that fails on the way costs nothing then
    mUdpListener.term();
    static_cast<SerializableRoot&>(mOrlo).term();
    mPlayer.term(); // before the output: the hand-over of the patch needs its callback
    mAudioOutput.term();
    mInterface.term();
    static_cast<SerializableRoot&>(mSettings).term();
    AudioLog::drain(); // what the engine said after the event loop
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
    // Two threads may interleave in the file; nothing depends on it.
    mLogMutex.lock();
    const QString stamp = QTime::currentTime().toString(QStringLiteral("[hh:mm:ss.zzz] "));
    mLogMutex.unlock();

    if (!mLogFilter.isEmpty()) {
        // A message that does not say where it comes from reaches neither the dialog nor the file.
        const QString source = sourceBaseName(context.file);
        if (source.isNull())
            return;
        if (mLogFilter.contains(QStringLiteral("all")) || mLogFilter.contains(source.toLower()))
            emit diagnosticMessage(QStringLiteral("%1 %2\n").arg(stamp, message));
    }
    if (type == QtDebugMsg)
        return;

    // A file object of its own for each message: threads share nothing but the open handle, and
    // one message is one write.
    QString text;
    QTextStream stream(&text);
    if (type == QtCriticalMsg)
        stream << "\nCRITICAL:\n";
    else if (type == QtFatalMsg)
        stream << "\nFATAL:\n";
    stream << stamp << message << '\n';
    if (type == QtCriticalMsg || type == QtFatalMsg)
        stream << '\n';
    QFile file;
    if (file.open(mLogFile.handle(), QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered))
        file.write(text.toUtf8());
}
