#pragma once

class QString;

/// What can be said of a Pure Data file before libpd reads it. Any thread.
namespace PatchFile {

struct Outline
{
    bool readable = false;
    /// The file ends inside a subpatch, as one cut short by a broken copy may. libpd must not read
    /// it: from then on it makes no voices of any patch, until the program ends.
    bool endsInsideSubpatch = false;
    // Of the patch itself, for messages and for signals.
    int inlets = 0;
    int outlets = 0;
};

Outline outline(const QString& path);

} // namespace PatchFile
