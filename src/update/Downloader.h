#pragma once

#include "update/DownloadFile.h"
#include "update/SingleMessageBox.h"
#include "update/WebAddress.h"

#include <QNetworkAccessManager>
#include <QUrl>
#include <QWidget>

#include <memory>

class QNetworkReply;

namespace Ui {
class Downloader;
}

/// The progress window that fetches one file into the download directory, and then asks whether to
/// open it. Graphical thread. While it runs, the file has ".part" behind its name; only what arrived
/// whole gets the final name, and no file that was there before is touched. What the desktop would run
/// is not opened from here.
class Downloader : public QWidget
{
    Q_OBJECT

public:
    explicit Downloader(QWidget* parent = nullptr);
    ~Downloader() override;

    QString downloadDir() const { return mDownloadDir; }
    bool useCustomInstallProcedures() const { return mUseCustomInstallProcedures; }

    void setFileName(const QString& name) { mFileName = name; }
    /// Where the address of the file comes from: an https one may not lead down to http.
    void setFeed(const QUrl& feed) { mFeed = feed; }
    /// What `downloadFinished` names the download by.
    void setUrlId(const QString& id) { mUrlId = id; }
    void setDownloadDir(const QString& directory) { mDownloadDir = directory; }
    void setUserAgentString(const QString& agent) { mUserAgentString = agent; }
    void setMandatoryUpdate(bool on) { mMandatoryUpdate = on; }
    /// On: the finished file is announced, but the player is not asked to open it.
    void setUseCustomInstallProcedures(bool on) { mUseCustomInstallProcedures = on; }
    void setTransferTimeout(int milliseconds) { mTransferTimeout = milliseconds; }

    /// Whether a name that a server gave can only mean a file in the directory itself.
    static bool isSafeFileName(const QString& name);
    static QString sizeText(qint64 bytes);
    static QString remainingText(qint64 seconds);

public slots:
    /// Gives up a download that is still under way.
    void startDownload(const QUrl& url);
    void cancelDownload();
    void installUpdate();
    void openDownload();

signals:
    void downloadFinished(const QString& id, const QString& path);

private slots:
    void updateProgress(qint64 received, qint64 total);
    void saveFile();
    void finished();
    void on_openButton_clicked();
    void on_stopButton_clicked();

private:
    void fetch(const QUrl& url);
    void stop();
    void fail(const QString& reason);
    void warn(const QString& what, const QString& why);
    void quitIfMandatory() const;
    void showStart();
    QString obstacle(const QUrl& url);
    QString fault() const;
    QString whereItLies() const;
    void tellWhereItLies(const QString& heading);
    void calculateSizes(qint64 received, qint64 total);
    void calculateTimeRemaining(qint64 received, qint64 total);

    std::unique_ptr<Ui::Downloader> ui;
    QString mFileName;
    QUrl mFeed;
    QString mUrlId;
    QString mDownloadDir;
    QString mUserAgentString;
    bool mMandatoryUpdate = false;
    bool mUseCustomInstallProcedures = false;
    int mTransferTimeout = web::TRANSFER_TIMEOUT_MS;
    qint64 mStartTime = 0; // seconds
    int mRedirections = 0; // of this download
    qint64 mReceived = 0;  // bytes taken from the reply
    DownloadFile mFile;    // of the download under way or finished
    QNetworkAccessManager mManager;
    QNetworkReply* mReply = nullptr; // of the download under way, owned by the manager
    SingleMessageBox mBox;
};
