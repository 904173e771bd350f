#include "support/EngineLog.h"

#include "sound/PdPlayer.h"
#include "support/SignalText.h"

#include <QMutexLocker>

EngineLog::EngineLog(PdPlayer& player)
    : mVoiceMessages("orlo-in", [this](const auto& list) { add(QStringLiteral("orlo-in"), list); })
    , mVolumes("master-vol", [this](const auto& list) { add(QStringLiteral("master-vol"), list); })
{
    // Direct connections, so that the lines stand in the order of the engine's doings.
    const auto hear = [this, &player]<class... Values>(void (PdPlayer::*signal)(Values...),
                                                       const char* name) {
        const auto write = [this, name](const Values&... values) {
            add(QStringList{QLatin1StringView(name), signalText(values)...}.join(u' '));
        };
        connect(&player, signal, this, write, Qt::DirectConnection);
    };
    hear(&PdPlayer::noteToggled, "noteToggled");
    hear(&PdPlayer::nodeHold, "nodeHold");
    hear(&PdPlayer::removeNodeInStack, "removeNodeInStack");
    hear(&PdPlayer::nodesRecalled, "nodesRecalled");
    hear(&PdPlayer::transposed, "transposed");
    hear(&PdPlayer::volumeChanged, "volumeChanged");
    hear(&PdPlayer::voiceVolumeChanged, "voiceVolumeChanged");
    hear(&PdPlayer::baseFrequencyChanged, "baseFrequencyChanged");
    hear(&PdPlayer::monophonicChanged, "monophonicChanged");
    hear(&PdPlayer::primeEnabledToggled, "primeEnabledToggled");
    hear(&PdPlayer::macroNamesReceived, "macroNamesReceived");
    hear(&PdPlayer::macroDefaultsReceived, "macroDefaultsReceived");
    hear(qOverload<int, float>(&PdPlayer::macroValueChanged), "macroValueChanged");
    hear(&PdPlayer::instructionsToInterface, "instruction");
    hear(&PdPlayer::patchLoaded, "patchLoaded");
    hear(&PdPlayer::patchDecRequested, "patchDecRequested");
    hear(&PdPlayer::patchIncRequested, "patchIncRequested");
}

void EngineLog::add(QString line, const std::vector<float>& numbers)
{
    for (const float number : numbers)
        line += u' ' + signalText(number);
    add(line);
}

void EngineLog::add(const QString& line)
{
    const QMutexLocker locker(&mMutex);
    mLines.append(line);
}

QStringList EngineLog::take()
{
    const QMutexLocker locker(&mMutex);
    return std::exchange(mLines, {});
}

QStringList EngineLog::take(const QString& beginning)
{
    QStringList lines = take();
    lines.removeIf([&](const QString& line) { return !line.startsWith(beginning); });
    return lines;
}
