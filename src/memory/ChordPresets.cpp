#include "memory/ChordPresets.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace {

const QString ENDING = QStringLiteral(".btoc");

/// A name of one level below the directory, from a menu or typed.
bool isEntry(const QString& name)
{
    return !name.isEmpty() && !name.contains(u'/') && name != QStringLiteral(".")
           && name != QStringLiteral("..");
}

} // namespace

ChordPresets::ChordPresets(const QString& directory)
    : mDirectory(directory)
{
}

bool ChordPresets::isName(const QString& name)
{
    const auto isLetter = [](QChar c) { return c.isLetter(); };
    const auto isForbidden = [](QChar c) {
        return c == u'/' || c == u'\\' || c.category() == QChar::Other_Control;
    };
    return std::any_of(name.begin(), name.end(), isLetter)
           && std::none_of(name.begin(), name.end(), isForbidden) && !name.startsWith(u'.')
           && !name.contains(QStringLiteral(".."));
}

bool ChordPresets::directoryExists() const
{
    return !mDirectory.isEmpty() && QFileInfo(mDirectory).isDir(); // "" would be the working directory
}

QStringList ChordPresets::banks() const
{
    return directoryExists() ? QDir(mDirectory).entryList(QDir::Dirs | QDir::NoDotAndDotDot) : QStringList();
}

QStringList ChordPresets::presets(const QString& bank) const
{
    if (!directoryExists() || !isEntry(bank))
        return {};
    QStringList names = QDir(bankPath(bank)).entryList({u'*' + ENDING}, QDir::Files);
    for (QString& name : names)
        name.chop(ENDING.size());
    return names;
}

QString ChordPresets::bankPath(const QString& bank) const
{
    return mDirectory + u'/' + bank;
}

QString ChordPresets::presetPath(const QString& bank, const QString& preset) const
{
    return bankPath(bank) + u'/' + preset + ENDING;
}

bool ChordPresets::makeBank(const QString& bank) const
{
    return directoryExists() && isName(bank) && QDir(mDirectory).mkdir(bank);
}

ChordPresets::Remains ChordPresets::removeBank(const QString& bank) const
{
    if (!directoryExists() || !isEntry(bank))
        return {};
    const QString path = bankPath(bank);
    if (const QString target = QFileInfo(path).symLinkTarget(); !target.isEmpty()) {
        QFile::remove(path);
        return {target, {}};
    }
    QDir folder(path);
    folder.setFilter(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System);
    // A link goes as a link, also one that leads nowhere; one to a folder is no chord file.
    for (const QFileInfo& entry : folder.entryInfoList()) {
        if (entry.fileName().endsWith(ENDING) && !entry.isDir() && (entry.isFile() || entry.isSymLink()))
            QFile::remove(entry.filePath());
    }
    QDir(mDirectory).rmdir(bank); // only when it is empty
    folder.refresh();
    return folder.exists() ? Remains{path, folder.entryList()} : Remains{};
}

bool ChordPresets::presetExists(const QString& bank, const QString& preset) const
{
    const QFileInfo file(presetPath(bank, preset));
    return isName(preset) && (file.exists() || file.isSymLink()); // a dead link is there too
}

bool ChordPresets::makePreset(const QString& bank, const QString& preset) const
{
    if (!directoryExists() || !isEntry(bank) || !isName(preset))
        return false;
    QFile file(presetPath(bank, preset));
    return file.open(QIODevice::WriteOnly | QIODevice::NewOnly);
}

void ChordPresets::removePreset(const QString& bank, const QString& preset) const
{
    if (directoryExists() && isEntry(bank) && isEntry(preset))
        QFile::remove(presetPath(bank, preset));
}
