#include "app/LogFile.h"
#include "app/LogFilter.h"
#include "app/ProgramFixture.h"
#include "ui/dialogs/DiagnosticsDialog.h"

#include <QPlainTextEdit>
#include <QRegularExpression>

#include <memory>
#include <thread>

using namespace Qt::StringLiterals;

namespace {

/// Of the two dashes one is taken off.
class Log : public ProgramFixture
{
protected:
    Log()
        : ProgramFixture("--OrloPath")
    {
    }
    static void say(const QString& text, const char* file = "src/-orlopath.cpp", QtMsgType type = QtDebugMsg)
    {
        TuningOrloApplication::loggingMessageHandler(type, {file, 1, "f", "default"}, text);
    }
};

} // namespace

TEST(LogFileTest, HoldsABannerForEachStartAndNoDebugMessage)
{
    const TestHome home;
    for (int run = 0; run < 2; ++run) {
        LogFile file;
        ASSERT_TRUE(file.open(home.path(u"log.txt"_s)));
        for (const QtMsgType type : {QtDebugMsg, QtInfoMsg, QtWarningMsg, QtCriticalMsg, QtFatalMsg})
            file.write(type, u"[stamp] "_s, QString::number(type));
    }
    const QString one = u"\n-{78}\nStarting app at \\d\\d/\\d\\d/\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d+\n"
                        u"\\[stamp\\] 4\n\\[stamp\\] 1\n"
                        u"\nCRITICAL:\n\\[stamp\\] 2\n\n\nFATAL:\n\\[stamp\\] 3\n\n"_s;
    const QString text = QString::fromUtf8(home.read(u"log.txt"_s));
    EXPECT_TRUE(QRegularExpression(u"^(?:%1){2}$"_s.arg(one)).match(text).hasMatch()) << text.toStdString();
    EXPECT_TRUE(
        QRegularExpression(u"^\\[\\d\\d:\\d\\d:\\d\\d\\.\\d{3}\\] $"_s).match(LogFile().stamp()).hasMatch());
}

TEST(LogFileTest, BeginsAnewAtItsLimitAndLosesNoLine)
{
    const TestHome home;
    const auto content = [&](const char* name) { return home.read(QLatin1StringView(name)); };
    home.write(u"log.txt"_s, QByteArray(LogFile::LIMIT - 9, 'x'));
    LogFile file;
    ASSERT_TRUE(file.open(home.path(u"log.txt"_s)));
    EXPECT_TRUE(content("log.1.txt").startsWith("xxx"));
    EXPECT_TRUE(content("log.txt").startsWith("\n-----"));
    constexpr int LINES = 1500; // of 1024 bytes, so that four threads pass the limit once
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([&file, thread] {
            for (int line = 0; line < LINES; ++line)
                file.write(QtWarningMsg, {},
                           QString::number(thread * LINES + line).rightJustified(1023, u'0'));
        });
    threads.clear();
    EXPECT_LE(content("log.1.txt").size(), LogFile::LIMIT + 4 * 1024);
    const QList<QByteArray> lines = (content("log.1.txt") + content("log.txt")).split('\n');
    EXPECT_EQ(QSet<QByteArray>(lines.begin(), lines.end()).size(),
              4 * LINES + 3); // two of the banner, an empty one

    home.write(u"log.txt"_s, QByteArray(LogFile::LIMIT, 'x'));
    EXPECT_TRUE(home.whenNoFileCanBeMade([&] {
        file.write(QtWarningMsg, {}, u"kept"_s);
        return true;
    }));
    EXPECT_TRUE(content("log.txt").endsWith("xkept\n")) << "it grows on";
}

TEST(LogFilterTest, GoesByTheSourceFilesBaseName)
{
    // A word or none, a source file, and whether its messages pass and are shown.
    const std::tuple<const char*, const char*, bool, bool> rows[] = {
        {nullptr, nullptr, true, false},
        {nullptr, "src/model/OrloPath.cpp", true, false},
        {"ORLOPATH", "src/model/OrloPath.cpp", true, true},
        {"-orlopath", "src/model/OrloPath.cpp", true, true},
        {"--orlopath", "src/model/OrloPath.cpp", true, false},
        {"--orlopath", "src/model/-OrloPath.cpp", true, true},
        {"orlo", "src/model/OrloPath.cpp", true, false},
        {"orlopath", "c:\\src\\OrloPath.cpp", true, true},
        {"orlopath", "src/OrloPath.old.cpp", true, false}, // its base name ends in .old
        {"orlopath", "OrloPath.cpp", false, false},        // no separator
        {"orlopath", nullptr, false, false},
        {"All", "src/x.cpp", true, true},
        {"all", "x.cpp", false, false},
    };
    for (const auto& [word, file, passes, shows] : rows) {
        SCOPED_TRACE(testing::Message() << (word ? word : "") << ' ' << (file ? file : ""));
        char* arguments[] = {nullptr, const_cast<char*>(word)};
        LogFilter filter;
        filter.setWords(word ? 2 : 1, arguments);
        EXPECT_EQ(LogFilter::isListening, word != nullptr);
        EXPECT_EQ(filter.passes(file), passes);
        EXPECT_EQ(filter.shows(file), shows);
    }
}

TEST_F(Log, FilterDecidesWhatReachesDialogAndFile)
{
    QStringList shown;
    QObject::connect(&application, &TuningOrloApplication::diagnosticMessage,
                     [&shown](const QString& line) { shown.append(line); });
    ASSERT_TRUE(start());
    shown.clear();
    say(u"1"_s);
    say(u"2"_s, "src/-OrloPath.cpp", QtWarningMsg);
    say(u"3"_s, "src/OrloPath.cpp", QtWarningMsg);
    say(u"4"_s, nullptr, QtCriticalMsg);
    // Stamp with its blank, one more blank, the text, the line's end.
    const QRegularExpression lines(u"^(\\[\\d\\d:\\d\\d:\\d\\d\\.\\d{3}\\]  [12]\n){2}$"_s);
    EXPECT_TRUE(lines.match(shown.join(QString())).hasMatch()) << shown.join(u'|').toStdString();
    const QByteArray file = home.read(u"log.txt"_s);
    EXPECT_TRUE(QRegularExpression(u"\\] 2\n\\[.{12}\\] 3\n$"_s).match(QString::fromUtf8(file)).hasMatch())
        << file.toStdString();
    end();
    qWarning("late");
    EXPECT_FALSE(home.read(u"log.txt"_s).contains("late"));
}

TEST_F(Log, TheDiagnosticsDialogCollectsWithoutBeingSeen)
{
    auto dialog = std::make_unique<DiagnosticsDialog>(nullptr);
    auto* area = dialog->findChild<QPlainTextEdit*>();
    const auto lines = [area] { return area->toPlainText().count(u']'); };
    say(u"one"_s);
    std::thread([] { say(u"two"_s); }).join();
    EXPECT_EQ(lines(), 1);
    QCoreApplication::processEvents();
    EXPECT_EQ(lines(), 2);
    // Appending that logs appends nothing more.
    const auto noisy = QObject::connect(area, &QPlainTextEdit::textChanged, [] { say(u"echo"_s); });
    say(u"three"_s);
    QObject::disconnect(noisy);
    EXPECT_EQ(lines(), 3);
    // A line on its way, and one from the dialog's own end, find nobody.
    QObject::connect(area, &QObject::destroyed, [] { say(u"late"_s); });
    std::thread([] { say(u"late"_s); }).join();
    dialog.reset();
    QCoreApplication::processEvents();
    say(u"later"_s);
}
