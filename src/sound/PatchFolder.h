#pragma once

#include <QString>

/// The runtime folder, from which libpd opens the patch: "patch" in the config directory. It holds the
/// main patch with its helpers, as installed at start, and the voice that the main patch instantiates. One
/// that is there but cannot be written is left alone, and a temporary folder takes its place for this run.
/// Graphical thread; failures are logged as critical.
class PatchFolder
{
public:
    /// The name by which the main patch finds the voice beside it.
    static constexpr QLatin1StringView VOICE_FILE{"orlo_voice.pd"};

    /// The folder where the program's own voices lie, one file for each entry of the patch menu.
    static QString shippedVoices(const QString& resourceDirectory);
    /// The program's own main patch for so many voices.
    static QString shippedMainPatch(const QString& resourceDirectory, int voices);

    explicit PatchFolder(const QString& configDirectory);

    /// Always the same file, whatever the number of voices.
    QString mainPatch() const;
    QString voice() const;

    /// Puts the main patch for so many voices and its helpers into the folder, which is made. The main
    /// patch is always replaced, a helper only when the program's own is newer.
    bool install(const QString& resourceDirectory, int voices) const;
    /// Replaces the voice by a copy of this file. No patch may be open.
    bool putVoice(const QString& path) const;

    /// Copies unless the target is at least as new as the source. `overwrite` copies always.
    static bool copyFile(const QString& src, const QString& dst, bool overwrite);

private:
    QString mPath;
};
