#include "update/Downloader.h"

#include "support/FullDisk.h"
#include "update/UpdateFixture.h"

#include <QFile>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace {

const QString FAILED = u"<h3>The update could not be downloaded</h3>|"_s;
const QString INSTALL = u"<h3>In order to use the new version"_s;

/// Bytes that differ from their neighbours, so that no piece can be lost or come twice unseen.
QByteArray pattern(qsizetype size)
{
    QByteArray bytes(size, '\0');
    for (qsizetype i = 0; i < size; ++i)
        bytes[i] = static_cast<char>(i * 31 + i / 251);
    return bytes;
}

class DownloaderTest : public UpdateFixture
{
protected:
    DownloaderTest()
    {
        downloader->setDownloadDir(downloads);
        downloader->setFileName(u"new.dmg"_s);
    }
    void start(const LoopbackServer::Answer& answer)
    {
        server.put(u"/new.dmg"_s, answer);
        downloader->startDownload(QUrl(server.url(u"/new.dmg"_s)));
    }
    /// One that never ends, with its first bytes on the disk.
    bool startEndless()
    {
        start(LoopbackServer::cut("begun", 1000, true));
        return waitUntil([this] { return content(u"new.dmg.part"_s) == "begun"; });
    }
    template <class Widget>
    Widget* find(const char* name) const
    {
        return downloader->findChild<Widget*>(QLatin1StringView(name));
    }

    std::unique_ptr<Downloader> downloader = std::make_unique<Downloader>();
};

} // namespace

TEST_F(DownloaderTest, BringsTheWholeFileAndAsksWhetherToOpenIt)
{
    const QByteArray file = pattern(5000000);
    const LoopbackServer::Answer answers[] = {LoopbackServer::ok(file), LoopbackServer::withoutLength(file),
                                              LoopbackServer::redirect(u"/elsewhere/x"_s)};
    server.put(u"/elsewhere/x"_s, LoopbackServer::ok(file));
    const QString path = downloads + u"new.dmg"_s;
    for (const auto& answer : answers) {
        QSignalSpy done(downloader.get(), &Downloader::downloadFinished);
        QFile::remove(path);
        start(answer);
        EXPECT_TRUE(nextBox().startsWith(INSTALL));
        EXPECT_EQ(content(u"new.dmg"_s), file);
        EXPECT_EQ(downloaded(), QStringList(u"new.dmg"_s));
        EXPECT_EQ(done.size(), 1);
        EXPECT_TRUE(press(QMessageBox::Ok));
        EXPECT_EQ(opened.take(), QStringList(u"file://"_s + path));
        EXPECT_FALSE(downloader->isVisible());
    }

    QFile::remove(path);
    start(answers[0]);
    nextBox();
    EXPECT_TRUE(press(QMessageBox::Cancel));
    EXPECT_FALSE(downloader->isVisible());
    ASSERT_TRUE(find<QPushButton>("openButton")->isEnabled());
    find<QPushButton>("openButton")->click();
    EXPECT_EQ(opened.take().size(), 1);
    QFile::remove(path);
    find<QPushButton>("openButton")->click();
    EXPECT_EQ(boxText(), u"Cannot find downloaded update!|"_s);

    downloader->setUseCustomInstallProcedures(true);
    server.put(u"/elsewhere/x"_s, LoopbackServer::ok("small"));
    for (int i = 0; i <= web::REDIRECT_LIMIT; ++i) { // which each download has for itself
        start(answers[2]);
        EXPECT_TRUE(waitUntil([&] { return content(DownloadFile::numbered(u"new.dmg"_s, i)) == "small"; }));
        EXPECT_EQ(box(), nullptr);
    }
}

TEST_F(DownloaderTest, WhatIsNotWholeIsNeitherKeptNorOffered)
{
    const QByteArray file = pattern(100000);
    const QString interrupted = u"The connection was interrupted."_s;
    const QString notFollowed = u"The server sends on to an address that is not followed."_s;
    const std::pair<LoopbackServer::Answer, QString> rows[] = {
        {LoopbackServer::cut(file, 100001), interrupted},
        {LoopbackServer::cut(file, 100001, true), interrupted},
        {{"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n8\r\nfour"}, interrupted},
        {{"HTTP/1.1 200 OK\r\nContent-Length: 9\r\nTransfer-Encoding: chunked\r\n\r\n4\r\nfour\r\n0\r\n\r\n"},
         interrupted}, // whole in itself, but shorter than promised
        {LoopbackServer::notFound(), u"The server answered with the code 404."_s},
        {LoopbackServer::ok(""), u"The server sent an empty file."_s},
        {LoopbackServer::redirect(u"/new.dmg"_s), notFollowed},
        {LoopbackServer::redirect(u"file:///etc/hostname"_s), notFollowed},
    };
    for (const auto& [answer, reason] : rows) {
        downloader->setTransferTimeout(300);
        start(answer);
        EXPECT_EQ(nextBox(), FAILED + reason) << answer.bytes.left(99).toStdString();
        EXPECT_EQ(downloaded(), QStringList());
        EXPECT_FALSE(downloader->isVisible());
    }
}

