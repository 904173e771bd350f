#include "support/TestHome.h"

#include <QFile>
#include <QStandardPaths>

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

QByteArray TestHome::read(const QString& fileName) const
{
    QFile file(path(fileName));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
