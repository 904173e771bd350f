#include "end-to-end/EndToEndTest.h"

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

qsizetype EndToEndTest::banners() const
{
    return log().count(u'\n' + QString(78, u'-') + QStringLiteral("\nStarting app at "));
}
