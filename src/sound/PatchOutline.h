#pragma once

class QString;

/// What can be said of a Pure Data file before libpd reads it.
struct PatchOutline
{
    bool readable = false;
    /// The file ends inside a subpatch, as one cut short by a broken copy may. libpd must not read
    /// it: from then on it makes no voices of any patch, until the program ends.
    bool endsInsideSubpatch = false;
    // Of the patch itself, for messages and for signals.
    int inlets = 0;
    int outlets = 0;

    /// [any] but [audio], since it reads the file.
    static PatchOutline read(const QString& path);
};
