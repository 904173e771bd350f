// The patch of the player: opening and closing, which notes and nodes come back in the next one, messages
// to it, and its reports.

#include "sound/PdPlayer.h"

#include "app/Accessors.h"
#include "app/LogFilter.h"
#include "app/Settings.h"
#include "sound/AudioLog.h"
#include "sound/AudioOutput.h"
#include "sound/MacroList.h"
#include "sound/NoPdTilde.h"
#include "sound/NumericLocale.h"
#include "sound/PatchFolder.h"
#include "sound/PatchOutline.h"
#include "sound/ThreadCheck.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <z_libpd.h>

namespace {

/// A pause of the graphical thread, long enough for the patch to fade its master volume. Two belong
/// to a closing and one to an opening. The window closes, and PdPlayer::loadPatch closes again and
/// opens: five in all, half a second.
constexpr unsigned long PAUSE_MS = 100;

// What the main patch takes, in Hz. A note starts within the narrower range of pitches.
constexpr float LOWEST_GLIDE = 1.0F;
constexpr float HIGHEST_GLIDE = 20001.0F;

constexpr const char* VOICE_INPUT = "orlo-in";
constexpr const char* MASTER_VOLUME = "master-vol";
constexpr const char* QUERY_MACROS = "query-macros";
constexpr const char* VOICE_STOP = "voice-stop";
constexpr const char* VOICE_INFO = "output-voice-info";

/// False, with a critical line, when libpd has no room for the message.
bool startMessage(int length, const char* purpose)
{
    const int status = libpd_start_message(length);
    if (status == 0)
        return true;
    AudioLog::critical("libpd_start_message for %1 returned error status:  %2", {purpose, status});
    return false;
}

} // namespace

bool PdPlayer::init()
{
    ThreadCheck::stopped();
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
    takeGlissandoRanges();
    if (const Settings* settings = app::settings())
        setMaxVoices(settings->mainPatchNumberOfVoices);
    mNodes.reserve(VoiceTable::SLOTS);
    for (RatioList* list : {&heldNodes, &cachedSounding})
        list->reserve(VoiceTable::SLOTS);
    for (std::vector<OrloRatio>* list : {&mToggleLater, &mToggleNow, &mFormerlySelected})
        list->reserve(NodeBook::MANY_NODES);
    return true;
}

void PdPlayer::initAudio(int channels, int sampleRate)
{
    ThreadCheck::gui();
    qWarning() << "Initialising libpd with sampleRate" << sampleRate;
    mHandOver.runBetweenBlocks([=] { libpd_init_audio(0, channels, sampleRate); });
}

void PdPlayer::term()
{
    ThreadCheck::gui();
    qWarning() << "PdPlayer::term...";
    mHandOver.setLimits(PatchHandOver::limitsAtEnd());
    unloadPatch();
}

bool PdPlayer::changePatch(PatchHandOver::Change change, OrloEvent::Type type)
{
    const OrloEvent event(type, 0.0F);
    const bool answered = mHandOver.request(
        change, [&] { queueEventGui(&event); }, [this] { processEvents(); });
    AudioLog::drain(); // the engine's lines come before the next line of this thread
    return answered;
}

bool PdPlayer::loadPatch(const QFileInfo& file)
{
    ThreadCheck::gui();
    qDebug() << "PdPlayer::loadPatch A";
    unloadPatch();
    for (const QString& part :
         {file.absoluteFilePath(), file.absoluteDir().filePath(PatchFolder::VOICE_FILE)}) {
        if (PatchOutline::read(part).endsInsideSubpatch) {
            qCritical() << "The patch is cut short:" << part;
            return false;
        }
    }
    if (isSoundOver())
        return false;

    mPatchFileName = QFile::encodeName(file.fileName());
    mPatchDirectory = QFile::encodeName(file.absolutePath());
    mPatchOpened = false;
    qDebug() << "GUI waiting for audio thread to load patch";
    if (!changePatch(PatchHandOver::Change::Open, OrloEvent::PatchOpen))
        return false;
    qDebug() << "GUI woke up after loading patch";
    QThread::msleep(PAUSE_MS);
    if (mPatchOpened)
        emit patchLoaded(file.absoluteFilePath());
    return mPatchOpened;
}

void PdPlayer::unloadPatch()
{
    ThreadCheck::gui();
    if (isSoundOver())
        return;
    AudioOutput* output = app::audioOutput();
    if (output)
        output->muteOutput();
    qDebug() << "GUI sleep before unload patch";
    // libpd builds messages in one buffer for all threads, so this one is sent within a block.
    mHandOver.runInBlock([this] { sendPdVolumeMessage(0.0F); });
    QThread::msleep(PAUSE_MS);

    qDebug() << "GUI waiting for audio thread to unload patch";
    changePatch(PatchHandOver::Change::Close, OrloEvent::PatchClose);
    qDebug() << "GUI sleep after unload patch";
    QThread::msleep(PAUSE_MS);
    if (output)
        output->unmuteOutput();
    qDebug() << "GUI woke up after unloading patch";
}

bool PdPlayer::waitForRoom(int events)
{
    ThreadCheck::gui();
    return mHandOver.waitUntil([=, this] { return guiBuffer.room() >= events; }, [this] { processEvents(); });
}

void PdPlayer::openPatch()
{
    ORLO_AUDIO_DEBUG << "PdPlayer::openPatch()";
    // A physical device can name this event too; then there is nothing to open.
    if (!mHandOver.isAwaiting(PatchHandOver::Change::Open))
        return;
    mPatchOpened = !mPatch && openPatchFile();
    mHandOver.finish(PatchHandOver::Change::Open);
}

