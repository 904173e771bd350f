#include "memory/ChordFileError.h"
#include "memory/SaveAndLoad.h"
#include "support/LocaleTest.h"
#include "support/LogCatcher.h"
#include "support/TestHome.h"

#include <gtest/gtest.h>

#include <QDir>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

using Chords = SaveAndLoad::Chords;

constexpr int SETS = 21;

/// "returns true", "returns false" or "throws 2 3/0", and then the table.
QStringList reading(Chords& chords, const QString& path)
{
    QStringList lines;
    QDir file(path);
    try {
        const bool read = SaveAndLoad().getDataFromFile(&file, &chords, SETS);
        lines.append(read ? u"returns true"_s : u"returns false"_s);
    } catch (const boost::bad_rational& error) {
        lines.append(u"throws"_s);
        for (const ChordFileError::Part& part : dynamic_cast<const ChordFileError&>(error).parts())
            lines[0] += u" %1 %2"_s.arg(part.slot).arg(part.text);
    }
    QList<int> used = chords.keys();
    std::sort(used.begin(), used.end());
    for (const int slot : used) {
        lines.append(QString::number(slot) + u':');
        for (const OrloRatio& ratio : chords[slot])
            lines.last() += u" %1/%2"_s.arg(ratio.numerator()).arg(ratio.denominator());
    }
    return lines;
}

} // namespace

class ChordFile : public LocaleTest
{
protected:
    const TestHome home;
    const QString path = home.path(u"x.btoc"_s);
};

/// Beside each file stands what becomes of it; lines that begin with "says" are of the log. "is set aside":
/// before it is written over, since something in it is lost.
TEST_F(ChordFile, EveryFileOfTheFolderReadsAsItsNeighbourSays)
{
    const QDir folder(QStringLiteral(ORLO_TEST_DATA "/chords"));
    const QStringList names = folder.entryList({u"*.btoc"_s}, QDir::Files);
    ASSERT_GE(names.size(), 15);
    for (const QString& name : names) {
        SCOPED_TRACE(name.toStdString());
        const LogCatcher log;
        Chords chords{{7, {OrloRatio(9, 8)}}, {0, {OrloRatio(2, 1)}}}; // all of it goes
        const QByteArray content = home.read(folder.filePath(name));
        home.write(name, content);
        QStringList found = reading(chords, home.path(name));
        QDir file(home.path(name));
        EXPECT_TRUE(SaveAndLoad().saveDataToFile(&file, &chords, SETS));
        for (const QString& copy : home.configDir().entryList({name + u".bad-*"_s})) {
            found.append(u"is set aside"_s);
            EXPECT_EQ(home.read(copy), content);
        }
        const QByteArray neighbour = home.read(folder.filePath(name.chopped(5) + u".expected"_s));
        QStringList expected;
        for (const QString& line : QString::fromUtf8(neighbour).split(u'\n', Qt::SkipEmptyParts)) {
            if (!line.startsWith(u"says "_s))
                expected.append(line);
            else
                EXPECT_TRUE(log.has(QtDebugMsg, line.mid(5)) || log.has(QtWarningMsg, line.mid(5)));
        }
        EXPECT_EQ(found.join(u'\n').toStdString(), expected.join(u'\n').toStdString());
        EXPECT_EQ(log.has(QtWarningMsg, u"Error while opening file. "_s), found[0] == u"returns false"_s);
    }
}

TEST_F(ChordFile, WritesTwentyLinesAndReadsThemBack)
{
    SaveAndLoad files;
    Chords chords{{0, {OrloRatio(2, 1)}}, // the scratch slot
                  {1, {OrloRatio(1, 1), OrloRatio(3, 2), OrloRatio(10, 8)}},
                  {3, {}},
                  {20, {OrloRatio(2147483647, 1000)}},
                  {21, {OrloRatio(7, 4)}}};
    QDir file(path);
    ASSERT_TRUE(files.saveDataToFile(&file, &chords, SETS));
    QByteArray wanted = "1/1 3/2 5/4 0\n";
    for (int slot = 2; slot < 20; ++slot)
        wanted += "0\n";
    wanted += "2147483647/1000 0\n";
    EXPECT_EQ(home.read(path), wanted);

    Chords again;
    EXPECT_EQ(reading(again, path),
              (QStringList{u"returns true"_s, u"1: 1/1 3/2 5/4"_s, u"20: 2147483647/1000"_s}));
    ASSERT_TRUE(files.saveDataToFile(&file, &again, SETS));
    EXPECT_EQ(home.read(path), wanted);

    // A ratio beyond 32 bits is written as it is, and cannot be given back.
    chords = {{1, {OrloRatio(1, 1), OrloRatio(2, 4294967297)}}};
    ASSERT_TRUE(files.saveDataToFile(&file, &chords, SETS));
    EXPECT_TRUE(home.read(path).startsWith("1/1 2/4294967297 0\n0\n"));
    const LogCatcher log;
    EXPECT_EQ(reading(again, path), QStringList(u"returns false"_s));
}

TEST(ChordFileDisk, ARefusalLeavesAllAsItWas)
{
    const TestHome home;
    SaveAndLoad files;
    const LogCatcher log;
    Chords chords{{7, {OrloRatio(9, 8)}}};
    QDir absent(home.path(u"absent/x.btoc"_s));
    EXPECT_FALSE(files.getDataFromFile(&absent, &chords, SETS));
    EXPECT_EQ(chords.size(), 1);
    EXPECT_FALSE(files.saveDataToFile(&absent, &chords, SETS));

    EXPECT_TRUE(log.has(QtCriticalMsg, u"The old one is kept."_s));
}