TEST_F(DownloaderTest, NoNameLeadsOutOfTheFolder)
{
    const QString outside = root.filePath(u"sub/outside"_s);
    QDir().mkpath(downloads);
    QFile file(outside);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write("mine") == 4);
    file.close();
    QStringList hostile =
        u". .. ../outside a/../../outside ..%2foutside ..\\x .hidden %2ehidden c:x a\nb a\u202Egpj"_s.split(
            u' ');
    hostile << QString() << outside << QString(241, u'x') << QString(u'\0') + u"x"_s << u"a\u2028b"_s;
    for (const QString& name : hostile) {
        downloader->setFileName(name);
        start(LoopbackServer::ok("theirs"));
        EXPECT_TRUE(boxText().endsWith(u" has no usable file name."_s)) << qPrintable(name);
    }
    EXPECT_TRUE(server.requests().isEmpty());
    EXPECT_TRUE(Downloader::isSafeFileName(u"Brevick%20Tuning Orlo 2..1.dmg"_s));

    EXPECT_EQ(content(u"../outside"_s), "mine");
}

TEST_F(DownloaderTest, WhatIsThereAlreadyIsNeverTouched)
{
    const QString outside = root.filePath(u"sub/outside"_s);
    const QString mine[] = {u"../outside"_s, u"new.dmg"_s, u"new.dmg.part"_s};
    QDir().mkpath(downloads + u"new (2).dmg"_s);
    for (const QString& name : mine) {
        QFile file(downloads + name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write("mine") == 4);
    }
    ASSERT_TRUE(QFile::link(outside, downloads + u"new (1).dmg"_s));
    ASSERT_TRUE(QFile::link(u"/nonexistent/x"_s, downloads + u"new (1).dmg.part"_s));
    QStringList expected = downloaded() + QStringList(u"new (3).dmg"_s);
    QSignalSpy done(downloader.get(), &Downloader::downloadFinished);
    for (const auto& answer : {LoopbackServer::ok("theirs"), LoopbackServer::notFound()}) {
        start(answer);
        const QString told = nextBox();
        EXPECT_EQ(told.startsWith(FAILED), done.isEmpty());
        done.clear();
    }
    QStringList now = downloaded();
    now.sort();
    expected.sort();
    EXPECT_EQ(now, expected);
    EXPECT_EQ(content(u"new (3).dmg"_s), "theirs");
    for (const QString& name : mine)
        EXPECT_EQ(content(name), "mine") << qPrintable(name);

    const std::pair<QString, QString> rows[] = {
        {u"a"_s, u"a (2)"_s}, {u"a-2.1.0.zip"_s, u"a-2.1.0 (2).zip"_s}, {u"a.tar.xz"_s, u"a (2).tar.xz"_s}};
    for (const auto& [name, second] : rows)
        EXPECT_EQ(DownloadFile::numbered(name, 2), second);
}

TEST_F(DownloaderTest, TellsWhatCannotBeWritten)
{
    const QString part = QDir(downloads).filePath(u"new.dmg.part"_s);
    const QString cannot = FAILED + u"&quot;%1&quot; cannot be written: %2."_s;
    {
        const FullDisk full(4096);
        // The rest does not have to come.
        start(LoopbackServer::cut(pattern(100000), 100001, true));
        EXPECT_EQ(nextBox(), cannot.arg(part, u"File too large"_s));
    }
    EXPECT_EQ(downloaded(), QStringList());
    downloader->setDownloadDir(u"/proc/self"_s); // where nobody writes, root neither
    start(LoopbackServer::ok("x"));
    EXPECT_TRUE(nextBox().startsWith(cannot.section(u'%', 0, 0) + u"/proc/self/new.dmg.part"_s))
        << qPrintable(boxText());
}

