#include "support/EngineLog.h"

#include "sound/PdPlayer.h"
#include "support/SignalText.h"

#include <QMutexLocker>

EngineLog::EngineLog(PdPlayer& player)
    : mVoiceMessages("orlo-in", [this](const auto& list) { add(QStringLiteral("orlo-in"), list); })
    , mVolumes("master-vol", [this](const auto& list) { add(QStringLiteral("master-vol"), list); })
{
    const auto write = [this](const QString& line) { add(line); };
    hearSignals(player, this, write);
    hearSignal(player, &PdPlayer::instructionsToInterface, "instruction", this, write);
    hearSignal(player, &PdPlayer::patchLoaded, "patchLoaded", this, write);
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
