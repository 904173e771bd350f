#pragma once

#include <QString>
#include <QStringList>

/// The banks and presets in the presets directory: a bank is a sub-directory, a preset a file in
/// it with the ending ".btoc". What a player types is used as a name and nothing else, so nothing
/// here reaches outside that directory.
class ChordPresets
{
public:
    explicit ChordPresets(const QString& directory);

    /// A name of one folder or file: it has a letter, does not begin with a dot and holds neither
    /// "..", nor a separator, nor a control character.
    static bool isName(const QString& name);

    bool directoryExists() const;
    /// As the directory lists them; empty for what is not there.
    QStringList banks() const;
    /// Without their ending.
    QStringList presets(const QString& bank) const;

    QString bankPath(const QString& bank) const;
    QString presetPath(const QString& bank, const QString& preset) const;

    /// False for no name, for one that is there already, and when the disk refuses.
    bool makeBank(const QString& bank) const;
    /// What is left of a bank that was removed: nothing, with an empty folder here, or this.
    struct Remains
    {
        QString folder;
        QStringList names; // in it
    };
    /// With all its presets, and its folder if nothing else is in it. Of a link only the link goes, and
    /// nothing behind it.
    Remains removeBank(const QString& bank) const;

    bool presetExists(const QString& bank, const QString& preset) const;
    /// An empty file, until the first save. False as above.
    bool makePreset(const QString& bank, const QString& preset) const;
    void removePreset(const QString& bank, const QString& preset) const;

private:
    QString mDirectory;
};