TEST_F(DownloaderTest, WhatTheDesktopWouldRunIsKeptButNotOpened)
{
    const std::tuple<QString, QByteArray, bool> rows[] = {
        // name, content, whether it is opened
        {u"a.dmg"_s, "x", true},      {u"a.sh.zip"_s, "PK", true},      {u"a-2.1.0"_s, "a text", true},
        {u"a.desktop"_s, "x", false}, {u"a.tar.SH"_s, "x", false},      {u"a.AppImage"_s, "x", false},
        {u"a.exe. "_s, "x", false},   {u"a-2"_s, "#!/bin/sh\n", false}, {u"a"_s, "\177ELF\2\1\1", false},
        {u"a.xht"_s, "x", false},     {u"a.inetloc"_s, "x", false},     {u"a-3"_s, "<?php x", false},
    };
    for (const auto& [name, bytes, isOpened] : rows) {
        downloader->setFileName(name);
        start(LoopbackServer::ok(bytes));
        EXPECT_TRUE(nextBox().startsWith(INSTALL));
        EXPECT_EQ(boxText().contains(u"It lies at &quot;"_s + downloads + name), !isOpened);
        EXPECT_TRUE(press(isOpened ? QMessageBox::Ok : QMessageBox::Close)) << qPrintable(name);
        EXPECT_FALSE(downloader->isVisible());
        downloader->openDownload();
        EXPECT_EQ(opened.take().size(), isOpened ? 2 : 0) << qPrintable(name);
        EXPECT_EQ(content(name), bytes);
        EXPECT_FALSE(QFile::permissions(downloads + name).testFlag(QFile::ExeOwner));
    }
}

TEST_F(DownloaderTest, CancelsOnlyWhenAskedTwice)
{
    auto* stop = find<QPushButton>("stopButton");
    ASSERT_TRUE(startEndless());
    stop->click();
    stop->click();
    EXPECT_TRUE(press(QMessageBox::No));
    EXPECT_EQ(content(u"new.dmg.part"_s), "begun");
    stop->click();
    EXPECT_TRUE(press(QMessageBox::Yes));
    EXPECT_FALSE(downloader->isVisible());
    EXPECT_EQ(downloaded(), QStringList());
    EXPECT_EQ(box(), nullptr); // and that is no failure to tell of

    // The question goes when the download is done meanwhile.
    start(LoopbackServer::ok("x"));
    stop->click();
    EXPECT_TRUE(waitUntil([] { return boxText().startsWith(INSTALL); })) << qPrintable(boxText());
}

TEST_F(DownloaderTest, AMandatoryUpdateEndsTheProgramInsteadOfBeingLeftOut)
{
    downloader->setMandatoryUpdate(true);
    ASSERT_TRUE(startEndless());
    EXPECT_TRUE(endsBy([this] {
        downloader->cancelDownload();
        EXPECT_TRUE(boxText().contains(u"will close the application"_s));
        press(QMessageBox::Yes);
    }));
    EXPECT_EQ(downloaded(), QStringList());

    start(LoopbackServer::ok("x"));
    EXPECT_TRUE(nextBox().contains(u"will close the application"_s));
    EXPECT_TRUE(endsBy([] { press(QMessageBox::Cancel); }));
}

TEST_F(DownloaderTest, TheProgramEndsInTheMiddle)
{
    ASSERT_TRUE(startEndless());
    downloader->cancelDownload();
    QWidget mainWindow;
    mainWindow.show();
    // Neither window keeps the program running.
    EXPECT_TRUE(endsBy([&mainWindow] { mainWindow.close(); }));
    EXPECT_EQ(downloaded(), QStringList());
    EXPECT_EQ(box(), nullptr);
    EXPECT_FALSE(downloader->isVisible());

    ASSERT_TRUE(startEndless());
    downloader.reset();
    EXPECT_EQ(downloaded(), QStringList());
}

TEST_F(DownloaderTest, TellsSizesAndTheTimeThatRemains)
{
    EXPECT_EQ(Downloader::remainingText(90), u"2 minutes"_s);
    EXPECT_EQ(Downloader::remainingText(9000), u"about 3 hours"_s);
    // Two tenths come; the rest would take four times as long as they took in whole seconds.
    start(LoopbackServer::cut(QByteArray(1024, 'x'), 10240, true));
    EXPECT_TRUE(waitUntil([this] { return content(u"new.dmg.part"_s).size() == 1024; }));
    QTest::qWait(1100);
    server.sendMore(QByteArray(1024, 'x'));
    EXPECT_TRUE(waitUntil([this] { return find<QProgressBar>("progressBar")->value() == 20; }));
    EXPECT_EQ(find<QLabel>("downloadLabel")->text(), u"Downloading updates (2 KB of 10 KB)"_s);
    const QString time = find<QLabel>("timeLabel")->text();
    EXPECT_TRUE(time.contains(u" 4 s"_s) || time.contains(u" 8 s"_s)) << qPrintable(time);
}
