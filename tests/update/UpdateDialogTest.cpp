#include "update/UpdateDialog.h"

#include "app/Accessors.h"
#include "app/Settings.h"
#include "support/LocaleTest.h"
#include "update/QSimpleUpdater.h"
#include "update/UpdateFixture.h"

#include <QCheckBox>
#include <QDateTime>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace {

using UpdateIntervalTest = LocaleTest;

class UpdateDialogTest : public UpdateFixture
{
protected:
    UpdateDialogTest()
    {
        app::setParts({.settings = &settings});
        owner.show();
    }
    ~UpdateDialogTest() override { app::setParts({}); }

    LoopbackServer::Answer feed(const QByteArray& version) const
    {
        return LoopbackServer::ok(R"({"updates": {"osx": {"latest-version": ")" + version
                                  + R"(", "changelog": "<b>All</b> new", "download-url": ")"
                                  + server.url(u"/files/new.dmg"_s).toUtf8() + R"("}}})");
    }
    QList<UpdateDialog*> dialogs() const { return owner.findChildren<UpdateDialog*>(); }
    UpdateDialog* startCheck(bool notifyOnFinish)
    {
        UpdateDialog::startCheck(&owner, notifyOnFinish, url);
        return dialogs().last();
    }

    Settings settings;
    QWidget owner;
    const QString url = server.url(u"/updates.json"_s);
};

} // namespace

TEST_F(UpdateIntervalTest, ChecksWhenTheIntervalHasPassed)
{
    const QDateTime now(QDate(2026, 3, 31), QTime(12, 0));
    const auto ago = [&now](qint64 seconds) { return now.addSecs(-seconds).toString(Qt::TextDate); };
    const auto on = [](int year, int month, int day, int hour) {
        return QDateTime(QDate(year, month, day), QTime(hour, 0)).toString(Qt::TextDate);
    };
    const std::tuple<int, QString, QString> rows[] = {
        // interval, a time that is long enough ago, and one that is not
        {1, on(2026, 3, 24, 11), u"Tue Mar 24 12:00:00 2026"_s},
        {2, on(2026, 2, 28, 11), on(2026, 3, 1, 11)},
        {3, on(2025, 12, 31, 11), on(2025, 12, 31, 13)},
        {5, ago(301), ago(300)},
    };
    for (const auto& [interval, due, early] : rows) {
        EXPECT_TRUE(UpdateDialog::isCheckDue(interval, due, now)) << interval;
        EXPECT_FALSE(UpdateDialog::isCheckDue(interval, early, now)) << interval;
    }
    EXPECT_TRUE(UpdateDialog::isCheckDue(0, ago(0), now));
    for (const int never : {4, 6})
        EXPECT_FALSE(UpdateDialog::isCheckDue(never, QString(), now));
    // Unreadable, or ahead of the clock by more than a change of zones: as if never.
    for (const QString& wrong : {QString(), u"no date"_s, u"2026-03-30T12:00:00"_s, on(2090, 1, 1, 0)})
        EXPECT_TRUE(UpdateDialog::isCheckDue(3, wrong, now)) << qPrintable(wrong);
    EXPECT_FALSE(UpdateDialog::isCheckDue(1, on(2026, 4, 1, 12), now));
}

TEST_F(UpdateDialogTest, WithoutAnAddressOnlyThePlayerWhoAsksIsTold)
{
    UpdateDialog::startCheck(&owner, false, QString());
    EXPECT_EQ(box(), nullptr);
    UpdateDialog::startCheck(&owner, true, QString());
    UpdateDialog::startCheck(&owner, true, QString());
    EXPECT_NE(box(), nullptr);
    EXPECT_EQ(settings.tSysLastUpdateCheck, QString());
}

TEST_F(UpdateDialogTest, ShowsItselfForANewerVersionAndGoesWithTheAnswer)
{
    server.put(u"/moved"_s, feed("2.1.0"));
    server.put(u"/updates.json"_s, LoopbackServer::redirect(u"/moved"_s));
    const UpdateDialog* dialog = startCheck(false);
    const QPointer<const UpdateDialog> alive = dialog;
    EXPECT_FALSE(UpdateDialog::isCheckDue(5, settings.tSysLastUpdateCheck, QDateTime::currentDateTime()));
    EXPECT_FALSE(dialog->isVisible());
    nextBox();
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(dialog->findChild<QPlainTextEdit*>(u"changelogText"_s)->toPlainText(), u"<b>All</b> new"_s);

    server.put(u"/files/new.dmg"_s, LoopbackServer::ok("file"));
    QSimpleUpdater::getInstance()->setDownloadDir(url, downloads);
    EXPECT_TRUE(press(QMessageBox::Yes));
    EXPECT_TRUE(waitUntil([&] { return alive.isNull() && content(u"new.dmg"_s) == "file"; }));
}

TEST_F(UpdateDialogTest, StaysHiddenForOldNewsUntilTheNextCheck)
{
    server.put(u"/updates.json"_s, feed("2.0.0"));
    const QPointer<const UpdateDialog> silent = startCheck(false);
    ASSERT_TRUE(waitUntil([this] { return !QSimpleUpdater::getInstance()->changelog(url).isEmpty(); }));
    EXPECT_EQ(box(), nullptr);
    const QPointer<const UpdateDialog> asked = startCheck(true);
    nextBox();
    EXPECT_TRUE(waitUntil([&silent] { return silent.isNull(); }));
    EXPECT_FALSE(dialogs().first()->isVisible());
    EXPECT_TRUE(press(QMessageBox::Close));
    EXPECT_TRUE(waitUntil([&asked] { return asked.isNull(); }));

    // A parent that goes takes the dialog along; the updater goes on alone.
    server.put(u"/updates.json"_s, feed("2.1.0"));
    auto options = std::make_unique<QWidget>();
    UpdateDialog::startCheck(options.get(), true, url);
    options.reset();
    nextBox();
    EXPECT_TRUE(press(QMessageBox::No));

    // That news is old when the next check fails.
    server.put(u"/updates.json"_s, LoopbackServer::notFound());
    startCheck(false);
    EXPECT_TRUE(nextBox().startsWith(u"<h3>A network error occurred"_s));
    EXPECT_FALSE(dialogs().first()->isVisible());

    // The process ends in the middle of the last one.
    server.put(u"/updates.json"_s, LoopbackServer::cut("{", 1000, true));
    const qsizetype before = server.requests().size();
    startCheck(true);
    EXPECT_TRUE(waitUntil([&] { return server.requests().size() > before; }));
    checkLeftOpen = true;
}

TEST_F(UpdateDialogTest, ChecksForTheVersionInItsField)
{
    server.put(u"/updates.json"_s, feed("2.1.0"));
    QSimpleUpdater* all = QSimpleUpdater::getInstance();
    UpdateDialog dialog(nullptr, url);
    dialog.setAttribute(Qt::WA_DeleteOnClose, false);
    auto* version = dialog.findChild<QLineEdit*>(u"installedVersion"_s);
    auto* onFinish = dialog.findChild<QCheckBox*>(u"notifyOnFinish"_s);
    version->setText(u"3.0"_s);
    onFinish->click();
    all->setCustomAppcast(url, true);
    dialog.findChild<QPushButton*>(u"checkButton"_s)->click();
    EXPECT_TRUE(nextBox().startsWith(u"<h3>You are running the latest version"_s));

    dialog.findChild<QPushButton*>(u"resetButton"_s)->click();
    EXPECT_EQ(version->text(), u"2.0.0"_s);
    EXPECT_FALSE(onFinish->isChecked() || all->notifyOnFinish(url));
}
