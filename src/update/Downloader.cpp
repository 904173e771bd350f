#include "update/Downloader.h"

#include "app/LogText.h"
#include "ui_Downloader.h"
#include "update/RunnableFile.h"
#include "update/SafeFileName.h"

#include <QDateTime>
#include <QDebug>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QScreen>

#include <cmath>

namespace {

constexpr int HTTP_OK = 200;
constexpr double MAX_SECONDS = 1e9; // a server can promise any length

QString counted(qint64 count, const QString& many, const QString& one)
{
    return count < 2 && count != 0 ? one : many.arg(count);
}

} // namespace

Downloader::Downloader(QWidget* parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::Downloader>())
    , mDownloadDir(QDir::homePath() + QStringLiteral("/Downloads/"))
{
    ui->setupUi(this);
    setWindowTitle(QCoreApplication::applicationName());
    // Its own buttons close it: a close button would leave a download without a window.
    setWindowFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowMinimizeButtonHint);
    setAttribute(Qt::WA_QuitOnClose, false); // the program ends with its main window
    setAttribute(Qt::WA_StyledBackground);
    const QRect area = screen()->availableGeometry();
    move(area.center().x() - width() / 2, area.top() + area.height() / 5); // its boxes come in the middle
    connect(qApp, &QCoreApplication::aboutToQuit, this, [this] {
        stop();
        hide();
    });
}

Downloader::~Downloader()
{
    stop();
}

bool Downloader::isSafeFileName(const QString& name)
{
    return safefilename::isSafe(name);
}

// ---------------------------------------------------------------- start and end

void Downloader::startDownload(const QUrl& url)
{
    mRedirections = 0;
    fetch(url);
}

void Downloader::fetch(const QUrl& url)
{
    stop();
    showStart();
    mReceived = 0;
    const QString reason = obstacle(url);
    if (!reason.isEmpty()) {
        fail(reason);
        return;
    }
    mReply = mManager.get(web::request(url, mUserAgentString, mTransferTimeout));
    mStartTime = QDateTime::currentSecsSinceEpoch();
    connect(mReply, &QNetworkReply::downloadProgress, this, &Downloader::updateProgress);
    // Progress of an unknown length saves nothing: what arrives would fill the memory.
    connect(mReply, &QNetworkReply::readyRead, this, &Downloader::saveFile);
    connect(mReply, &QNetworkReply::finished, this, &Downloader::finished);
    show();
}

/// What forbids this download; empty when its file has been made.
QString Downloader::obstacle(const QUrl& url)
{
    if (QString objection = web::objection(mFeed, url); !objection.isEmpty())
        return objection;
    if (!isSafeFileName(mFileName))
        return QStringLiteral("The address that the server gave has no usable file name.");
    if (!QDir().mkpath(mDownloadDir))
        return QStringLiteral("The folder \"%1\" cannot be made.")
            .arg(QDir::toNativeSeparators(mDownloadDir));
    return mFile.start(mDownloadDir, mFileName) ? QString() : mFile.error();
}

/// Ends the download under way, if any, with what it wrote.
void Downloader::stop()
{
    mBox.close();
    mFile.discard();
    QNetworkReply* reply = std::exchange(mReply, nullptr);
    if (!reply)
        return;
    reply->disconnect(this);
    reply->abort();
    reply->deleteLater();
}

void Downloader::fail(const QString& reason)
{
    qWarning().noquote() << "The update could not be downloaded:" << logText(reason);
    stop();
    hide();
    warn(QStringLiteral("The update could not be downloaded"), reason);
}

void Downloader::warn(const QString& what, const QString& why)
{
    mBox.show({.icon = QMessageBox::Warning,
               .title = QStringLiteral("Updater"),
               .text = SingleMessageBox::h3(what),
               .informative = why.toHtmlEscaped(),
               .buttons = QMessageBox::Close,
               .standard = QMessageBox::Close});
}

void Downloader::saveFile()
{
    const QUrl redirection = mReply->attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl();
    if (!redirection.isEmpty()) {
        const QUrl target = mReply->url().resolved(redirection);
        if (web::objection(mReply->url(), target).isEmpty() && ++mRedirections <= web::REDIRECT_LIMIT)
            fetch(target);
        else
            fail(QStringLiteral("The server sends on to an address that is not followed."));
        return;
    }
    const QByteArray bytes = mReply->readAll();
    mReceived += bytes.size();
    if (!mFile.write(bytes))
        fail(mFile.error());
}

