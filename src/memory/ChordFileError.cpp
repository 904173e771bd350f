#include "memory/ChordFileError.h"

#include "app/LogText.h"

#include <QDebug>

namespace {

constexpr qsizetype LONGEST = 200; // characters of a part that a line of the log shows

} // namespace

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
                   .arg(path, QString::number(part.slot), logText(part.text.left(LONGEST)));
}
