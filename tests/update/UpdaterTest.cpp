#include "update/Updater.h"

#include "update/Downloader.h"
#include "update/UpdateFixture.h"

#include <QDialogButtonBox>
#include <QNetworkRequest>
#include <QPushButton>
#include <QSignalSpy>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace {

const QString OFFER =
    u"<h3>Version 2.1.0 of Brevick Tuning Orlo has been released!</h3>|Please note the changelog. "
    "Would you like to download the update now?"_s;
const QString LATEST =
    u"<h3>You are running the latest version of Brevick Tuning Orlo</h3>|No updates are available "
    "for the moment"_s;
const QString NETWORK =
    u"<h3>A network error occurred</h3>|Cannot check for updates. Please check your internet "
    "connection and retry."_s;

QByteArray feed(const QByteArray& version, const QByteArray& more = "\"changelog\": \"new\"")
{
    return R"({"updates": {"osx": {"latest-version": ")" + version + "\", " + more + "}}}";
}

class UpdaterTest : public UpdateFixture
{
protected:
    UpdaterTest() { renew(); }

    void renew()
    {
        updater = std::make_unique<Updater>();
        updater->setUrl(server.url(u"/downloads/updates.json"_s));
        updater->setNotifyOnFinish(true);
        updater->downloader()->setDownloadDir(downloads);
    }
    void put(const QByteArray& answer, bool leaveOpen = false)
    {
        server.put(u"/downloads/updates.json"_s, answer, leaveOpen);
    }
    /// False if the check has no end.
    bool check()
    {
        QSignalSpy end(updater.get(), &Updater::checkingFinished);
        updater->checkForUpdates();
        return soon([&end] { return !end.isEmpty(); });
    }
    bool checkFeed(const QByteArray& body)
    {
        put(LoopbackServer::ok(body));
        return check();
    }

    std::unique_ptr<Updater> updater;
};

} // namespace

TEST_F(UpdaterTest, ComparesVersionsByTheirNumbers)
{
    const struct
    {
        const char* x;
        const char* y;
        bool newer;
    } rows[] = {
        {"2.0.1", "2.0.0", true},
        {"2.0.0", "2.0.1", false},
        {"2.0.0", "2.0.0", false},
        {"2.0.0", "2.0", true},
        {"2.0", "2.0.0", false},
        {"2.10", "2.9", true},
        {"3", "2.9.9", true},
        {"1.9.9.9", "2", false},
        {"2.x", "2.0", false},
        {"2.x", "2.-1", true},
        {"2.0.beta", "2.0.0", false},
        {"", "2", false},
        {"2", "", true},
        {"", "", false},
        {"2..1", "2.0.0", true},
        {"2.99999999999", "2.1", true}, // beyond 32 bits
    };
    for (const auto& row : rows)
        EXPECT_EQ(Updater::compare(QLatin1StringView(row.x), QLatin1StringView(row.y)), row.newer)
            << row.x << " " << row.y;
}

TEST_F(UpdaterTest, ReadsAnyFeed)
{
    const QByteArray megabyte(1 << 20, 'c');
    const struct
    {
        const char* name;
        QByteArray body;
        bool available;
        QString box;
        QByteArray changelog;
    } rows[] = {
        {"newer", feed("2.1.0"), true, OFFER, "new"},
        {"equal", feed("2.0.0"), false, LATEST, "new"},
        {"older", feed("1.9.9"), false, LATEST, "new"},
        {"unreadable", feed("soon"), false, LATEST, "new"},
        {"a megabyte", feed("2.1.0", "\"changelog\": \"" + megabyte + '"'), true, OFFER, megabyte},
        {"not JSON", "<html>Welcome</html>", false, LATEST, ""},
        {"nothing", "", false, LATEST, ""},
        {"cut off", feed("2.1.0").chopped(1), false, LATEST, ""},
        {"nested without end", QByteArray(100000, '['), false, LATEST, ""},
        {"a list", "[1, 2]", false, LATEST, ""},
        {"no platform", R"({"updates": {"other": {"latest-version": "9"}}})", false, LATEST, ""},
        {"other types",
         R"({"updates": {"osx": {"latest-version": 9, "changelog": [], "mandatory-update": 1}}})", false,
         LATEST, ""},
        {"markup", feed("3.<img src='http://x/'>%1%2" + QByteArray(5000, 'x'), "\"changelog\": \"\""), true,
         u"<h3>Version 3.&lt;img src='http://x/'&gt;%1%2xxxxxxxxxxxxx of Brevick Tuning Orlo has been released!</h3>|"_s
             + OFFER.section(u'|', 1),
         ""},
    };
    for (const auto& row : rows) {
        renew();
        ASSERT_TRUE(checkFeed(row.body)) << row.name;
        EXPECT_EQ(updater->updateAvailable(), row.available) << row.name;
        EXPECT_EQ(nextBox(), row.box) << row.name;
        EXPECT_EQ(updater->changelog().toUtf8(), row.changelog) << row.name;
        EXPECT_FALSE(updater->hasNetworkError() || updater->mandatoryUpdate()) << row.name;
    }
    EXPECT_TRUE(
        server.requests().last().contains("User-Agent: Brevick Tuning Orlo/2.0.0 (Qt; QSimpleUpdater)"));
}

