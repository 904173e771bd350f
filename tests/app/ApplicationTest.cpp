#include "app/TuningOrloApplication.h"

#include "app/Accessors.h"
#include "app/DebugLog.h"
#include "support/LogCatcher.h"
#include "support/TestHome.h"

#include <gtest/gtest.h>

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

namespace {

TuningOrloApplication& application()
{
    return *static_cast<TuningOrloApplication*>(QCoreApplication::instance());
}

void setModified(const QString& path, const QDateTime& time)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.setFileTime(time, QFileDevice::FileModificationTime));
}

QStringList diagnosticsOf(const char* file, QtMsgType type)
{
    QStringList lines;
    const auto connection = QObject::connect(&application(), &TuningOrloApplication::diagnosticMessage,
                                             [&lines](const QString& line) { lines.append(line); });
    TuningOrloApplication::loggingMessageHandler(type, QMessageLogContext(file, 1, "f", "default"),
                                                 QStringLiteral("said"));
    QObject::disconnect(connection);
    return lines;
}

} // namespace

TEST(Application, NamesItselfAndItsFolders)
{
    EXPECT_EQ(QCoreApplication::applicationName(), QStringLiteral("Brevick Tuning Orlo"));
    EXPECT_EQ(application().version(), QStringLiteral("2.0.0"));
    EXPECT_TRUE(TuningOrloApplication::configDirectory().endsWith(QStringLiteral("/Brevick Tuning Orlo")));
}

// The source is newer, equally old or older than the target, and may overwrite it or not.
TEST(Application, CopiesWhatIsMissingOrOlder)
{
    const TestHome home;
    const QDateTime noon(QDate(2026, 1, 1), QTime(12, 0));
    struct Case
    {
        qint64 targetIsNewerBy; // seconds
        bool overwrite;
        bool copied;
    };
    for (const Case& c : {Case{60, false, false}, Case{0, false, false}, Case{-60, false, true},
                          Case{60, true, true}, Case{0, true, true}}) {
        home.write(QStringLiteral("source"), "new");
        home.write(QStringLiteral("target"), "old");
        setModified(home.path(QStringLiteral("source")), noon);
        setModified(home.path(QStringLiteral("target")), noon.addSecs(c.targetIsNewerBy));
        EXPECT_TRUE(application().copyFile(home.path(QStringLiteral("source")), home.path(QStringLiteral("target")),
                                           c.overwrite));
        EXPECT_EQ(home.read(QStringLiteral("target")), c.copied ? "new" : "old")
            << c.targetIsNewerBy << ' ' << c.overwrite;
    }
    EXPECT_TRUE(application().copyFile(home.path(QStringLiteral("source")), home.path(QStringLiteral("third")), false));
    EXPECT_EQ(home.read(QStringLiteral("third")), "new");
}

TEST(Application, SaysWhatItCouldNotCopy)
{
    const TestHome home;
    const LogCatcher log;
    EXPECT_FALSE(application().copyFile(home.path(QStringLiteral("absent")), home.path(QStringLiteral("x")), true));
    EXPECT_TRUE(log.has(QtCriticalMsg, QStringLiteral("Failed to copy")));

    // A folder is no file that could be removed.
    home.write(QStringLiteral("source"), "new");
    home.configDir().mkpath(QStringLiteral("folder"));
    EXPECT_FALSE(
        application().copyFile(home.path(QStringLiteral("source")), home.path(QStringLiteral("folder")), true));
    EXPECT_TRUE(log.has(QtCriticalMsg, QStringLiteral("Failed to delete")));
    EXPECT_TRUE(log.has(QtCriticalMsg, QStringLiteral("before copying")));
}

// The filter holds "-orlopath": of two dashes one is taken off.
TEST(Application, FilterKeepsTheSecondDashOfItsWord)
{
    EXPECT_TRUE(app::debugListening.load());
    EXPECT_EQ(diagnosticsOf("src/model/-OrloPath.cpp", QtDebugMsg).size(), 1);
    EXPECT_EQ(diagnosticsOf("src/model/OrloPath.cpp", QtDebugMsg).size(), 0);
    EXPECT_EQ(diagnosticsOf("c:\\src\\-orlopath.old.cpp", QtDebugMsg).size(), 0); // its base name ends in .old
    EXPECT_EQ(diagnosticsOf("-OrloPath.cpp", QtDebugMsg).size(), 0);            // no separator
    EXPECT_EQ(diagnosticsOf(nullptr, QtDebugMsg).size(), 0);

    const QStringList lines = diagnosticsOf("src/-ORLOPATH.cpp", QtWarningMsg);
    ASSERT_EQ(lines.size(), 1);
    // Stamp with its blank, one more blank, the text, the line's end.
    EXPECT_TRUE(QRegularExpression(QStringLiteral("^\\[\\d\\d:\\d\\d:\\d\\d\\.\\d{3}\\]  said\\n$"))
                    .match(lines.first())
                    .hasMatch())
        << lines.first().toStdString();
}

TEST(Application, PutsThePatchIntoItsRuntimeFolder)
{
    const TestHome home;
    ASSERT_TRUE(application().initPatchFolder());
    const QDir patch(home.path(QStringLiteral("patch")));
    EXPECT_EQ(patch.entryList(QDir::Files, QDir::Name),
              QStringList({QStringLiteral("equal-loudness.pd"), QStringLiteral("orlo_main.pd"),
                           QStringLiteral("orlo_vprep.pd"), QStringLiteral("tb_compressorUI.pd"),
                           QStringLiteral("tb_compressor~.pd")}));

    // The main patch is always replaced, the others only when they are older.
    home.write(QStringLiteral("patch/orlo_main.pd"), "mine");
    home.write(QStringLiteral("patch/orlo_vprep.pd"), "mine");
    ASSERT_TRUE(application().initPatchFolder());
    EXPECT_NE(home.read(QStringLiteral("patch/orlo_main.pd")), "mine");
    EXPECT_EQ(home.read(QStringLiteral("patch/orlo_vprep.pd")), "mine");
}

TEST(Application, KeepsTheRestOfAChordFileThatHoldsARatioThatIsNone)
{
    const TestHome home;
    home.write(QStringLiteral("x.btoc"), "1/1 0\n3/2 3/0 5/4 0\n7/4 0\n");
    QDir file(home.path(QStringLiteral("x.btoc")));
    StoreAndRecall* memory = app::storeAndRecall();
    {
        const LogCatcher log;
        EXPECT_TRUE(application().loadChordsFromDiskToStorage(&file));
        EXPECT_TRUE(log.has(QtWarningMsg, QStringLiteral("Loading chords from ")));
        EXPECT_EQ(log.count(QtCriticalMsg, QStringLiteral("")), 1);
        for (const QString& part : {file.path(), QStringLiteral("slot 2"), QStringLiteral("\"3/0\"")})
            EXPECT_TRUE(log.has(QtCriticalMsg, part)) << part.toStdString();
    }
    EXPECT_TRUE(application().saveStoredChordsToDisk(&file));
    EXPECT_TRUE(home.read(QStringLiteral("x.btoc")).startsWith("1/1 0\n3/2 0\n7/4 0\n0\n"));

    // What cannot be read leaves the memory as it is, and that is true too.
    QDir absent(home.path(QStringLiteral("absent.btoc")));
    EXPECT_TRUE(application().loadChordsFromDiskToStorage(&absent));
    EXPECT_EQ(memory->getNumberOfRatios(3), 1);
    memory->clearAll();
}
