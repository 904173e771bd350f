#pragma once

#include <QString>

/// Files that could not be read whole, or of which a number was cut. Each is kept beside its place as
/// "<name>.bad-<time>" before it is written over, so that nothing in it is lost. [any]
namespace SetAside {

struct Result
{
    QString place = {};  // of the file that is kept; empty when there was nothing to keep
    QString reason = {}; // of a failure
    bool isNew = false;  // not so when an equal one lay there already
};

/// The file as it lies on the disk must not be lost.
void mark(const QString& path);
bool isMarked(const QString& path);

/// Copies a marked file and takes its mark away. Nothing for a file without a mark or content. The file keeps
/// its mark when this fails.
Result copyMarked(const QString& path);
/// The same, but afterwards there is no file at `path`, so that the next start makes a new one.
Result moveMarked(const QString& path);

} // namespace SetAside
