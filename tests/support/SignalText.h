#pragma once

#include "model/OrloRatio.h"

#include <QObject>
#include <QStringList>

/// What a signal of the engine carries, as one word of a test's line.
template <class T>
QString signalText(const T& value)
{
    if constexpr (std::is_same_v<T, OrloRatio>)
        return QStringLiteral("%1/%2").arg(value.numerator()).arg(value.denominator());
    else if constexpr (std::is_same_v<T, bool>)
        return value ? QStringLiteral("on") : QStringLiteral("off");
    else if constexpr (std::is_same_v<T, QString>)
        return value;
    else if constexpr (std::is_same_v<T, QStringList>)
        return value.join(u'|');
    else if constexpr (std::is_same_v<T, float>)
        return QString::number(static_cast<double>(value), 'g', 7);
    else
        return QString::number(value);
}

template <class T>
requires(!std::is_same_v<T, QString>) QString signalText(const QList<T>& values)
{
    QStringList texts;
    for (const T value : values)
        texts.append(signalText(value));
    return texts.join(u'|');
}

/// Hands each signal to `write` as a line: its name, then its words. The connection is direct, so that the
/// lines stand in the order of the engine's doings.
template <class Sender, class... Values>
void hearSignal(Sender& sender, void (Sender::*signal)(Values...), const char* name, QObject* context,
                auto write)
{
    const auto hear = [name, write](const Values&... values) {
        write(QStringList{QLatin1StringView(name), signalText(values)...}.join(u' '));
    };
    QObject::connect(&sender, signal, context, hear, Qt::DirectConnection);
}

/// Every signal that PdPlayer and its relay share.
template <class Sender>
void hearSignals(Sender& sender, QObject* context, auto write)
{
    const auto hear = [&](auto signal, const char* name) {
        hearSignal(sender, signal, name, context, write);
    };
    hear(&Sender::noteToggled, "noteToggled");
    hear(&Sender::nodeSelected, "nodeSelected");
    hear(&Sender::nodeHold, "nodeHold");
    hear(&Sender::nodeAltered, "nodeAltered");
    hear(&Sender::removeNodeInStack, "removeNodeInStack");
    hear(&Sender::nodesRecalled, "nodesRecalled");
    hear(&Sender::transposed, "transposed");
    hear(&Sender::volumeChanged, "volumeChanged");
    hear(&Sender::voiceVolumeChanged, "voiceVolumeChanged");
    hear(&Sender::baseFrequencyChanged, "baseFrequencyChanged");
    hear(&Sender::monophonicChanged, "monophonicChanged");
    hear(&Sender::primeEnabledToggled, "primeEnabledToggled");
    hear(&Sender::macroNamesReceived, "macroNamesReceived");
    hear(&Sender::macroDefaultsReceived, "macroDefaultsReceived");
    hear(&Sender::setMacroSliders, "setMacroSliders");
    hear(&Sender::resetGlissSliders, "resetGlissSliders");
    hear(&Sender::patchDecRequested, "patchDecRequested");
    hear(&Sender::patchIncRequested, "patchIncRequested");
    hear(qOverload<int, float>(&Sender::macroValueChanged), "macroValueChanged");
}
