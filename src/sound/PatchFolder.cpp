#include "sound/PatchFolder.h"

#include "app/Settings.h"
#include "files/WriteAccess.h"

#include <QDateTime>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

namespace {

constexpr QLatin1StringView MAIN_FILE("orlo_main.pd");
constexpr QLatin1StringView HELPER_FILES[] = {
    QLatin1StringView("orlo_vprep.pd"),
    QLatin1StringView("equal-loudness.pd"),
    QLatin1StringView("tb_compressor~.pd"),
    QLatin1StringView("tb_compressorUI.pd"),
};

QString shippedShell(const QString& resourceDirectory)
{
    return PatchFolder::shippedVoices(resourceDirectory) + QStringLiteral("/shell/");
}

/// From a data folder that can be read only, the patch runs in a temporary one.
QString writable(const QString& folder)
{
    if (!QFileInfo(folder).isDir() || whyNotWritable(folder).isEmpty())
        return folder;
    static const QTemporaryDir temporary;
    return temporary.isValid() ? temporary.path() : folder;
}

} // namespace

QString PatchFolder::shippedVoices(const QString& resourceDirectory)
{
    return resourceDirectory + QStringLiteral("/patches");
}

QString PatchFolder::shippedMainPatch(const QString& resourceDirectory, int voices)
{
    return shippedShell(resourceDirectory) + QStringLiteral("orlo_main_%1voice.pd").arg(voices);
}

PatchFolder::PatchFolder(const QString& configDirectory)
    : mPath(writable(configDirectory + QStringLiteral("/patch")))
{
}

QString PatchFolder::mainPatch() const
{
    return mPath + u'/' + MAIN_FILE;
}

QString PatchFolder::voice() const
{
    return mPath + u'/' + VOICE_FILE;
}

bool PatchFolder::install(const QString& resourceDirectory, int voices) const
{
    if (!QDir().mkpath(mPath))
        return false;
    QString shipped = shippedMainPatch(resourceDirectory, voices);
    if (!QFile::exists(shipped)) {
        qWarning() << "There is no main patch for" << voices << "voices, the one for"
                   << Settings::DEFAULT_VOICES << "is used.";
        shipped = shippedMainPatch(resourceDirectory, Settings::DEFAULT_VOICES);
    }
    qDebug() << "Patches init: Main patch:" << QFileInfo(shipped).fileName();
    bool allCopied = copyFile(shipped, mainPatch(), true);
    for (const QLatin1StringView name : HELPER_FILES)
        allCopied = copyFile(shippedShell(resourceDirectory) + name, mPath + u'/' + name, false) && allCopied;
    return allCopied;
}

bool PatchFolder::putVoice(const QString& path) const
{
    const QString target = voice();
    if (QFile::exists(target) && !QFile::remove(target)) {
        qCritical() << "Failed to delete" << target;
        return false;
    }
    if (!QFile::copy(path, target)) {
        qCritical() << "Failed to copy" << path << "to the runtime patch location" << target;
        return false;
    }
    return true;
}

bool PatchFolder::copyFile(const QString& src, const QString& dst, bool overwrite)
{
    const QFileInfo target(dst);
    if (target.exists()) {
        if (target.lastModified() >= QFileInfo(src).lastModified() && !overwrite)
            return true;
        if (!QFile::remove(dst)) {
            qCritical() << "Failed to delete" << dst << "before copying";
            return false;
        }
    }
    if (!QFile::copy(src, dst)) {
        qCritical() << "Failed to copy" << src << "to" << dst;
        return false;
    }
    return true;
}
