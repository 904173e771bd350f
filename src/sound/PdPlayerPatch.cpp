// The part of the player that hosts the patch: hand-over, messages and hooks.

#include "sound/PdPlayer.h"

#include "app/Accessors.h"
#include "app/DebugLog.h"
#include "app/Settings.h"
#include "sound/AudioOutput.h"
#include "sound/MacroList.h"
#include "sound/NumericLocale.h"
#include "sound/PatchFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <z_libpd.h>

namespace {

// Long enough for the patch to fade its master volume.
constexpr unsigned long HAND_OVER_PAUSE_MS = 100;

constexpr const char* VOICE_INPUT = "orlo-in";
constexpr const char* MASTER_VOLUME = "master-vol";
constexpr const char* QUERY_MACROS = "query-macros";
constexpr const char* VOICE_STOP = "voice-stop";
constexpr const char* VOICE_INFO = "output-voice-info";
constexpr QLatin1StringView VOICE_FILE("orlo_voice.pd"); // beside the main patch

/// False, with a critical line, when libpd has no room for the message.
bool startMessage(int length, const char* purpose)
{
    const int status = libpd_start_message(length);
    if (status == 0)
        return true;
    qCritical().noquote() << QStringLiteral("libpd_start_message for %1 returned error status: ")
                                 .arg(QLatin1StringView(purpose))
                          << status;
    return false;
}

} // namespace

bool PdPlayer::init()
{
    if (!guiBuffer.init()) {
        qCritical() << "failed to allocate gui command buffer";
        return false;
    }
    if (!serialBuffer.init()) {
        qCritical() << "failed to allocate serial command buffer";
        return false;
    }
    qWarning() << "calling libpd init";
    libpd_set_printhook(&PdPlayer::pdPrintHook);
    libpd_set_listhook(&PdPlayer::pdListHook);
    libpd_init();
    if (const Settings* settings = app::settings()) {
        mGlissOneRange = settings->glissOneRangeCents;
        mGlissTwoRange = settings->glissTwoRangeCents;
        setMaxVoices(settings->mainPatchNumberOfVoices);
    }
    for (RatioList* list : {&selectedNodes, &alteredNodes, &cachedSelected})
        list->reserve(MANY_NODES);
    for (RatioList* list : {&heldNodes, &cachedSounding})
        list->reserve(VoiceTable::SLOTS);
    alteredParameters.reserve(MANY_NODES);
    soundingParameters.reserve(VoiceTable::SLOTS);
    for (std::vector<OrloRatio>* list : {&mToggleLater, &mToggleNow, &mFormerlySelected})
        list->reserve(MANY_NODES);
    return true;
}

void PdPlayer::initAudio(int channels, int sampleRate)
{
    qWarning() << "Initialising libpd with sampleRate" << sampleRate;
    mHandOver.runBetweenBlocks([=] { libpd_init_audio(0, channels, sampleRate); });
}

void PdPlayer::term()
{
    qWarning() << "PdPlayer::term...";
    unloadPatch();
}

bool PdPlayer::loadPatch(const QFileInfo& file)
{
    qDebug() << "PdPlayer::loadPatch A";
    unloadPatch();
    for (const QString& part : {file.absoluteFilePath(), file.absoluteDir().filePath(VOICE_FILE)}) {
        if (PatchFile::endsInsideSubpatch(part)) {
            qCritical() << "The patch is cut short:" << part;
            return false;
        }
    }

    const QByteArray fileName = QFile::encodeName(file.fileName());
    const QByteArray directory = QFile::encodeName(file.absolutePath());
    const OrloEvent open(OrloEvent::PatchOpen, 0.0F);
    mHandOver.lock();
    mPatchFileName = fileName;
    mPatchDirectory = directory;
    mPatchPending = true;
    mHandOver.unlock();
    qDebug() << "GUI waiting for audio thread to load patch";
    const bool answered = mHandOver.request(
        PatchHandOver::Change::Open, [&] { queueEventGui(&open); }, [this] { processEvents(); });
    qDebug() << "GUI woke up after loading patch";
    QThread::msleep(HAND_OVER_PAUSE_MS);

    mHandOver.lock();
    const bool opened = answered && !mPatchPending;
    mPatchPending = false;
    mHandOver.unlock();
    if (opened)
        emit patchLoaded(file.absoluteFilePath());
    return opened;
}