TEST_F(UpdaterTest, FollowsRedirectionsAndKeepsTheAddress)
{
    put(LoopbackServer::redirect(u"../moved/feed.json"_s));
    server.put(u"/moved/feed.json"_s, LoopbackServer::ok(feed("2.1.0")));
    ASSERT_TRUE(check());
    EXPECT_EQ(updater->url(), server.url(u"/moved/feed.json"_s));
    EXPECT_EQ(nextBox(), OFFER);

    const struct
    {
        const char* from;
        const char* to;
        bool followed;
    } rows[] = {
        {"http://a/x", "https://b/y", true},
        {"https://a/x", "https://b/y", true},
        {"http://a/x", "http://b/y", true},
        {"https://a/x", "http://a/x", false},
        {"http://a/x", "file:///etc/passwd", false},
        {"http://a/x", "javascript:alert(1)", false},
        {"http://a/x", "/y", false},
        {"http://a/x", "http:///y", false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(web::mayRedirect(QUrl(QLatin1StringView(row.from)), QUrl(QLatin1StringView(row.to))),
                  row.followed)
            << row.to;
}

TEST_F(UpdaterTest, EveryWayToFailIsANetworkErrorThatCanBeRetried)
{
    const struct
    {
        const char* name;
        QByteArray answer;
        bool leaveOpen;
    } rows[] = {
        {"404", LoopbackServer::notFound(), false},
        {"cut off", LoopbackServer::cut(feed("2.1.0"), 1000), false},
        {"closed at once", "", false},
        {"stalled", LoopbackServer::cut(feed("2.1.0"), 1000), true},
        {"never answered", "", true},
        {"in a circle", LoopbackServer::redirect(u"/downloads/updates.json"_s), false},
        {"led to a file", LoopbackServer::redirect(u"file:///etc/hostname"_s), false},
        {"without end", LoopbackServer::ok(QByteArray(20 << 20, ' ')), false},
    };
    for (const auto& row : rows) {
        renew();
        updater->setTransferTimeout(300);
        updater->setNotifyOnFinish(false); // the other flag is enough
        QSignalSpy errors(updater.get(), &Updater::networkError);
        put(row.answer, row.leaveOpen);
        ASSERT_TRUE(check()) << row.name;
        EXPECT_EQ(nextBox(), NETWORK) << row.name;
        EXPECT_EQ(errors.size(), 1) << row.name;
        EXPECT_EQ(errors.value(0).value(1), true) << row.name;
    }
    EXPECT_TRUE(log.has(QtWarningMsg, u"The update feed is larger than"_s));

    updater->setTransferTimeout(web::TRANSFER_TIMEOUT_MS);
    put(LoopbackServer::ok(feed("2.0.0")));
    EXPECT_TRUE(press(QMessageBox::Retry));
    // Now the good news is told too.
    EXPECT_TRUE(soon([] { return boxText() == LATEST; })) << qPrintable(boxText());

    updater->setNotifyOnFinish(false);
    updater->setNotifyOnUpdate(false);
    put(LoopbackServer::notFound());
    ASSERT_TRUE(check());
    QCoreApplication::processEvents();
    EXPECT_TRUE(updater->hasNetworkError());
    EXPECT_EQ(boxText(), LATEST); // the old one; nothing new was wanted
}

TEST_F(UpdaterTest, ACheckThatIsOvertakenSaysNothing)
{
    put(LoopbackServer::cut("{", 1000), true);
    updater->checkForUpdates();
    ASSERT_TRUE(soon([this] { return server.requests().size() == 1; }));
    QSignalSpy errors(updater.get(), &Updater::networkError);
    ASSERT_TRUE(checkFeed(feed("2.1.0")));
    EXPECT_EQ(nextBox(), OFFER);
    ASSERT_TRUE(checkFeed(feed("2.0.0"))); // while the offer stands
    EXPECT_EQ(nextBox(), LATEST);
    EXPECT_TRUE(errors.isEmpty());
}

TEST_F(UpdaterTest, HandsTheFeedOnUnread)
{
    updater->setCustomAppcast(true);
    QSignalSpy cast(updater.get(), &Updater::appcastDownloaded);
    ASSERT_TRUE(checkFeed("<rss/>"));
    EXPECT_EQ(cast.value(0).value(0), updater->url());
    EXPECT_EQ(cast.value(0).value(1), QByteArray("<rss/>"));
    EXPECT_EQ(box(), nullptr);
}

TEST_F(UpdaterTest, YesOpensOnlyAddressesOfTheWeb)
{
    const QString refused =
        u"<h3>The update's page cannot be opened</h3>|The address that the server gave is not one "
        "of the web."_s;
    const struct
    {
        const char* keys;
        bool downloaderEnabled;
        QStringList opened;
        QString box;
    } rows[] = {
        {R"("open-url": "https://x/page", "download-url": "http://x/f")",
         true,
         {u"https://x/page"_s},
         QString()},
        {R"("open-url": "", "download-url": "http://x/f")", false, {u"http://x/f"_s}, QString()},
        {R"("open-url": "file:///etc/passwd")", true, {}, refused},
        {R"("open-url": "javascript:alert")", true, {}, refused},
        {R"("open-url": "page.html")", true, {}, refused},
        {R"("download-url": "ftp://x/f")", false, {}, refused},
        {R"("download-url": "file:///etc/passwd")",
         true,
         {},
         u"<h3>The update could not be downloaded</h3>|The address that the server gave is not one of the web."_s},
    };
    for (const auto& row : rows) {
        renew();
        updater->setDownloaderEnabled(row.downloaderEnabled);
        QSignalSpy removed(updater.get(), &Updater::removeUpdateDialog);
        ASSERT_TRUE(checkFeed(feed("2.1.0", row.keys)));
        EXPECT_EQ(nextBox(), OFFER);
        EXPECT_TRUE(press(QMessageBox::Yes));
        EXPECT_EQ(removed.size(), 1) << row.keys;
        EXPECT_EQ(opened.take(), row.opened) << row.keys;
        EXPECT_EQ(boxText(), row.box) << row.keys;
    }
}

TEST_F(UpdaterTest, NoEndsTheProgramOnlyIfTheUpdateIsMandatory)
{
    ASSERT_TRUE(checkFeed(feed("2.1.0", R"("mandatory-update": true)")));
    EXPECT_TRUE(
        nextBox().endsWith(u"|Would you like to download the update now? This is a mandatory update, exiting "
                           "now will close the application"_s));
    ASSERT_TRUE(checkFeed(feed("2.1.0"))); // says nothing of it, so the flag stays
    EXPECT_TRUE(updater->mandatoryUpdate());
    QSignalSpy removed(updater.get(), &Updater::removeUpdateDialog);
    EXPECT_TRUE(endsBy([] { box()->close(); })); // as No
    EXPECT_EQ(removed.size(), 1);

    ASSERT_TRUE(checkFeed(feed("2.1.0", R"("mandatory-update": false)")));
    EXPECT_EQ(nextBox(), OFFER);
    EXPECT_EQ(box()->defaultButton(), box()->button(QMessageBox::Yes));
    QSignalSpy quits(qApp, &QCoreApplication::aboutToQuit);
    EXPECT_TRUE(press(QMessageBox::No));
    QCoreApplication::processEvents();
    EXPECT_TRUE(quits.isEmpty());
    EXPECT_EQ(removed.size(), 2);
}

TEST_F(UpdaterTest, EndsInTheMiddleOfACheckAndUnderAnOpenBox)
{
    put(LoopbackServer::cut("{", 1000), true);
    updater->checkForUpdates();
    ASSERT_TRUE(soon([this] { return server.requests().size() == 1; }));
    renew();
    ASSERT_TRUE(checkFeed(feed("2.1.0")));
    EXPECT_EQ(nextBox(), OFFER);
    updater.reset();
    EXPECT_EQ(box(), nullptr);
}
