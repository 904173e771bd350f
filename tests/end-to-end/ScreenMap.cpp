#include "end-to-end/ScreenMap.h"

#include "end-to-end/VirtualDesk.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

ScreenMap::ScreenMap(const VirtualDesk& desk)
{
    const QTemporaryDir home; // it must not leave files in the test's
    QProcessEnvironment environment = desk.environment();
    environment.insert(u"XDG_DATA_HOME"_s, home.path());
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(QCoreApplication::applicationDirPath() + u"/print_screen_map"_s, QStringList());
    if (!process.waitForFinished(60000) || process.exitCode() != 0)
        return;
    // The line may stand behind others: the sound libraries print too.
    for (const QByteArray& line : process.readAllStandardOutput().split('\n')) {
        if (line.startsWith('{'))
            mMap = QJsonDocument::fromJson(line).object();
    }
}

QPoint ScreenMap::point(const char* group, const char* name) const
{
    const QJsonArray point = mMap[QLatin1StringView(group)].toObject()[QLatin1StringView(name)].toArray();
    if (point.size() != 2)
        qFatal("The window has no %s among its %s.", name, group);
    return {point[0].toInt(), point[1].toInt()};
}
