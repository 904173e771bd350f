#include "app/ProgramFixture.h"

#include "app/Accessors.h"
#include "support/FullDisk.h"
#include "support/Waiting.h"

using namespace Qt::StringLiterals;

namespace {

class Saving : public ProgramFixture
{
protected:
    /// Keeps what stands below the text too.
    void answer(QMessageBox& box) override
    {
        details = box.informativeText();
        box.accept();
    }
    /// What the boxes say that the program does not wait for.
    QStringList told() const
    {
        QCoreApplication::processEvents();
        QStringList texts;
        for (const QMessageBox* box : application.mainWindow()->findChildren<QMessageBox*>())
            texts.append(box->text());
        return texts;
    }
    QStringList copies() const
    {
        return home.configDir().entryList({u"*.bad-*"_s}, QDir::Files | QDir::Hidden, QDir::Name);
    }
    bool savesPort(int port, int limitMs = 15000) const
    {
        return waitUntil(
            [&] {
                const QJsonDocument options = QJsonDocument::fromJson(home.read(u"options.json"_s));
                return options[u"udpPort"_s].toInt() == port;
            },
            limitMs);
    }

    QString details;
};

} // namespace

TEST_F(Saving, AChangeIsOnTheDiskSoonAndWhatCouldNotBeReadLiesBeside)
{
    const QByteArray chords = "1/1 0\n27512614111/268435456 5/4 0\n"; // 31^7 over 2^28
    const QByteArray options = R"({"updateCheckInterval": 4, "udpPort": "7"})";
    home.write(u".temp.btoc"_s, chords);
    ASSERT_TRUE(start(options));
    ASSERT_EQ(copies().size(), 2);
    EXPECT_EQ(home.read(copies()[0]), chords);
    EXPECT_EQ(home.read(copies()[1]), options);
    EXPECT_EQ(home.read(u"options.json"_s), options) << "the file waits for a change";
    const QString text = u"Something in %1 could not be read.\n\nAs it was, it lies in %2."_s;
    EXPECT_EQ(told(), (QStringList{text.arg(home.path(u"options.json"_s), home.path(copies()[1])),
                                   text.arg(home.path(u".temp.btoc"_s), home.path(copies()[0]))}));

    app::storeAndRecall()->storedChords()->insert(3, {OrloRatio(5, 4)});
    app::settings()->udpPort = 7777;
    application.mainWindow()->resize(1300, 800);
    EXPECT_TRUE(savesPort(7777, 3000));
    expectSaved({{u"windowSize"_s, u"1300,800"_s}});
    EXPECT_TRUE(waitUntil([this] { return home.read(u".temp.btoc"_s).contains("\n5/4 0\n"); }, 3000));
    EXPECT_EQ(told().size(), 2);
}

TEST_F(Saving, AFullDiskIsToldOnceAndKeepsTheFormerFiles)
{
    ASSERT_TRUE(start());
    app::settings()->udpPort = 1;
    ASSERT_TRUE(savesPort(1));
    {
        const FullDisk disk(100);
        app::settings()->udpPort = 2;
        EXPECT_TRUE(waitUntil([this] { return told().size() == 1; }));
        EXPECT_TRUE(told()[0].startsWith(u"%1 could not be saved: "_s.arg(home.path(u"options.json"_s))));
        application.autoSafe();
        EXPECT_EQ(told().size(), 1);
        // A preset is told of each time, since it is not saved by itself.
        app::storeAndRecall()->storedChords()->insert(1, QList<OrloRatio>(100, OrloRatio(3, 2)));
        QDir preset(home.path(u"chord_presets/x.btoc"_s));
        for (const int count : {2, 3}) {
            EXPECT_TRUE(application.saveStoredChordsToDisk(&preset));
            EXPECT_EQ(told().size(), count);
        }
        EXPECT_TRUE(savesPort(1)) << "the former one";
    }
    app::settings()->udpPort = 3;
    EXPECT_TRUE(savesPort(3));
}

TEST_F(Saving, ABrokenLatticeIsOutOfTheWayOfTheNextStart)
{
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "It starts twice in one process, while the engine of the first start runs.";
#endif
    const QString path = home.path(u"orlo_v2.json"_s);
    home.write(path, "{\"colors\": [");
    EXPECT_FALSE(start());
    EXPECT_EQ(boxes, QStringList{u"Orlo initialisation failed.\n\nThe program will now shut down."_s});
    const QByteArray log = home.read(u"log.txt"_s);
    EXPECT_TRUE(log.contains(u"Couldn't parse file %1. JSON error: "_s.arg(path).toUtf8()));
    EXPECT_TRUE(log.contains(details.toUtf8()));
    ASSERT_EQ(copies().size(), 1);
    EXPECT_EQ(home.read(copies()[0]), "{\"colors\": [");
    EXPECT_TRUE(details.contains(home.path(copies()[0])));
    EXPECT_TRUE(start());
    EXPECT_EQ(app::orlo()->ballMap().size(), 361);
}

TEST_F(Saving, AFolderThatCanOnlyBeReadIsToldOfAndPlayedFrom)
{
    home.write(u"options.json"_s, R"({"updateCheckInterval": 4, "udpPort": 1})");
    home.write(u"orlo_v2.json"_s, R"({"root": {"children": {"3": {}}}})");
    home.configDir().mkpath(u"patch"_s);
    EXPECT_TRUE(home.whenNothingCanBeWritten([this] {
        if (!application.init())
            return false;
        const QString folder = home.configDir().path();
        EXPECT_TRUE(
            told().value(0).startsWith(u"Nothing can be saved in %1: Permission denied."_s.arg(folder)));
        EXPECT_TRUE(app::player()->isPatchOpen());
        app::settings()->udpPort = 3;
        application.autoSafe();
        EXPECT_EQ(told().size(), 1);
        application.term();
        return true;
    }));
    EXPECT_TRUE(boxes.isEmpty());
    EXPECT_TRUE(savesPort(1)) << "as before";
}
