#include "update/Updater.h"

#include "update/Downloader.h"
#include "update/UpdateFixture.h"

#include <QSignalSpy>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace {

const QString OFFER = u"<h3>Version 2.1.0 of Brevick Tuning Orlo has been released!</h3>"_s;
const QString LATEST = u"<h3>You are running the latest version of Brevick Tuning Orlo</h3>"_s;
const QString NETWORK = u"<h3>A network error occurred</h3>"_s;

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
    void put(const LoopbackServer::Answer& answer) { server.put(u"/downloads/updates.json"_s, answer); }
    static QString nextHeading() { return nextBox().section(u'|', 0, 0); }
    /// False if the check has no end.
    bool check(const LoopbackServer::Answer& answer)
    {
        put(answer);
        QSignalSpy end(updater.get(), &Updater::checkingFinished);
        updater->checkForUpdates();
        return waitUntil([&end] { return !end.isEmpty(); });
    }
    bool checkFeed(const QByteArray& body) { return check(LoopbackServer::ok(body)); }

    std::unique_ptr<Updater> updater;
};

} // namespace

TEST_F(UpdaterTest, ComparesVersionsByTheirNumbers)
{
    const std::tuple<const char*, const char*, bool> rows[] = {
        {"2.0.0", "2.0", true},    {"2.10", "2.9", true},
        {"3", "2.9.9", true},      {"2", "", true},
        {"2..1", "2.0.0", true},   {"2.99999999999", "2.1", true},
        {"2.0.0", "2.0.0", false}, {"2.0", "2.0.0", false},
        {"1.9.9.9", "2", false},   {"2.0.beta", "2.0.0", false},
    };
    for (const auto& [x, y, newer] : rows)
        EXPECT_EQ(Updater::compare(QLatin1StringView(x), QLatin1StringView(y)), newer) << x << ' ' << y;
}

TEST_F(UpdaterTest, ReadsAnyFeed)
{
    const QByteArray megabyte(1 << 20, 'c');
    const std::tuple<QByteArray, QString, QByteArray> rows[] = {
        // body, box, changelog
        {feed("2.0.0"), LATEST, "new"},
        {feed("soon"), LATEST, "new"},
        {feed("2.1.0", "\"changelog\": \"" + megabyte + '"'), OFFER, megabyte},
        {feed("2.1.0").chopped(1), LATEST, ""},
        {QByteArray(100000, '['), LATEST, ""},
        {R"({"updates": {"osx": {"latest-version": 9, "mandatory-update": 1}}})", LATEST, ""},
        {feed("3.<b>%1%2" + QByteArray(5000, 'x')),
         QString(OFFER).replace(u"2.1.0"_s, u"3.&lt;b&gt;%1%2"_s + QString(31, u'x')), "new"},
    };
    for (const auto& [body, text, changelog] : rows) {
        renew();
        ASSERT_TRUE(checkFeed(body));
        EXPECT_EQ(nextHeading(), text) << body.left(99).toStdString();
        EXPECT_EQ(updater->updateAvailable(), text != LATEST);
        EXPECT_EQ(updater->changelog().toUtf8(), changelog) << body.left(99).toStdString();
        EXPECT_FALSE(updater->mandatoryUpdate()) << body.left(99).toStdString();
    }
    EXPECT_TRUE(server.requests().last().contains("User-Agent: Brevick Tuning Orlo/2.0.0 "));
}

TEST_F(UpdaterTest, FollowsRedirectionsAndKeepsTheAddress)
{
    server.put(u"/moved/feed.json"_s, LoopbackServer::ok(feed("2.1.0")));
    for (int i = 0; i <= web::REDIRECT_LIMIT; ++i) { // which each check has for itself
        updater->setUrl(server.url(u"/downloads/updates.json"_s));
        ASSERT_TRUE(check(LoopbackServer::redirect(u"../moved/feed.json"_s)));
        EXPECT_EQ(updater->url(), server.url(u"/moved/feed.json"_s));
        EXPECT_EQ(nextHeading(), OFFER);
    }

    EXPECT_EQ(web::objection(QUrl(u"http://a/x"_s), QUrl(u"https://b/y"_s)), QString());
    EXPECT_NE(web::objection(QUrl(u"https://a/x"_s), QUrl(u"http://a/x"_s)), QString());
    for (const QString& to : {u"javascript:y"_s, u"http:///y"_s})
        EXPECT_NE(web::objection(QUrl(u"http://a/x"_s), QUrl(to)), QString()) << qPrintable(to);
}