void Downloader::finished()
{
    const QNetworkReply* reply = mReply;
    saveFile(); // what has arrived since the last progress
    if (mReply != reply)
        return;
    const QString reason = fault();
    if (!reason.isEmpty()) {
        fail(reason);
        return;
    }
    if (!mFile.finish()) {
        fail(mFile.error());
        return;
    }
    mBox.close(); // too late to cancel
    QNetworkReply* done = std::exchange(mReply, nullptr);
    emit downloadFinished(mUrlId, mFile.path());
    done->close();
    done->deleteLater();
    installUpdate();
    if (!mBox.isOpen())
        hide();
}

/// Why the file is not whole; empty if it is.
QString Downloader::fault() const
{
    const int status = mReply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (status != 0 && status != HTTP_OK)
        return QStringLiteral("The server answered with the code %1.").arg(status);
    const QVariant promised = mReply->header(QNetworkRequest::ContentLengthHeader);
    if (mReply->error() != QNetworkReply::NoError
        || (promised.isValid() && promised.toLongLong() != mReceived)) {
        qWarning().noquote() << logText(mReply->errorString());
        return QStringLiteral("The connection was interrupted.");
    }
    if (mReceived == 0)
        return QStringLiteral("The server sent an empty file.");
    return QString();
}

// ---------------------------------------------------------------- the window

void Downloader::showStart()
{
    ui->progressBar->setRange(0, 100);
    ui->progressBar->setValue(0);
    ui->openButton->setEnabled(false);
    ui->stopButton->setText(QStringLiteral("Stop"));
    ui->downloadLabel->setText(QStringLiteral("Downloading updates"));
    ui->timeLabel->setText(QStringLiteral("Time remaining: unknown"));
}

void Downloader::updateProgress(qint64 received, qint64 total)
{
    if (total < 1) {
        ui->progressBar->setRange(0, 0); // moves without a value
        ui->downloadLabel->setText(QStringLiteral("Downloading Updates..."));
        ui->timeLabel->setText(
            QStringLiteral("%1: %2").arg(QStringLiteral("Time Remaining"), QStringLiteral("Unknown")));
        return;
    }
    ui->progressBar->setRange(0, 100);
    ui->progressBar->setValue(static_cast<int>(received * 100 / total));
    calculateSizes(received, total);
    calculateTimeRemaining(received, total);
    saveFile(); // last: a redirection may end this reply
}

QString Downloader::sizeText(qint64 bytes)
{
    if (bytes < 1024)
        return QStringLiteral("%1 bytes").arg(bytes);
    if (bytes < 1048576)
        return QStringLiteral("%1 KB").arg(bytes >> 10);
    return QStringLiteral("%1 MB").arg(bytes >> 20);
}

void Downloader::calculateSizes(qint64 received, qint64 total)
{
    ui->downloadLabel->setText(
        QStringLiteral("Downloading updates (%1 of %2)").arg(sizeText(received), sizeText(total)));
}

QString Downloader::remainingText(qint64 seconds)
{
    const auto rounded = [seconds](double unit) { return std::llround(static_cast<double>(seconds) / unit); };
    if (seconds > 7200)
        return counted(rounded(3600.0), QStringLiteral("about %1 hours"), QStringLiteral("about one hour"));
    if (seconds > 60)
        return counted(rounded(60.0), QStringLiteral("%1 minutes"), QStringLiteral("1 minute"));
    return counted(seconds, QStringLiteral("%1 seconds"), QStringLiteral("1 second"));
}

void Downloader::calculateTimeRemaining(qint64 received, qint64 total)
{
    const qint64 elapsed = QDateTime::currentSecsSinceEpoch() - mStartTime;
    if (elapsed <= 0 || received <= 0) // the clock may have been set back
        return;
    const double bytesPerSecond = static_cast<double>(received) / static_cast<double>(elapsed);
    const double seconds = static_cast<double>(total - received) / bytesPerSecond + 0.5;
    ui->timeLabel->setText(QStringLiteral("Time remaining: ")
                           + remainingText(static_cast<qint64>(qMin(seconds, MAX_SECONDS))));
}

