#pragma once

#include <QByteArray>
#include <QString>

/// Writes all of it to an open file, at its place, and synchronises the file with the disk. Why not, or
/// nothing when it is there. Qt's own files do not always say that a disk is full, nor why a write ended
/// early. [any]
QString writeThrough(int handle, const QByteArray& content);
