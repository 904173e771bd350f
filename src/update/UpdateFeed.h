#pragma once

#include <QString>

#include <optional>

class QByteArray;

/// What a feed says of one platform. The feed is like { "updates": { "osx": { "open-url": "",
/// "latest-version": "2.1.0", "download-url": "https://host/file.dmg", "changelog": "",
/// "mandatory-update": false } } }. A pure reading of the bytes: nothing in it is to be trusted.
struct UpdateFeed
{
    // Empty where the feed lacks them.
    QString openUrl;
    QString changelog;
    QString downloadUrl;
    QString latestVersion;
    std::optional<bool> mandatory;

    /// Nothing, and what is wrong in `error`, for bytes that are no JSON.
    static std::optional<UpdateFeed> parse(const QByteArray& data, const QString& platformKey,
                                           QString& error);
};
