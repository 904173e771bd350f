#pragma once

#include "model/OrloRatio.h"

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
