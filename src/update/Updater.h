#pragma once

#include "update/SingleMessageBox.h"
#include "update/WebAddress.h"

#include <QNetworkAccessManager>
#include <QObject>
#include <QString>

#include <memory>

class Downloader;
class QNetworkReply;

/// Fetches one feed (UpdateFeed.h), holds its answer and tells the player of it. Graphical thread.
class Updater : public QObject
{
    Q_OBJECT

public:
    explicit Updater(QObject* parent = nullptr);
    ~Updater() override;

    /// A redirection moves it.
    QString url() const { return mUrl; }
    QString userAgentString() const { return mUserAgentString; }
    QString moduleName() const { return mModuleName; }
    QString moduleVersion() const { return mModuleVersion; }
    QString platformKey() const { return mPlatformKey; }
    QString openUrl() const { return mOpenUrl; }
    QString changelog() const { return mChangelog; }
    QString downloadUrl() const { return mDownloadUrl; }
    QString latestVersion() const { return mLatestVersion; }
    bool customAppcast() const { return mCustomAppcast; }
    bool notifyOnUpdate() const { return mNotifyOnUpdate; }
    bool notifyOnFinish() const { return mNotifyOnFinish; }
    bool updateAvailable() const { return mUpdateAvailable; }
    bool downloaderEnabled() const { return mDownloaderEnabled; }
    bool mandatoryUpdate() const { return mMandatoryUpdate; }
    bool hasNetworkError() const { return mNetworkError; }
    Downloader* downloader() const { return mDownloader.get(); }

    void setUrl(const QString& url) { mUrl = url; }
    /// Also sets the downloader's.
    void setUserAgentString(const QString& agent);
    void setModuleName(const QString& name) { mModuleName = name; }
    void setModuleVersion(const QString& version) { mModuleVersion = version; }
    void setPlatformKey(const QString& key) { mPlatformKey = key; }
    /// When on, the feed's bytes are passed on without being parsed.
    void setCustomAppcast(bool on) { mCustomAppcast = on; }
    void setNotifyOnUpdate(bool on) { mNotifyOnUpdate = on; }
    void setNotifyOnFinish(bool on) { mNotifyOnFinish = on; }
    void setDownloaderEnabled(bool on) { mDownloaderEnabled = on; }
    void setMandatoryUpdate(bool on) { mMandatoryUpdate = on; }
    void setTransferTimeout(int milliseconds);

    /// Whether x is newer than y: "2.1" than "2.0", and "2.0.0" than "2.0".
    static bool compare(const QString& x, const QString& y);

public slots:
    /// Gives up a check that is still under way.
    void checkForUpdates();
    /// Stores the flag and tells the player, as far as the notify flags want it.
    void setUpdateAvailable(bool available);

signals:
    void checkingFinished(const QString& url);
    void downloadFinished(const QString& url, const QString& path);
    void appcastDownloaded(const QString& url, const QByteArray& data);
    void networkError(const QString& url, bool error);
    void removeUpdateDialog();

private slots:
    void onReply(QNetworkReply* reply);

private:
    void sendRequest();
    void stop();
    bool followRedirection(const QNetworkReply& reply);
    bool readFeed(const QByteArray& data);
    void offerUpdate();
    void tellUpToDate();
    void tellNetworkError();
    void fetchUpdate();
    void openAddress(const QString& address);

    QString mUrl;
    QString mUserAgentString;
    QString mModuleName;
    QString mModuleVersion;
    QString mPlatformKey = QStringLiteral("osx");
    QString mOpenUrl;
    QString mChangelog;
    QString mDownloadUrl;
    QString mLatestVersion;
    bool mCustomAppcast = false;
    bool mNotifyOnUpdate = true;
    bool mNotifyOnFinish = false;
    bool mUpdateAvailable = false;
    bool mDownloaderEnabled = true;
    bool mMandatoryUpdate = false;
    bool mNetworkError = false;
    int mRedirections = 0; // of this check
    int mTransferTimeout = web::TRANSFER_TIMEOUT_MS;
    QNetworkAccessManager mManager;
    QNetworkReply* mReply = nullptr; // of the check under way, owned by the manager
    std::unique_ptr<Downloader> mDownloader;
    SingleMessageBox mBox;
};
