#include "update/Updater.h"

#include "app/LogText.h"
#include "update/Downloader.h"
#include "update/UpdateFeed.h"
#include "update/VersionOrder.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDesktopServices>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QUrl>

namespace {

// A feed has some kilobytes; a server that sends without end must not fill the memory.
constexpr qint64 MAX_FEED_BYTES = 8 << 20;
// Of a version that the feed names, what a box can show.
constexpr qsizetype MAX_VERSION_LENGTH = 40;

} // namespace

Updater::Updater(QObject* parent)
    : QObject(parent)
    , mModuleName(QCoreApplication::applicationName())
    , mModuleVersion(QCoreApplication::applicationVersion())
    , mDownloader(std::make_unique<Downloader>())
{
    setUserAgentString(QStringLiteral("%1/%2 (Qt; QSimpleUpdater)").arg(mModuleName, mModuleVersion));
    connect(&mManager, &QNetworkAccessManager::finished, this, &Updater::onReply);
    connect(mDownloader.get(), &Downloader::downloadFinished, this, &Updater::downloadFinished);
    // Nothing stays on the screen while the program saves.
    connect(qApp, &QCoreApplication::aboutToQuit, this, &Updater::stop);
}

Updater::~Updater()
{
    stop();
}

void Updater::setUserAgentString(const QString& agent)
{
    mUserAgentString = agent;
    mDownloader->setUserAgentString(agent);
}

void Updater::setTransferTimeout(int milliseconds)
{
    mTransferTimeout = milliseconds;
    mDownloader->setTransferTimeout(milliseconds);
}

bool Updater::compare(const QString& x, const QString& y)
{
    return isNewerVersion(x, y);
}

// ---------------------------------------------------------------- the check

void Updater::checkForUpdates()
{
    mRedirections = 0;
    mUpdateAvailable = false; // an earlier answer says nothing of this check
    sendRequest();
}

void Updater::sendRequest()
{
    if (QNetworkReply* former = std::exchange(mReply, nullptr))
        former->abort();
    QNetworkReply* reply = mManager.get(web::request(QUrl(mUrl), mUserAgentString, mTransferTimeout));
    mReply = reply;
    connect(reply, &QNetworkReply::readyRead, this, [reply] {
        if (reply->bytesAvailable() <= MAX_FEED_BYTES)
            return;
        qWarning() << "The update feed is larger than" << MAX_FEED_BYTES << "bytes, it is not read.";
        reply->abort();
    });
}

void Updater::stop()
{
    mBox.close();
    if (QNetworkReply* reply = std::exchange(mReply, nullptr))
        reply->abort();
}

void Updater::onReply(QNetworkReply* reply)
{
    reply->deleteLater();
    if (reply != mReply) // given up
        return;
    mReply = nullptr;
    const bool redirected = reply->attribute(QNetworkRequest::RedirectionTargetAttribute).isValid();
    if (redirected && followRedirection(*reply))
        return;

    mNetworkError = redirected || reply->error() != QNetworkReply::NoError;
    if (mNetworkError) {
        qWarning().noquote() << "The update feed could not be read:" << logText(reply->errorString());
        emit networkError(mUrl, true);
        emit checkingFinished(mUrl);
        setUpdateAvailable(false);
        return;
    }
    const QByteArray data = reply->readAll();
    if (mCustomAppcast) {
        emit appcastDownloaded(mUrl, data);
        emit checkingFinished(mUrl);
        return;
    }
    if (!readFeed(data)) {
        setUpdateAvailable(false);
        emit checkingFinished(mUrl);
        return;
    }
    const bool available = compare(mLatestVersion, mModuleVersion);
    mUpdateAvailable = available;
    emit checkingFinished(mUrl);
    setUpdateAvailable(available);
}

/// False when the way ends here, which counts as a network error.
bool Updater::followRedirection(const QNetworkReply& reply)
{
    const QUrl target =
        reply.url().resolved(reply.attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl());
    const QString objection = web::objection(reply.url(), target);
    if (!objection.isEmpty() || ++mRedirections > web::REDIRECT_LIMIT) {
        qWarning().noquote() << "The update feed leads to" << logText(target.toDisplayString())
                             << "which is not followed." << objection;
        return false;
    }
    mUrl = QString::fromUtf8(target.toEncoded());
    sendRequest();
    return true;
}

