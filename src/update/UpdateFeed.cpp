#include "update/UpdateFeed.h"

#include <QJsonDocument>
#include <QJsonObject>

std::optional<UpdateFeed> UpdateFeed::parse(const QByteArray& data, const QString& platformKey,
                                            QString& error)
{
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(data, &parseError);
    if (document.isNull()) {
        error = parseError.errorString();
        return std::nullopt;
    }
    const QJsonObject platform =
        document.object().value(QStringLiteral("updates")).toObject().value(platformKey).toObject();
    const auto text = [&platform](const char* key) {
        return platform.value(QLatin1StringView(key)).toString();
    };
    UpdateFeed feed{text("open-url"), text("changelog"), text("download-url"), text("latest-version"), {}};
    const QJsonValue mandatory = platform.value(QStringLiteral("mandatory-update"));
    if (!mandatory.isUndefined())
        feed.mandatory = mandatory.toBool();
    return feed;
}
