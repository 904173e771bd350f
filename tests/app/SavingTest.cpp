#include "app/ProgramFixture.h"

#include "app/Accessors.h"
#include "support/FullDisk.h"
#include "support/Waiting.h"

#include <QPushButton>

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
        QStringList texts;
        for (const QMessageBox* box : application.mainWindow()->findChildren<QMessageBox*>())
            texts.append(box->text());
        return texts;
    }
    QStringList copies() const
    {
        return home.configDir().entryList({u"*.bad-*"_s}, QDir::Files | QDir::Hidden, QDir::Name);
    }
    bool logged(const QString& text) const { return home.read(u"log.txt"_s).contains(text.toUtf8()); }
    int savedPort() const
    {
        return QJsonDocument::fromJson(home.read(u"options.json"_s))[u"udpPort"_s].toInt();
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
    QStringList expected;
    for (const QString& copy : copies())
        expected.prepend(u"Something in %1 could not be read.\n\nAs it was, it lies in %2."_s.arg(
            home.path(copy.section(u".bad-"_s, 0, 0)), home.path(copy)));
    EXPECT_EQ(told(), expected);
    ASSERT_EQ(copies().size(), 2);
    EXPECT_EQ(home.read(copies()[0]), chords);
    EXPECT_EQ(home.read(copies()[1]), options);
    EXPECT_EQ(home.read(u"options.json"_s), options) << "the file waits for a change";

    app::storeAndRecall()->storedChords()->insert(3, {OrloRatio(5, 4)});
    find<QPushButton>("circlesViewButton")->click();
    app::settings()->udpPort = 7777;
    EXPECT_TRUE(waitUntil(
        [this] { return home.read(u".temp.btoc"_s).startsWith("1/1 0\n0/1 5/4 0\n5/4 0\n0\n"); }, 3000));
    EXPECT_TRUE(waitUntil([this] { return savedPort() == 7777; }, 3000));
    expectSaved({{u"circlesView"_s, true}});
    EXPECT_EQ(told().size(), 2);
    EXPECT_FALSE(logged(u"Saving stored chords"_s)) << "a line for each change";
}

TEST_F(Saving, AFullDiskIsToldOnceAndKeepsTheFormerFiles)
{
    ASSERT_TRUE(start());
    app::settings()->udpPort = 1;
    ASSERT_TRUE(waitUntil([this] { return savedPort() == 1; }));
    {
        const FullDisk disk(100);
        app::settings()->udpPort = 2;
        EXPECT_TRUE(waitUntil([this] { return told().size() == 1; }));
        EXPECT_TRUE(
            told().value(0).startsWith(u"%1 could not be saved: "_s.arg(home.path(u"options.json"_s))));
        for (int again = 0; again < 2; ++again)
            application.autoSafe();
        QCoreApplication::processEvents();
        EXPECT_EQ(told().size(), 1);
        EXPECT_EQ(savedPort(), 1);
        // A preset is told of each time, since it is not saved by itself.
        app::storeAndRecall()->storedChords()->insert(1, QList<OrloRatio>(100, OrloRatio(3, 2)));
        home.configDir().mkpath(u"chord_presets/Bank"_s);
        QDir preset(home.path(u"chord_presets/Bank/x.btoc"_s));
        for (const int count : {2, 3}) {
            EXPECT_TRUE(application.saveStoredChordsToDisk(&preset));
            QCoreApplication::processEvents();
            EXPECT_EQ(told().size(), count);
        }
        EXPECT_FALSE(preset.exists());
    }
    app::settings()->udpPort = 3;
    EXPECT_TRUE(waitUntil([this] { return savedPort() == 3; }));
}

TEST_F(Saving, ABrokenLatticeIsOutOfTheWayOfTheNextStart)
{
    const QString name = u"orlo_v2.json"_s;
    const QByteArray broken = "{\"colors\": [";
    home.write(name, broken);
    EXPECT_FALSE(start());
    EXPECT_EQ(boxes, QStringList{u"Orlo initialisation failed.\n\nThe program will now shut down."_s});
    EXPECT_TRUE(logged(u"Couldn't parse file %1. JSON error: "_s.arg(home.path(name))));
    ASSERT_EQ(copies().size(), 1);
    EXPECT_EQ(home.read(copies()[0]), broken);
    EXPECT_TRUE(details.contains(home.path(copies()[0])));
    EXPECT_TRUE(logged(details));
    EXPECT_FALSE(home.configDir().exists(name));
    EXPECT_TRUE(start());
    EXPECT_EQ(app::orlo()->ballMap().size(), 361);
    EXPECT_TRUE(home.read(name).contains("\"root\""));
}

TEST_F(Saving, AFolderThatCanOnlyBeReadIsToldOfAndPlayedFrom)
{
    home.write(u"options.json"_s, R"({"updateCheckInterval": 4, "masterVolume": 0.25})");
    home.write(u"orlo_v2.json"_s, R"({"root": {"children": {"3": {}}}})");
    home.write(u".temp.btoc"_s, "3/2 0\n");
    for (const char* folder : {"patch", "chord_presets"})
        home.configDir().mkpath(QLatin1StringView(folder));
    const bool started = home.whenNothingCanBeWritten([this] {
        const bool runs = application.init();
        if (runs) {
            EXPECT_EQ(told().size(), 1);
            EXPECT_TRUE(told().value(0).startsWith(
                u"Nothing can be saved in %1: Permission denied."_s.arg(home.configDir().path())));
            EXPECT_TRUE(app::player()->isPatchOpen());
            app::settings()->udpPort = 3;
            application.autoSafe();
            QCoreApplication::processEvents();
            EXPECT_EQ(told().size(), 1);
            application.term();
        }
        return runs;
    });
    EXPECT_TRUE(started);
    EXPECT_TRUE(boxes.isEmpty());
    EXPECT_EQ(home.read(u".temp.btoc"_s), "3/2 0\n");
    EXPECT_EQ(savedPort(), 0);
}