/// False if it is no JSON. What the feed lacks is empty then, but for the mandatory flag.
bool Updater::readFeed(const QByteArray& data)
{
    QString error;
    const std::optional<UpdateFeed> feed = UpdateFeed::parse(data, mPlatformKey, error);
    if (!feed) {
        qWarning().noquote() << "The update feed is no JSON:" << error;
        return false;
    }
    mOpenUrl = feed->openUrl;
    mChangelog = feed->changelog;
    mDownloadUrl = feed->downloadUrl;
    mLatestVersion = feed->latestVersion;
    mMandatoryUpdate = feed->mandatory.value_or(mMandatoryUpdate);
    return true;
}

// ---------------------------------------------------------------- what the player is told

void Updater::setUpdateAvailable(bool available)
{
    mUpdateAvailable = available;
    if (available && mNotifyOnUpdate)
        offerUpdate();
    else if (!mNetworkError && mNotifyOnFinish)
        tellUpToDate();
    else if (mNetworkError && (mNotifyOnFinish || mNotifyOnUpdate))
        tellNetworkError();
}

void Updater::offerUpdate()
{
    const QString question =
        mMandatoryUpdate
            ? QStringLiteral(
                "Would you like to download the update now? This is a mandatory update, exiting now "
                "will close the application")
            : QStringLiteral("Please note the changelog. Would you like to download the update now?");
    mBox.show({.icon = QMessageBox::Information,
               .title = mModuleName,
               .text = SingleMessageBox::h3(QStringLiteral("Version %1 of %2 has been released!")
                                                .arg(mLatestVersion.left(MAX_VERSION_LENGTH), mModuleName)),
               .informative = question,
               .buttons = QMessageBox::Yes | QMessageBox::No,
               .standard = QMessageBox::Yes},
              [this](QMessageBox::StandardButton answer) {
                  if (answer == QMessageBox::Yes)
                      fetchUpdate();
                  else if (mMandatoryUpdate)
                      QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
                  emit removeUpdateDialog();
              });
}

void Updater::tellUpToDate()
{
    mBox.show({.icon = QMessageBox::Information,
               .title = mModuleName,
               .text = SingleMessageBox::h3(
                   QStringLiteral("You are running the latest version of %1").arg(mModuleName)),
               .informative = QStringLiteral("No updates are available for the moment"),
               .buttons = QMessageBox::Close,
               .standard = QMessageBox::Close},
              [this](QMessageBox::StandardButton) { emit removeUpdateDialog(); });
}

void Updater::tellNetworkError()
{
    mNotifyOnFinish = true; // the player who tries again is told how it ended
    mBox.show({.icon = QMessageBox::Information,
               .title = mModuleName,
               .text = SingleMessageBox::h3(QStringLiteral("A network error occurred")),
               .informative = QStringLiteral(
                   "Cannot check for updates. Please check your internet connection and retry."),
               .buttons = QMessageBox::Retry | QMessageBox::Close,
               .standard = QMessageBox::Retry},
              [this](QMessageBox::StandardButton answer) {
                  if (answer == QMessageBox::Retry)
                      checkForUpdates();
                  else
                      emit removeUpdateDialog();
              });
}

void Updater::fetchUpdate()
{
    if (!mOpenUrl.isEmpty()) {
        openAddress(mOpenUrl);
    } else if (!mDownloaderEnabled) {
        openAddress(mDownloadUrl);
    } else {
        mDownloader->setUrlId(mUrl);
        mDownloader->setFeed(QUrl(mUrl));
        mDownloader->setFileName(mDownloadUrl.split(u'/').last());
        mDownloader->setMandatoryUpdate(mMandatoryUpdate);
        mDownloader->startDownload(QUrl(mDownloadUrl));
    }
}

void Updater::openAddress(const QString& address)
{
    const QUrl url(address);
    const QString objection = web::objection(QUrl(mUrl), url);
    if (objection.isEmpty() && QDesktopServices::openUrl(url))
        return;
    qWarning().noquote() << "The update's address could not be opened:" << logText(address.left(200));
    mBox.show(
        {.icon = QMessageBox::Warning,
         .title = mModuleName,
         .text = SingleMessageBox::h3(QStringLiteral("The update's page cannot be opened")),
         .informative = objection.isEmpty() ? QStringLiteral("No web browser took the address.") : objection,
         .buttons = QMessageBox::Close,
         .standard = QMessageBox::Close});
}
