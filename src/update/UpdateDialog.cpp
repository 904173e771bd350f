#include "update/UpdateDialog.h"

#include "app/Accessors.h"
#include "app/Settings.h"
#include "ui_UpdateDialog.h"
#include "update/QSimpleUpdater.h"
#include "update/UpdateCheckInterval.h"

#include <QDateTime>
#include <QMessageBox>
#include <QPointer>
#include <QScreen>

namespace {

constexpr int ASIDE_X = 450; // leaves the message box free
constexpr int ASIDE_Y = 50;

/// A build without the address of a feed cannot be updated; the player who asks is told so.
void tellNoAddress(QWidget* parent)
{
    static QPointer<QMessageBox> box;
    delete box;
    box = new QMessageBox(QMessageBox::Information, QCoreApplication::applicationName(),
                          QStringLiteral("This build of the program knows no address for updates."),
                          QMessageBox::Close, parent);
    box->setModal(false);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setAttribute(Qt::WA_QuitOnClose, false);
    box->show();
}

} // namespace

const QString UpdateDialog::FEED_URL = QStringLiteral(ORLO_UPDATE_FEED_URL);
const bool UpdateDialog::CHECKS_AT_START = ORLO_UPDATE_CHECK;

UpdateDialog::UpdateDialog(QWidget* parent, const QString& feedUrl)
    : QMainWindow(parent, Qt::Tool)
    , ui(std::make_unique<Ui::UpdateDialog>())
    , mFeedUrl(feedUrl)
{
    ui->setupUi(this);
    setWindowTitle(QCoreApplication::applicationName());
    setAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_QuitOnClose, false);
    resetFields();
    const QSimpleUpdater* all = QSimpleUpdater::getInstance();
    connect(all, &QSimpleUpdater::checkingFinished, this, &UpdateDialog::toShowOrNot);
    connect(all, &QSimpleUpdater::checkingFinished, this, &UpdateDialog::updateChangelog);
    connect(all, &QSimpleUpdater::removeUpdateDialog, this, &UpdateDialog::removeThis);
}

UpdateDialog::~UpdateDialog() = default;

Updater* UpdateDialog::updater() const
{
    return QSimpleUpdater::getInstance()->getUpdater(mFeedUrl);
}

// ---------------------------------------------------------------- when a check runs

bool UpdateDialog::isCheckDue(int interval, const QString& lastCheck, const QDateTime& now)
{
    return updatecheck::isDue(interval, lastCheck, now);
}

void UpdateDialog::startCheck(QWidget* parent, bool notifyOnFinish, const QString& feedUrl)
{
    if (feedUrl.isEmpty()) {
        if (notifyOnFinish)
            tellNoAddress(parent);
        return;
    }
    // A check that found nothing has left its dialog hidden, and this one's news would show it too.
    static QPointer<UpdateDialog> former;
    if (former)
        former->close();
    auto* dialog = new UpdateDialog(parent, feedUrl);
    former = dialog;
    dialog->setNotifyOnFinish(notifyOnFinish);
    dialog->setNotifyOnUpdate(true);
    dialog->checkForUpdates();
    app::settings()->tSysLastUpdateCheck = QDateTime::currentDateTime().toString(Qt::TextDate);
}

void UpdateDialog::checkForUpdates()
{
    QSimpleUpdater* all = QSimpleUpdater::getInstance();
    all->setModuleVersion(mFeedUrl, ui->installedVersion->text());
    all->setCustomAppcast(mFeedUrl, false);
    all->setDownloaderEnabled(mFeedUrl, true);
    all->setMandatoryUpdate(mFeedUrl, false);
    all->checkForUpdates(mFeedUrl);
}

// ---------------------------------------------------------------- fields

void UpdateDialog::resetFields()
{
    ui->installedVersion->setText(QCoreApplication::applicationVersion());
    setNotifyOnUpdate(true);
    setNotifyOnFinish(false);
    ui->mandatoryUpdate->setChecked(false);
    ui->enableDownloader->setChecked(true);
    ui->customAppcast->setChecked(false);
}

void UpdateDialog::setNotifyOnFinish(bool on)
{
    ui->notifyOnFinish->setChecked(on);
    QSimpleUpdater::getInstance()->setNotifyOnFinish(mFeedUrl, on);
}

void UpdateDialog::setNotifyOnUpdate(bool on)
{
    ui->notifyOnUpdate->setChecked(on);
    QSimpleUpdater::getInstance()->setNotifyOnUpdate(mFeedUrl, on);
}

void UpdateDialog::on_notifyOnFinish_toggled(bool on)
{
    setNotifyOnFinish(on);
}

void UpdateDialog::on_notifyOnUpdate_toggled(bool on)
{
    setNotifyOnUpdate(on);
}

void UpdateDialog::on_resetButton_clicked()
{
    resetFields();
}

void UpdateDialog::on_closeButton_clicked()
{
    close();
}

void UpdateDialog::on_checkButton_clicked()
{
    checkForUpdates();
}

// ---------------------------------------------------------------- what the check found

void UpdateDialog::toShowOrNot()
{
    if (!updater()->updateAvailable()) {
        hide();
        return;
    }
    if (isVisible())
        return;
    if (const QWidget* owner = parentWidget()) {
        QRect place = frameGeometry();
        place.moveCenter(owner->window()->frameGeometry().center());
        move(place.topLeft());
    }
    show();
    // The title stays on the screen.
    move(qMax(0, x() - ASIDE_X), qMax(screen()->availableGeometry().top(), y() - ASIDE_Y));
}

/// After a redirection the check answers under the address that the updater was sent on to.
void UpdateDialog::updateChangelog(const QString& url)
{
    if (url == updater()->url())
        ui->changelogText->setPlainText(updater()->changelog());
}

void UpdateDialog::removeThis()
{
    close();
}