void PdPlayer::unloadPatch()
{
    AudioOutput* output = app::audioOutput();
    if (output)
        output->muteOutput();
    qDebug() << "GUI sleep before unload patch";
    // libpd builds a message in one place for all threads, hence between blocks.
    mHandOver.runBetweenBlocks([this] { sendPdVolumeMessage(0.0F); });
    QThread::msleep(HAND_OVER_PAUSE_MS);

    const OrloEvent close(OrloEvent::PatchClose, 0.0F);
    qDebug() << "GUI waiting for audio thread to unload patch";
    mHandOver.request(
        PatchHandOver::Change::Close, [&] { queueEventGui(&close); }, [this] { processEvents(); });
    qDebug() << "GUI sleep after unload patch";
    QThread::msleep(HAND_OVER_PAUSE_MS);
    if (output)
        output->unmuteOutput();
    qDebug() << "GUI woke up after unloading patch";
}

void PdPlayer::openPatch()
{
    ORLO_AUDIO_DEBUG << "PdPlayer::openPatch()";
    mHandOver.lock();
    // A physical device can name this event too; then there is nothing to open.
    if (mPatchPending && !mPatch && openPatchLocked())
        mPatchPending = false;
    mHandOver.finish(PatchHandOver::Change::Open);
    mHandOver.unlock();
}

bool PdPlayer::openPatchLocked()
{
    qWarning() << "Opening PD patch: " << mPatchDirectory << mPatchFileName;
    const NumericLocale numbersWithPoint;
    mPatch = libpd_openfile(mPatchFileName.constData(), mPatchDirectory.constData());
    // After a patch with a missing or broken voice the next opening fails once.
    if (!mPatch)
        mPatch = libpd_openfile(mPatchFileName.constData(), mPatchDirectory.constData());
    if (!mPatch) {
        qCritical() << "Opening PD patch failed: " << mPatchDirectory << mPatchFileName;
        return false;
    }
    if (!setDsp(true)) {
        qCritical() << "setDsp(true) failed after opening: " << mPatchDirectory << mPatchFileName;
        return false;
    }
    mInfoBinding = libpd_bind(VOICE_INFO);
    mStopBinding = libpd_bind(VOICE_STOP);
    // A patch starts silent; notes that sound on under it must not wait for the window's slider.
    sendPdVolumeMessage(mMasterVolume);
    // The patch's defaults become the current macros: nodes that were selected while there was no
    // patch must not jump with them.
    const QList<OrloRatio> selected = getAllSelectedRatios();
    nodeDeselectAll();
    sendPdQueryMacrosMessage();
    for (const OrloRatio& ratio : selected)
        nodeSelectToggleByRatio(ratio);
    if (!mFirstPatch)
        readFromCache();
    mFirstPatch = false;
    return true;
}

void PdPlayer::closePatch()
{
    mHandOver.lock();
    // A physical device can name this event too; then the patch plays on.
    if (mPatch && mHandOver.isAwaiting(PatchHandOver::Change::Close)) {
        qWarning() << "Closing PD patch...";
        writeToCache();
        allNotesOff(true);
        nodeDeselectAll();
        setDsp(false);
        // The stop binding stays; it is taken anew at each opening, and a second report of one
        // voice is harmless.
        if (mInfoBinding)
            libpd_unbind(mInfoBinding);
        mInfoBinding = nullptr;
        libpd_closefile(mPatch);
        mPatch = nullptr;
        mMacroNames.clear();
        emit macroNamesReceived(mMacroNames);
        mMacroDefaults.clear();
    }
    mHandOver.finish(PatchHandOver::Change::Close);
    mHandOver.unlock();
}

// ---------------------------------------------------------------- messages to the patch

