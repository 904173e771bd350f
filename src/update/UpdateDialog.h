#pragma once

#include <QMainWindow>

#include <memory>

class QDateTime;
class Updater;

namespace Ui {
class UpdateDialog;
}

/// The window of one check: it starts the check, shows itself with the changelog if a newer version
/// exists, and deletes itself when the player has decided. Graphical thread.
class UpdateDialog : public QMainWindow
{
    Q_OBJECT

public:
    /// The address of updates.json. Empty in a build that was given none.
    static const QString FEED_URL;
    /// False in a build for a package: the system brings newer versions.
    static const bool CHECKS_AT_START;

    explicit UpdateDialog(QWidget* parent = nullptr, const QString& feedUrl = FEED_URL);
    ~UpdateDialog() override;

    /// Whether the option `updateCheckInterval` wants a check at start. `lastCheck` is the option
    /// `tSysLastUpdateCheck`.
    static bool isCheckDue(int interval, const QString& lastCheck, const QDateTime& now);
    /// One check, whose time is stored. `notifyOnFinish`: the player hears of any outcome, otherwise
    /// only of a newer version and of a network error. Without a feed's address there is no check
    /// and nothing is stored; with `notifyOnFinish` the player is told so.
    static void startCheck(QWidget* parent, bool notifyOnFinish, const QString& feedUrl = FEED_URL);

    void setNotifyOnFinish(bool on);
    void setNotifyOnUpdate(bool on);

public slots:
    void resetFields();
    void checkForUpdates();

private slots:
    void toShowOrNot();
    void updateChangelog(const QString& url);
    void removeThis();
    void on_notifyOnFinish_toggled(bool on);
    void on_notifyOnUpdate_toggled(bool on);
    void on_resetButton_clicked();
    void on_closeButton_clicked();
    void on_checkButton_clicked();

private:
    Updater* updater() const;

    std::unique_ptr<Ui::UpdateDialog> ui;
    const QString mFeedUrl;
};
