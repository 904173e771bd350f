#include "memory/ChordFileError.h"

ChordFileError::ChordFileError(const QList<Part>& parts)
    : mParts(parts)
{
}

ChordFileError::~ChordFileError() = default;
