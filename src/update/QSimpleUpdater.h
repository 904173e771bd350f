#pragma once

#include "update/Downloader.h"
#include "update/Updater.h"

#include <QHash>
#include <QObject>

/// The one object of the process that keeps an `Updater` for each feed and hands its signals on.
/// Graphical thread. What takes a URL first goes to the updater of that feed, which is made at the
/// first request and lives until the application object ends.
class QSimpleUpdater : public QObject
{
    Q_OBJECT

public:
    /// Only while there is a QApplication.
    static QSimpleUpdater* getInstance();
    Updater* getUpdater(const QString& url);

    void checkForUpdates(const QString& url) { getUpdater(url)->checkForUpdates(); }

    QString userAgentString(const QString& url) { return getUpdater(url)->userAgentString(); }
    QString moduleName(const QString& url) { return getUpdater(url)->moduleName(); }
    QString moduleVersion(const QString& url) { return getUpdater(url)->moduleVersion(); }
    QString platformKey(const QString& url) { return getUpdater(url)->platformKey(); }
    QString openUrl(const QString& url) { return getUpdater(url)->openUrl(); }
    QString changelog(const QString& url) { return getUpdater(url)->changelog(); }
    QString downloadUrl(const QString& url) { return getUpdater(url)->downloadUrl(); }
    QString latestVersion(const QString& url) { return getUpdater(url)->latestVersion(); }
    QString downloadDir(const QString& url) { return getUpdater(url)->downloader()->downloadDir(); }
    bool customAppcast(const QString& url) { return getUpdater(url)->customAppcast(); }
    bool notifyOnUpdate(const QString& url) { return getUpdater(url)->notifyOnUpdate(); }
    bool notifyOnFinish(const QString& url) { return getUpdater(url)->notifyOnFinish(); }
    bool updateAvailable(const QString& url) { return getUpdater(url)->updateAvailable(); }
    bool downloaderEnabled(const QString& url) { return getUpdater(url)->downloaderEnabled(); }
    bool mandatoryUpdate(const QString& url) { return getUpdater(url)->mandatoryUpdate(); }
    bool hasNetworkError(const QString& url) { return getUpdater(url)->hasNetworkError(); }
    bool useCustomInstallProcedures(const QString& url)
    {
        return getUpdater(url)->downloader()->useCustomInstallProcedures();
    }

    void setUserAgentString(const QString& url, const QString& agent)
    {
        getUpdater(url)->setUserAgentString(agent);
    }
    void setModuleName(const QString& url, const QString& name) { getUpdater(url)->setModuleName(name); }
    void setModuleVersion(const QString& url, const QString& version)
    {
        getUpdater(url)->setModuleVersion(version);
    }
    void setPlatformKey(const QString& url, const QString& key) { getUpdater(url)->setPlatformKey(key); }
    void setDownloadDir(const QString& url, const QString& dir)
    {
        getUpdater(url)->downloader()->setDownloadDir(dir);
    }
    void setCustomAppcast(const QString& url, bool on) { getUpdater(url)->setCustomAppcast(on); }
    void setNotifyOnUpdate(const QString& url, bool on) { getUpdater(url)->setNotifyOnUpdate(on); }
    void setNotifyOnFinish(const QString& url, bool on) { getUpdater(url)->setNotifyOnFinish(on); }
    void setUpdateAvailable(const QString& url, bool on) { getUpdater(url)->setUpdateAvailable(on); }
    void setDownloaderEnabled(const QString& url, bool on) { getUpdater(url)->setDownloaderEnabled(on); }
    void setMandatoryUpdate(const QString& url, bool on) { getUpdater(url)->setMandatoryUpdate(on); }
    void setUseCustomInstallProcedures(const QString& url, bool on)
    {
        getUpdater(url)->downloader()->setUseCustomInstallProcedures(on);
    }

signals:
    void checkingFinished(const QString& url);
    void downloadFinished(const QString& url, const QString& path);
    void appcastDownloaded(const QString& url, const QByteArray& data);
    void networkError(const QString& url, bool error);
    void removeUpdateDialog();

private:
    QSimpleUpdater() = default;

    QHash<QString, Updater*> mUpdaters; // by the URL they were asked for by; children of this
};
