#include "memory/ChordFileError.h"

#include "app/LogText.h"

#include <QDebug>

ChordFileError::ChordFileError(const QList<Part>& parts)
    : mParts(parts)
{
}

ChordFileError::~ChordFileError() = default;

void ChordFileError::log(const QString& path) const
{
    for (const Part& part : mParts)
        qCritical().noquote()
            << QStringLiteral("The chord file %1 has no ratio in slot %2: \"%3\". The chord ends before it.")
                   .arg(path)
                   .arg(part.slot)
                   .arg(logText(part.text.left(200)));
}
