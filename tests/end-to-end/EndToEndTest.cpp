#include "end-to-end/EndToEndTest.h"

#include <QCoreApplication>
#include <QDir>
#include <QJsonDocument>

void EndToEndTest::SetUp()
{
    ASSERT_TRUE(desk.isReady()) << "Xvfb or jackd does not start.";
}

QJsonObject EndToEndTest::options() const
{
    return QJsonDocument::fromJson(home.read(QStringLiteral("options.json"))).object();
}

void EndToEndTest::writeOptions(const QJsonObject& options) const
{
    home.write(QStringLiteral("options.json"), QJsonDocument(options).toJson());
}

QString EndToEndTest::log() const
{
    return QString::fromUtf8(home.read(QStringLiteral("log.txt")));
}

QStringList EndToEndTest::voicePatches()
{
    QStringList names = QDir(QCoreApplication::applicationDirPath() + QStringLiteral("/patches"))
                            .entryList({QStringLiteral("*.pd")}, QDir::Files, QDir::Name);
    return names.replaceInStrings(QStringLiteral(".pd"), QString());
}

QString EndToEndTest::patchKey(const QString& patch)
{
    const qsizetype index = voicePatches().indexOf(patch);
    if (index < 0 || index > 9)
        qFatal("No key chooses the patch %s.", qPrintable(patch));
    return QStringLiteral("ctrl+%1").arg((index + 1) % 10);
}

qsizetype EndToEndTest::banners() const
{
    return log().count(u'\n' + QString(78, u'-') + QStringLiteral("\nStarting app at "));
}
