#pragma once

class QString;

/// What can be said of a Pure Data file before libpd reads it. Any thread.
namespace PatchFile {

/// True when the file ends inside a subpatch, as one cut short by a broken copy may. libpd must
/// not read it: from then on it makes no voices of any patch, until the program ends.
bool endsInsideSubpatch(const QString& path);

} // namespace PatchFile
