#include "app/TuningOrloApplication.h"

#include "app/Accessors.h"
#include "app/LogFilter.h"
#include "support/LogCatcher.h"
#include "support/TestHome.h"
#include "ui/dialogs/DiagnosticsDialog.h"

#include <gtest/gtest.h>

#include <QDateTime>
#include <QFile>
#include <QPlainTextEdit>
#include <QRegularExpression>

#include <memory>
#include <thread>

using namespace Qt::StringLiterals;

namespace {

class Application : public ::testing::Test
{
protected:
    void setModified(const QString& name, const QDateTime& time) const
    {
        QFile file(home.path(name));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(time, QFileDevice::FileModificationTime));
    }
    bool copy(const QString& from, const QString& to, bool overwrite)
    {
        return application.copyFile(home.path(from), home.path(to), overwrite);
    }
    static void say(const QString& text, const char* file = "src/-orlopath.cpp")
    {
        TuningOrloApplication::loggingMessageHandler(QtDebugMsg, {file, 1, "f", "default"}, text);
    }
    /// What a message from this source file shows.
    QStringList diagnosticsOf(const char* file)
    {
        QStringList lines;
        const auto connection = QObject::connect(&application, &TuningOrloApplication::diagnosticMessage,
                                                 [&lines](const QString& line) { lines.append(line); });
        say(u"said"_s, file);
        QObject::disconnect(connection);
        return lines;
    }

    const TestHome home;
    TuningOrloApplication& application = *static_cast<TuningOrloApplication*>(QCoreApplication::instance());
};

} // namespace

TEST_F(Application, CopiesWhatIsMissingOrOlder)
{
    const QDateTime noon(QDate(2026, 1, 1), QTime(12, 0));
    const std::tuple<qint64, bool, bool> rows[] = {
        // seconds that the target is newer, overwrite, copied
        {60, false, false}, {0, false, false}, {-60, false, true}, {60, true, true}, {0, true, true},
    };
    for (const auto& [newer, overwrite, copied] : rows) {
        home.write(u"source"_s, "new");
        home.write(u"target"_s, "old");
        setModified(u"source"_s, noon);
        setModified(u"target"_s, noon.addSecs(newer));
        EXPECT_TRUE(copy(u"source"_s, u"target"_s, overwrite));
        EXPECT_EQ(home.read(u"target"_s), copied ? "new" : "old") << newer << ' ' << overwrite;
    }
    EXPECT_TRUE(copy(u"source"_s, u"third"_s, false));
    EXPECT_EQ(home.read(u"third"_s), "new");

    const LogCatcher log;
    EXPECT_FALSE(copy(u"absent"_s, u"x"_s, true));
    EXPECT_TRUE(log.has(QtCriticalMsg, u"Failed to copy"_s));
    home.configDir().mkpath(u"folder"_s); // no file that could be removed
    EXPECT_FALSE(copy(u"source"_s, u"folder"_s, true));
    EXPECT_TRUE(log.has(QtCriticalMsg, u"Failed to delete"_s));
    EXPECT_TRUE(log.has(QtCriticalMsg, u"before copying"_s));
}

// The filter holds "-orlopath": of two dashes one is taken off.
TEST_F(Application, FilterKeepsTheSecondDashOfItsWord)
{
    EXPECT_TRUE(LogFilter::isListening.load());
    const std::pair<const char*, int> rows[] = {
        {"src/model/-OrloPath.cpp", 1},
        {"src/model/OrloPath.cpp", 0},
        {nullptr, 0},
        {"c:\\src\\-orlopath.old.cpp", 0}, // its base name ends in .old
        {"-OrloPath.cpp", 0},              // no separator
    };
    for (const auto& [file, shown] : rows)
        EXPECT_EQ(diagnosticsOf(file).size(), shown) << (file ? file : "no file");
    // Stamp with its blank, one more blank, the text, the line's end.
    const QString line = diagnosticsOf("src/-ORLOPATH.cpp").value(0);
    EXPECT_TRUE(
        QRegularExpression(u"^\\[\\d\\d:\\d\\d:\\d\\d\\.\\d{3}\\]  said\\n$"_s).match(line).hasMatch())
        << line.toStdString();
}