TEST_F(UpdaterTest, EveryWayToFailIsANetworkErrorThatCanBeRetried)
{
    const std::pair<const char*, LoopbackServer::Answer> rows[] = {
        {"cut off", LoopbackServer::cut(feed("2.1.0"), 1000)},
        {"stalled", LoopbackServer::cut(feed("2.1.0"), 1000, true)},
        {"never answered", {"", true}},
        {"in a circle", LoopbackServer::redirect(u"/downloads/updates.json"_s)},
        {"led to a file", LoopbackServer::redirect(u"file:///etc/hostname"_s)},
        {"without end", LoopbackServer::ok(QByteArray(20 << 20, ' '))},
    };
    for (const auto& [name, answer] : rows) {
        renew();
        updater->setTransferTimeout(300);
        updater->setNotifyOnFinish(false); // the other flag is enough
        QSignalSpy errors(updater.get(), &Updater::networkError);
        ASSERT_TRUE(check(answer)) << name;
        EXPECT_EQ(nextHeading(), NETWORK) << name;
        EXPECT_EQ(errors.size(), 1) << name;
    }
    EXPECT_TRUE(log.has(QtWarningMsg, u"The update feed is larger than"_s));

    updater->setTransferTimeout(web::TRANSFER_TIMEOUT_MS);
    put(LoopbackServer::ok(feed("2.0.0")));
    EXPECT_TRUE(press(QMessageBox::Retry));
    // Now the good news is told too.
    EXPECT_TRUE(waitUntil([] { return boxText().startsWith(LATEST); })) << qPrintable(boxText());
}

TEST_F(UpdaterTest, ACheckThatIsOvertakenOrDeletedSaysNothing)
{
    for (const qsizetype number : {1, 2}) {
        renew(); // ends the first one's updater
        put(LoopbackServer::cut("{", 1000, true));
        updater->checkForUpdates();
        ASSERT_TRUE(waitUntil([&] { return server.requests().size() == number; }));
    }
    QSignalSpy errors(updater.get(), &Updater::networkError);
    ASSERT_TRUE(checkFeed(feed("2.1.0")));
    ASSERT_TRUE(checkFeed(feed("2.0.0"))); // while the offer stands
    EXPECT_EQ(nextHeading(), LATEST);
    EXPECT_TRUE(errors.isEmpty());

    updater.reset();
    EXPECT_EQ(box(), nullptr);
}

TEST_F(UpdaterTest, YesOpensOnlyAddressesOfTheWeb)
{
    const QString noPage = u"<h3>The update's page cannot be opened</h3>"_s;
    const QString noFile = u"<h3>The update could not be downloaded</h3>"_s;
    const QString safe = u"https://x/updates.json"_s;
    const std::tuple<const char*, bool, QString, QString, QString> rows[] = {
        // keys, downloader enabled, the feed's address if it is another, opened, box
        {R"("open-url": "https://x/page", "download-url": "http://x/f")", true, QString(),
         u"https://x/page"_s, QString()},
        {R"("open-url": "", "download-url": "http://x/f")", false, QString(), u"http://x/f"_s, QString()},
        {R"("open-url": "https://x/page")", true, safe, u"https://x/page"_s, QString()},
        {R"("open-url": "http://x/page")", true, safe, QString(), noPage},
        {R"("download-url": "http://x/f")", false, safe, QString(), noPage},
        {R"("download-url": "http://x/f")", true, safe, QString(), noFile},
        {R"("open-url": "file:///etc/passwd")", true, QString(), QString(), noPage},
        {R"("download-url": "javascript:alert")", false, QString(), QString(), noPage},
        {R"("download-url": "file:///etc/passwd")", true, QString(), QString(), noFile},
    };
    for (const auto& [keys, downloaderEnabled, address, opens, text] : rows) {
        renew();
        updater->setDownloaderEnabled(downloaderEnabled);
        ASSERT_TRUE(checkFeed(feed("2.1.0", keys)));
        nextBox();
        if (!address.isEmpty())
            updater->setUrl(address);
        EXPECT_TRUE(press(QMessageBox::Yes));
        EXPECT_EQ(opened.take().join(u' '), opens) << keys;
        EXPECT_EQ(boxText().section(u'|', 0, 0), text) << keys;
        EXPECT_EQ(boxText().contains(u"only http"_s), !address.isEmpty() && !text.isEmpty()) << keys;
    }
}

TEST_F(UpdaterTest, NoEndsTheProgramOnlyIfTheUpdateIsMandatory)
{
    ASSERT_TRUE(checkFeed(feed("2.1.0", R"("mandatory-update": true)")));
    EXPECT_TRUE(nextBox().endsWith(u"will close the application"_s));
    ASSERT_TRUE(checkFeed(feed("2.1.0"))); // says nothing of it, so the flag stays
    EXPECT_TRUE(updater->mandatoryUpdate());
    EXPECT_TRUE(endsBy([] { box()->close(); })); // as No
    ASSERT_TRUE(checkFeed(feed("2.1.0", R"("mandatory-update": false)")));
    EXPECT_EQ(nextHeading(), OFFER);
    QSignalSpy quits(qApp, &QCoreApplication::aboutToQuit);
    EXPECT_TRUE(press(QMessageBox::No));
    QCoreApplication::processEvents();
    EXPECT_TRUE(quits.isEmpty());
}