// ---------------------------------------------------------------- what the player decides

void Downloader::installUpdate()
{
    if (mUseCustomInstallProcedures)
        return;
    ui->stopButton->setText(QStringLiteral("Close"));
    ui->downloadLabel->setText(QStringLiteral("Download complete!"));
    ui->timeLabel->setText(QStringLiteral("The installer will open separately..."));
    const QString heading =
        mMandatoryUpdate
            ? QStringLiteral("In order to install the update, you may need to quit the application. This "
                             "is a mandatory update, exiting now will close the application")
            : QStringLiteral("In order to use the new version, quit the application and replace it in "
                             "your applications folder.");
    if (runnablefile::isRunnable(mFile.path())) {
        ui->timeLabel->setText(whereItLies());
        tellWhereItLies(heading);
        return;
    }
    mBox.show({.icon = QMessageBox::Question,
               .title = QCoreApplication::applicationName(),
               .text = SingleMessageBox::h3(heading),
               .informative = QStringLiteral("Click \"OK\" to open the downloaded file now"),
               .buttons = QMessageBox::Ok | QMessageBox::Cancel,
               .standard = QMessageBox::Ok},
              [this](QMessageBox::StandardButton answer) {
                  hide();
                  if (answer == QMessageBox::Ok) {
                      openDownload();
                  } else if (mMandatoryUpdate) {
                      quitIfMandatory();
                  } else {
                      ui->openButton->setEnabled(true);
                      ui->timeLabel->setText(QStringLiteral("Click the \"Open\" button to apply the update"));
                  }
              });
}

void Downloader::openDownload()
{
    const QString path = mFile.path();
    if (path.isEmpty() || !QFileInfo::exists(path)) {
        mBox.show({.icon = QMessageBox::Critical,
                   .title = QStringLiteral("Error"),
                   .text = QStringLiteral("Cannot find downloaded update!"),
                   .informative = QString(),
                   .buttons = QMessageBox::Ok,
                   .standard = QMessageBox::Ok});
    } else if (runnablefile::isRunnable(path) || !QDesktopServices::openUrl(QUrl::fromLocalFile(path))) {
        warn(QStringLiteral("The update could not be opened"), whereItLies());
    }
}

QString Downloader::whereItLies() const
{
    return QStringLiteral("It lies at \"%1\".").arg(QDir::toNativeSeparators(mFile.path()));
}

/// In place of the question whether to open it.
void Downloader::tellWhereItLies(const QString& heading)
{
    const QString reason =
        QStringLiteral(" It is not opened from here: the desktop could run a file of this kind.");
    mBox.show({.icon = QMessageBox::Information,
               .title = QCoreApplication::applicationName(),
               .text = SingleMessageBox::h3(heading),
               .informative = (whereItLies() + reason).toHtmlEscaped(),
               .buttons = QMessageBox::Close,
               .standard = QMessageBox::Close},
              [this](QMessageBox::StandardButton) {
                  hide();
                  quitIfMandatory();
              });
}

void Downloader::cancelDownload()
{
    if (!mReply) { // finished
        mBox.close();
        quitIfMandatory();
        hide();
        return;
    }
    const QString question =
        mMandatoryUpdate
            ? QStringLiteral("Are you sure you want to cancel the download? This is a mandatory update, "
                             "exiting now will close the application")
            : QStringLiteral("Are you sure you want to cancel the download?");
    mBox.show({.icon = QMessageBox::Question,
               .title = QStringLiteral("Updater"),
               .text = question,
               .informative = QString(),
               .buttons = QMessageBox::Yes | QMessageBox::No,
               .standard = QMessageBox::No},
              [this](QMessageBox::StandardButton answer) {
                  if (answer != QMessageBox::Yes)
                      return;
                  hide();
                  stop();
                  quitIfMandatory();
              });
}

void Downloader::quitIfMandatory() const
{
    if (mMandatoryUpdate)
        QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
}

void Downloader::on_openButton_clicked()
{
    openDownload();
}

void Downloader::on_stopButton_clicked()
{
    cancelDownload();
}