bool PdPlayer::openPatchFile()
{
    AudioLog::warning("Opening PD patch:  \"%1\" \"%2\"",
                      {mPatchDirectory.constData(), mPatchFileName.constData()});
    const NumericLocale numbersWithPoint;
    mPatch = libpd_openfile(mPatchFileName.constData(), mPatchDirectory.constData());
    // After a patch with a missing or broken voice the next opening fails once.
    if (!mPatch)
        mPatch = libpd_openfile(mPatchFileName.constData(), mPatchDirectory.constData());
    if (!mPatch) {
        AudioLog::critical("Opening PD patch failed:  \"%1\" \"%2\"",
                           {mPatchDirectory.constData(), mPatchFileName.constData()});
        return false;
    }
    if (!setDsp(true)) {
        AudioLog::critical("setDsp(true) failed after opening:  \"%1\" \"%2\"",
                           {mPatchDirectory.constData(), mPatchFileName.constData()});
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
    // A physical device can name this event too; then the patch plays on.
    if (!mHandOver.isAwaiting(PatchHandOver::Change::Close))
        return;
    if (mPatch) {
        AudioLog::warning("Closing PD patch...");
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
}

// ---------------------------------------------------------------- what comes back in the next patch

bool PdPlayer::maintainMacroParameters()
{
    const Settings* settings = app::settings();
    return settings && settings->maintainMacroParameters;
}

void PdPlayer::writeToCache()
{
    cachedSounding.clear();
    for (const OrloRatio& ratio : soundingNow())
        cachedSounding.append(ratio);
    mNodes.writeToCache(maintainMacroParameters());
}

void PdPlayer::readFromCache()
{
    mNodes.readFromCache();
    if (maintainMacroParameters()) {
        const auto& macros = mNodes.cached().macros;
        emit setMacroSliders(QList<float>(macros.begin(), macros.end()));
    }
    // Notes that were started while no patch was open start again, so that they are heard.
    for (const OrloRatio& ratio : soundingNow()) {
        noteOff(ratio);
        cachedSounding.append(ratio);
    }
    for (const OrloRatio& ratio : cachedSounding)
        noteOn(ratio);
    cachedSounding.clear();
    for (const OrloRatio& ratio : mNodes.cachedSelection()) {
        if (!mNodes.selected().contains(ratio))
            nodeSelectToggleByRatio(ratio);
    }
}

// ---------------------------------------------------------------- messages to the patch

bool PdPlayer::sendPdVoiceMessage(PdVoiceMessageType type, float value, float voice)
{
    ThreadCheck::audio();
    if (!startMessage(3, VOICE_INPUT))
        return false;
    libpd_add_float(value);
    libpd_add_float(static_cast<float>(type));
    libpd_add_float(voice + 1.0F);
    return libpd_finish_list(VOICE_INPUT) == 0;
}

bool PdPlayer::sendPdVolumeMessage(float volume)
{
    ThreadCheck::audio();
    if (!startMessage(1, MASTER_VOLUME))
        return false;
    libpd_add_float(volume);
    return libpd_finish_list(MASTER_VOLUME) == 0;
}

bool PdPlayer::setDsp(bool on) const
{
    ThreadCheck::audio();
    if (!startMessage(1, "setDsp"))
        return false;
    libpd_add_float(on ? 1.0F : 0.0F);
    return libpd_finish_message("pd", "dsp") == 0;
}

bool PdPlayer::sendPdQueryMacrosMessage()
{
    ThreadCheck::audio();
    mQuerying = true;
    const int status = libpd_bang(QUERY_MACROS);
    if (status != 0)
        AudioLog::critical("libpd_bang for query-macros returned error status:  %1", {status});
    return status == 0;
}

bool PdPlayer::applyAllCurrentMacroValues(float voice)
{
    ThreadCheck::audio();
    return applyMacros(mNodes.current(), voice);
}

bool PdPlayer::applyMacros(const NodeParameters& node, float voice)
{
    bool sent = true;
    for (int macro = 1; macro <= NodeParameters::MACRO_COUNT; ++macro)
        sent = applyMacroValue(macro, node.macros[static_cast<std::size_t>(macro - 1)], voice) && sent;
    return sent;
}

bool PdPlayer::applyMacroValue(int macro, float value, float voice)
{
    ThreadCheck::audio();
    return sendPdVoiceMessage(static_cast<PdVoiceMessageType>(voiceMacro1 + macro - 1), value, voice);
}

bool PdPlayer::alterFrequency(float frequency, float voice)
{
    ThreadCheck::audio();
    // Within the bounds that the main patch has; beyond them the voice stays where it is.
    Voice* changed = mVoices.slot(static_cast<int>(voice));
    if (changed && changed->frequency > 0.0F && frequency >= LOWEST_GLIDE && frequency < HIGHEST_GLIDE) {
        changed->frequency = frequency;
        if (changed->baseFrequency != mBaseFrequency)
            changed->baseFrequency = 0.0F; // where the external output bends from is still the former one's
        mVoicesChanged = true;
    }
    return sendPdVoiceMessage(voiceFrequency, frequency, voice);
}

// ---------------------------------------------------------------- the patch's reports

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
    ThreadCheck::audio();
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
    const bool slides = !maintainMacroParameters();
    // A patch must not name more macros than there are; the rest of a longer list is dropped.
    const qsizetype count = qMin<qsizetype>(mMacroDefaults.size(), NodeParameters::MACRO_COUNT);
    for (qsizetype i = 0; i < count; ++i) {
        mNodes.setDefaultMacro(static_cast<std::size_t>(i), mMacroDefaults[i], slides);
        ORLO_AUDIO_DEBUG << "Macro " << mMacroNames[i] << ": default set to" << mMacroDefaults[i];
    }
}
