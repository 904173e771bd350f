#include "fuzz/Fuzz.h"
#include "update/SafeFileName.h"
#include "update/UpdateFeed.h"

#include <QDir>
#include <QUrl>

namespace {

const QString PLATFORM = QStringLiteral("osx");
const QString FOLDER = QStringLiteral("/home/player/Downloads");

QByteArray textOf(const UpdateFeed& feed)
{
    QJsonObject platform{{QStringLiteral("open-url"), feed.openUrl},
                         {QStringLiteral("changelog"), feed.changelog},
                         {QStringLiteral("download-url"), feed.downloadUrl},
                         {QStringLiteral("latest-version"), feed.latestVersion}};
    if (feed.mandatory)
        platform.insert(QStringLiteral("mandatory-update"), *feed.mandatory);
    const QJsonObject updates{{PLATFORM, platform}};
    return QJsonDocument(QJsonObject{{QStringLiteral("updates"), updates}}).toJson();
}

bool liesInFolder(const QString& name)
{
    const QString path = QDir::cleanPath(FOLDER + u'/' + name);
    return path.startsWith(FOLDER + u'/') && path.lastIndexOf(u'/') == FOLDER.size();
}

} // namespace

FUZZ_TARGET(feed)
{
    QString error;
    const std::optional<UpdateFeed> feed = UpdateFeed::parse(input, PLATFORM, error);
    FUZZ_REQUIRE(feed.has_value() == error.isEmpty());
    if (!feed)
        return;
    const std::optional<UpdateFeed> again = UpdateFeed::parse(textOf(*feed), PLATFORM, error);
    FUZZ_REQUIRE(again && textOf(*again) == textOf(*feed));

    const QString name = feed->downloadUrl.split(u'/').last();
    if (safefilename::isSafe(name)) {
        FUZZ_REQUIRE(liesInFolder(name));
        FUZZ_REQUIRE(liesInFolder(QUrl::fromPercentEncoding(name.toUtf8())));
    }
}
