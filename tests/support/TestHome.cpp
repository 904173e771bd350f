#include "support/TestHome.h"

#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <sys/stat.h>
#include <unistd.h>

namespace {
constexpr const char* DATA_HOME = "XDG_DATA_HOME";
}

TestHome::TestHome()
    : mFormerDataHome(qgetenv(DATA_HOME))
{
    qputenv(DATA_HOME, mDir.path().toLocal8Bit());
    configDir().mkpath(QStringLiteral("."));
}

TestHome::~TestHome()
{
    qputenv(DATA_HOME, mFormerDataHome);
}

QDir TestHome::configDir() const
{
    return QDir(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
}

void TestHome::write(const QString& fileName, const QByteArray& content) const
{
    QFile file(path(fileName));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("The test's own file %s could not be written.", qPrintable(file.fileName()));
}

bool TestHome::whenNoFileCanBeMade(const std::function<bool()>& work) const
{
    return underModes(0666, 0755, work);
}

bool TestHome::whenNothingCanBeWritten(const std::function<bool()>& work) const
{
    return underModes(0444, 0555, work);
}

/// The modes are of what lies in the folder; the folder itself takes no new file.
bool TestHome::underModes(unsigned ofFiles, unsigned ofFolders, const std::function<bool()>& work) const
{
    const QByteArray folder = configDir().path().toLocal8Bit();
    for (const QFileInfo& entry :
         configDir().entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot))
        chmod(entry.filePath().toLocal8Bit(), entry.isDir() ? ofFolders : ofFiles);
    chmod(mDir.path().toLocal8Bit(), 0755);
    chmod(folder, 0555);
    const bool isChanged = geteuid() == 0 && seteuid(65534) == 0; // no permission stops a superuser
    const bool result = work();
    const bool isBack = !isChanged || seteuid(getuid()) == 0;
    return chmod(folder, 0755) == 0 && isBack && result;
}

QByteArray TestHome::read(const QString& fileName) const
{
    QFile file(path(fileName));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