TEST_F(Application, TheDiagnosticsDialogCollectsWithoutBeingSeen)
{
    auto dialog = std::make_unique<DiagnosticsDialog>(nullptr);
    auto* area = dialog->findChild<QPlainTextEdit*>();
    // Each line ends with a line's end of its own.
    const auto lines = [&] {
        return area->toPlainText().replace(QRegularExpression(u"\\[.*?\\]  "_s), u""_s);
    };
    say(u"one"_s);
    std::thread([] { say(u"two"_s); }).join();
    EXPECT_EQ(lines(), u"one\n"_s);
    QCoreApplication::processEvents();
    EXPECT_EQ(lines(), u"one\n\ntwo\n"_s);
    dialog->show();
    EXPECT_EQ(dialog->size(), QSize(600, 500));
    EXPECT_TRUE(dialog->windowFlags().testFlag(Qt::WindowMaximizeButtonHint));
    EXPECT_TRUE(dialog->windowFlags().testFlag(Qt::WindowCloseButtonHint));

    // Appending that logs appends nothing more.
    const auto noisy = QObject::connect(area, &QPlainTextEdit::textChanged, [] { say(u"echo"_s); });
    say(u"three"_s);
    QObject::disconnect(noisy);
    EXPECT_EQ(lines(), u"one\n\ntwo\n\nthree\n"_s);

    // A line on its way, and one from the dialog's own end, find nobody.
    QObject::connect(area, &QObject::destroyed, [] { say(u"late"_s); });
    std::thread([] { say(u"late"_s); }).join();
    dialog.reset();
    QCoreApplication::processEvents();
    say(u"later"_s);
}

TEST_F(Application, PutsThePatchIntoItsRuntimeFolder)
{
    ASSERT_TRUE(application.initPatchFolder());
    // The main patch is always replaced, the others only when they are older.
    home.write(u"patch/orlo_main.pd"_s, "mine");
    home.write(u"patch/orlo_vprep.pd"_s, "mine");
    ASSERT_TRUE(application.initPatchFolder());
    EXPECT_NE(home.read(u"patch/orlo_main.pd"_s), "mine");
    EXPECT_EQ(home.read(u"patch/orlo_vprep.pd"_s), "mine");
}

TEST_F(Application, KeepsTheRestOfAChordFileThatHoldsARatioThatIsNone)
{
    home.write(QStringLiteral("x.btoc"), "1/1 0\n3/2 3/0 5/4 0\n7/4 0\n");
    QDir file(home.path(QStringLiteral("x.btoc")));
    StoreAndRecall* memory = app::storeAndRecall();
    {
        const LogCatcher log;
        EXPECT_TRUE(application.loadChordsFromDiskToStorage(&file));
        EXPECT_TRUE(log.has(QtWarningMsg, QStringLiteral("Loading chords from ")));
        EXPECT_EQ(log.count(QtCriticalMsg, QStringLiteral("")), 1);
        for (const QString& part : {file.path(), QStringLiteral("slot 2"), QStringLiteral("\"3/0\"")})
            EXPECT_TRUE(log.has(QtCriticalMsg, part)) << part.toStdString();
    }
    EXPECT_TRUE(application.saveStoredChordsToDisk(&file));
    EXPECT_TRUE(home.read(QStringLiteral("x.btoc")).startsWith("1/1 0\n3/2 0\n7/4 0\n0\n"));

    // What cannot be read leaves the memory as it is, and that is true too.
    QDir absent(home.path(QStringLiteral("absent.btoc")));
    EXPECT_TRUE(application.loadChordsFromDiskToStorage(&absent));
    EXPECT_EQ(memory->getNumberOfRatios(3), 1);
    memory->clearAll();
}