bool PdPlayer::sendPdVoiceMessage(PdVoiceMessageType type, float value, float voice)
{
    if (!startMessage(3, VOICE_INPUT))
        return false;
    libpd_add_float(value);
    libpd_add_float(static_cast<float>(type));
    libpd_add_float(voice + 1.0F);
    return libpd_finish_list(VOICE_INPUT) == 0;
}

bool PdPlayer::sendPdVolumeMessage(float volume)
{
    if (!startMessage(1, MASTER_VOLUME))
        return false;
    libpd_add_float(volume);
    return libpd_finish_list(MASTER_VOLUME) == 0;
}

bool PdPlayer::setDsp(bool on) const
{
    if (!startMessage(1, "setDsp"))
        return false;
    libpd_add_float(on ? 1.0F : 0.0F);
    return libpd_finish_message("pd", "dsp") == 0;
}

bool PdPlayer::sendPdQueryMacrosMessage()
{
    mQuerying = true;
    const int status = libpd_bang(QUERY_MACROS);
    if (status != 0)
        qCritical() << "libpd_bang for query-macros returned error status: " << status;
    return status == 0;
}

bool PdPlayer::applyAllCurrentMacroValues(float voice)
{
    bool sent = true;
    for (int macro = 1; macro <= NodeParameters::MACRO_COUNT; ++macro)
        sent =
            applyMacroValue(macro, currentParameters.macros[static_cast<size_t>(macro - 1)], voice) && sent;
    return sent;
}

bool PdPlayer::applyMacroValue(int macro, float value, float voice)
{
    return sendPdVoiceMessage(static_cast<PdVoiceMessageType>(voiceMacro1 + macro - 1), value, voice);
}

bool PdPlayer::alterFrequency(float frequency, float voice)
{
    return sendPdVoiceMessage(voiceFrequency, frequency, voice);
}

// ---------------------------------------------------------------- what the patch says

void PdPlayer::pdPrintHook(const char* text)
{
    ORLO_AUDIO_DEBUG << "libPD:" << text;
}

void PdPlayer::pdListHook(const char* source, int count, _atom* atoms)
{
    if (!sThis)
        return;
    if (qstrcmp(source, VOICE_STOP) == 0) {
        if (count > 0 && libpd_is_float(atoms)) {
            const float number = libpd_get_float(atoms);
            if (number >= 1.0F && number <= static_cast<float>(VoiceTable::SLOTS))
                sThis->onVoiceStopped(static_cast<int>(number) - 1);
        }
        return;
    }
    if (sThis->mQuerying && qstrcmp(source, VOICE_INFO) == 0) {
        if (count > 1 && libpd_is_symbol(atoms + 1))
            sThis->onMacroNamesReceived(libpd_get_symbol(atoms + 1));
        sThis->mQuerying = false;
    }
}

void PdPlayer::onMacroNamesReceived(const char* text)
{
    ORLO_AUDIO_DEBUG << "Received macro names:" << text;
    const MacroList list = MacroList::parse(QString::fromUtf8(text));
    mMacroNames = list.names;
    mMacroDefaults = list.defaults;
    setMacroDefaultValues();
    emit macroNamesReceived(mMacroNames);
    emit macroDefaultsReceived(mMacroDefaults);
}

void PdPlayer::setMacroDefaultValues()
{
    const Settings* settings = app::settings();
    const bool maintain = settings && settings->maintainMacroParameters;
    // A patch must not name more macros than there are; the rest of a longer list is dropped.
    const qsizetype count = qMin<qsizetype>(mMacroDefaults.size(), NodeParameters::MACRO_COUNT);
    for (qsizetype i = 0; i < count; ++i) {
        const auto macro = static_cast<size_t>(i);
        defaultParameters.macros[macro] = mMacroDefaults[i];
        if (!maintain)
            currentParameters.macros[macro] = mMacroDefaults[i];
        ORLO_AUDIO_DEBUG << "Macro " << mMacroNames[i] << ": default set to" << mMacroDefaults[i];
    }
}
