#pragma once

#include "model/OrloConstants.h"

#include <QDebug>
#include <QList>
#include <QString>

/// What the two path classes share: work on a zero-terminated array of signed prime steps. `limit`
/// is the number of steps that everything but concatenation keeps; an array has two elements more.
namespace PathSteps {

/// First element of an invalid path.
constexpr signed char INVALID = 127;

inline int length(const signed char* steps)
{
    int count = 0;
    while (steps[count] != 0)
        ++count;
    return count;
}

/// Up to and including the terminator; what lies behind it is not part of the value.
inline void copy(signed char* to, const signed char* from)
{
    int i = 0;
    for (; from[i] != 0; ++i)
        to[i] = from[i];
    to[i] = 0;
}

inline bool equal(const signed char* a, const signed char* b)
{
    int i = 0;
    while (a[i] != 0 && a[i] == b[i])
        ++i;
    return a[i] == b[i];
}

inline size_t hash(const signed char* steps, size_t seed)
{
    for (int i = 0; steps[i] != 0; ++i)
        seed = seed * 31 + static_cast<size_t>(steps[i] + 128);
    return seed;
}

inline void markInvalid(signed char* steps)
{
    steps[0] = INVALID;
    steps[1] = 0;
}

inline void store(signed char* steps, int limit, const QString& text)
{
    const QStringList parts = text.split(u'/', Qt::SkipEmptyParts);
    const int count = static_cast<int>(qMin<qsizetype>(parts.size(), limit));
    for (int i = 0; i < count; ++i) {
        bool isNumber = false;
        const int step = parts[i].toInt(&isNumber);
        if (!isNumber || !OrloConstants::isValidPrime(step)) {
            qDebug().noquote() << QStringLiteral("Invalid path: ") + text;
            markInvalid(steps);
            return;
        }
        steps[i] = static_cast<signed char>(step);
    }
    steps[count] = 0;
}

/// Appends the steps of `from` up to one more than `limit`, for which the arrays have the room.
inline void append(signed char* to, const signed char* from, int limit)
{
    int at = length(to);
    for (int i = 0; from[i] != 0 && at < limit + 1; ++i)
        to[at++] = from[i];
    to[at] = 0;
}

inline void addLeaf(signed char* steps, int limit, signed char step)
{
    const int at = length(steps);
    if (at >= limit)
        return;
    steps[at] = step;
    steps[at + 1] = 0;
}

/// A path that concatenation filled beyond the limit stays as it is.
inline void removeLeaf(signed char* steps, int limit)
{
    const int at = length(steps);
    if (at > 0 && at <= limit)
        steps[at - 1] = 0;
}

inline QString toString(const signed char* steps)
{
    if (steps[0] == 0)
        return QStringLiteral("/");
    QString text;
    for (int i = 0; steps[i] != 0; ++i)
        text += u'/' + QString::number(steps[i]);
    return text;
}

inline QList<int> toList(const signed char* steps)
{
    QList<int> list;
    for (int i = 0; steps[i] != 0; ++i)
        list.append(steps[i]);
    return list;
}

} // namespace PathSteps
