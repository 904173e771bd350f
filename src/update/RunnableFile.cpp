#include "update/RunnableFile.h"

#include <QFileInfo>
#include <QMimeDatabase>
#include <QStringList>

#include <algorithm>

namespace {

// What a desktop starts without a further question, or hands to an interpreter that does.
const QStringList ENDINGS =
    // Linux: starters, programs in one file
    QStringLiteral("desktop appimage run bin out elf "
                   // scripts
                   "sh bash csh ksh zsh fish py pyc pyw pyz pl rb php tcl lua js jar class jnlp "
                   // programs of Windows, which Wine starts too, and what stands for one
                   "exe msi com scr pif bat cmd ps1 vbs wsf hta lnk url reg "
                   // macOS: run in a terminal or by the system's automation
                   "command tool terminal action workflow scpt applescript webloc fileloc inetloc "
                   // pages whose scripts run as those of a file of this machine
                   "html htm xhtml xht svg")
        .split(u' ');

// Of content, for names without an ending that is known.
const QString KINDS[] = {QStringLiteral("application/x-executable"),
                         QStringLiteral("application/x-sharedlib"),
                         QStringLiteral("application/x-desktop"),
                         QStringLiteral("application/x-ms-dos-executable"),
                         QStringLiteral("application/x-msdownload"),
                         QStringLiteral("application/vnd.microsoft.portable-executable"),
                         QStringLiteral("application/x-mswinurl"),
                         QStringLiteral("application/x-java"),
                         QStringLiteral("application/x-java-jnlp-file"),
                         QStringLiteral("application/x-php"),
                         QStringLiteral("application/javascript"),
                         QStringLiteral("application/xhtml+xml"),
                         QStringLiteral("text/html"),
                         QStringLiteral("image/svg+xml")};

} // namespace

bool runnablefile::isRunnable(const QString& path)
{
    QString name = QFileInfo(path).fileName();
    while (name.endsWith(u'.') || name.endsWith(u' ')) // which some systems leave out
        name.chop(1);
    const QString ending = name.section(u'.', -1).toLower();
    if (name.contains(u'.') && ENDINGS.contains(ending))
        return true;
    const QMimeType type = QMimeDatabase().mimeTypeForFile(path);
    return std::ranges::any_of(KINDS, [&type](const QString& kind) { return type.inherits(kind); });
}
