#include "sound/VoicePatchCheck.h"

#include "app/EndRequest.h"
#include "sound/PatchFolder.h"
#include "sound/PatchOutline.h"
#include "trial/TrialAnswer.h"

#include <QCoreApplication>
#include <QDebug>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

namespace {

// For this long no event is delivered, so nothing can interfere.
constexpr int WITHOUT_EVENTS_MS = 300;
constexpr int SLICE_MS = 30;

/// False when the process did not end in time, or before the system asked the program to end.
bool waitFor(QProcess& process, std::chrono::milliseconds limit)
{
    QElapsedTimer timer;
    timer.start();
    int slice = WITHOUT_EVENTS_MS;
    while (!process.waitForFinished(slice) && process.state() != QProcess::NotRunning) {
        if (timer.hasExpired(limit.count()) || EndRequest::isMade)
            return false;
        slice = SLICE_MS;
        // The window is painted; what the engine and the system report arrives here too.
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    }
    return true;
}

} // namespace

VoicePatchCheck::VoicePatchCheck(std::chrono::milliseconds trialLimit, QString program)
    : mTrialLimit(trialLimit)
    , mProgram(std::move(program))
{
}

QString VoicePatchCheck::trialProgram()
{
    return QCoreApplication::applicationDirPath() + QStringLiteral("/orlo-voice-trial");
}

QString VoicePatchCheck::whyNot(const QString& voice) const
{
    const PatchOutline outline = PatchOutline::read(voice);
    if (!outline.readable)
        return QStringLiteral("The file cannot be read.");
    if (outline.endsInsideSubpatch)
        return QStringLiteral("The file is cut short.");
    if (outline.inlets == 0)
        return QStringLiteral("It is no voice: it has no inlet to be played by.");
    if (outline.outlets == 0)
        return QStringLiteral("It is no voice: it has no outlet to be heard from.");
    return tried(voice);
}

QString VoicePatchCheck::tried(const QString& voice) const
{
    const QTemporaryDir folder;
    if (!folder.isValid() || !QFile::copy(voice, folder.filePath(PatchFolder::VOICE_FILE))) {
        qWarning() << "The voice could not be copied for a trial and is trusted:" << voice;
        return QString();
    }
    QProcess trial;
    trial.setStandardInputFile(QProcess::nullDevice());
    trial.setStandardOutputFile(QProcess::nullDevice());
    trial.setStandardErrorFile(QProcess::nullDevice());
    trial.start(mProgram,
                {PatchFolder::shippedMainPatch(QCoreApplication::applicationDirPath(), 4), folder.path()});
    if (!waitFor(trial, mTrialLimit)) {
        trial.kill();
        trial.waitForFinished(SLICE_MS);
        if (EndRequest::isMade)
            return QStringLiteral("It was not tried to the end, for the program ends.");
        return QStringLiteral("It never comes up: it loops for ever when it is opened or played.");
    }
    if (trial.error() == QProcess::FailedToStart) {
        qWarning() << "The trial of a voice could not be started, and the voice is trusted:" << voice;
        return QString();
    }
    switch (trial.exitStatus() == QProcess::NormalExit ? trial.exitCode() : -1) {
    case static_cast<int>(TrialAnswer::Works): return QString();
    case static_cast<int>(TrialAnswer::CannotBeOpened): return QStringLiteral("Pure Data cannot open it.");
    case static_cast<int>(TrialAnswer::NoVoice):
        return QStringLiteral("It is no voice: it names no macros, and nothing sounds when it is played.");
    default: return QStringLiteral("It would end the program.");
    }
}
