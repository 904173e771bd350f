#pragma once

#include "support/PdReceiver.h"

#include <QMutex>
#include <QObject>
#include <QStringList>

#include <string>

class PdPlayer;

/// Writes down, in one order, what the engine sends to the patch and what it signals, while it
/// lives. Lines are like
/// "orlo-in 440 2 1" (value, type, voice from 1), "master-vol 0.5", "noteToggled 3/2 on".
class EngineLog : public QObject
{
public:
    explicit EngineLog(PdPlayer& player);

    /// All lines so far; empties the log.
    QStringList take();
    /// Of those, only the ones that begin so.
    QStringList take(const QString& beginning);
    /// The same as one text, "; " between the lines.
    std::string said(const QString& beginning = {}) { return take(beginning).join(u"; ").toStdString(); }

private:
    void add(const QString& line);
    void add(QString line, const std::vector<float>& numbers);

    QMutex mMutex;
    QStringList mLines;
    const PdReceiver mVoiceMessages;
    const PdReceiver mVolumes;
};
