// Chord files, byte for byte. The folder of files is walked; beside each lies what must come of it.

#include "memory/ChordFileError.h"
#include "memory/SaveAndLoad.h"
#include "support/LocaleTest.h"
#include "support/LogCatcher.h"
#include "support/TestHome.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QMap>

#include <sys/resource.h>

namespace {

using Chords = SaveAndLoad::Chords;

constexpr int SETS = 21;

QString describe(const Chords& chords)
{
    QMap<int, QString> lines;
    for (auto it = chords.begin(); it != chords.end(); ++it) {
        QString line = QStringLiteral("%1:").arg(it.key());
        for (const OrloRatio& ratio : it.value())
            line += QStringLiteral(" %1/%2").arg(ratio.numerator()).arg(ratio.denominator());
        lines.insert(it.key(), line);
    }
    return QStringList(lines.values()).join(u'\n');
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// "returns true", "returns false" or "throws 2 3/0"; then "says <text>" lines; then the table.
struct Expected
{
    QString outcome;
    QStringList says;
    QString table;

    explicit Expected(const QString& path)
    {
        QStringList lines = QString::fromUtf8(contentOf(path)).split(u'\n', Qt::SkipEmptyParts);
        if (lines.isEmpty())
            return;
        outcome = lines.takeFirst();
        while (!lines.isEmpty() && lines.first().startsWith(QStringLiteral("says ")))
            says.append(lines.takeFirst().mid(5));
        table = lines.join(u'\n');
    }
};

QString readInto(Chords& chords, const QString& path)
{
    SaveAndLoad files;
    QDir file(path);
    try {
        return files.getDataFromFile(&file, &chords, SETS) ? QStringLiteral("returns true")
                                                           : QStringLiteral("returns false");
    } catch (const boost::bad_rational& error) {
        QString text = QStringLiteral("throws");
        for (const ChordFileError::Part& part : dynamic_cast<const ChordFileError&>(error).parts())
            text += QStringLiteral(" %1 %2").arg(part.slot).arg(part.text);
        return text;
    }
}

} // namespace

class ChordFile : public LocaleTest
{
protected:
    QString write(const QByteArray& content) const
    {
        home.write(QStringLiteral("x.btoc"), content);
        return home.path(QStringLiteral("x.btoc"));
    }

    const TestHome home;
};

TEST_P(ChordFile, EveryFileOfTheFolderReadsAsItsNeighbourSays)
{
    const QDir folder(QStringLiteral(ORLO_TEST_DATA "/chords"));
    const QStringList names = folder.entryList({QStringLiteral("*.btoc")}, QDir::Files);
    ASSERT_GE(names.size(), 15);
    for (const QString& name : names) {
        SCOPED_TRACE(name.toStdString());
        const Expected expected(folder.filePath(name.chopped(5) + QStringLiteral(".expected")));
        ASSERT_FALSE(expected.outcome.isEmpty());
        const LogCatcher log;
        Chords chords{{7, {OrloRatio(9, 8)}}, {0, {OrloRatio(2, 1)}}}; // all of it goes
        EXPECT_EQ(readInto(chords, folder.filePath(name)), expected.outcome);
        EXPECT_EQ(describe(chords).toStdString(), expected.table.toStdString());
        for (const QString& text : expected.says)
            EXPECT_TRUE(log.has(QtDebugMsg, text) || log.has(QtWarningMsg, text)) << text.toStdString();
        const bool complains = log.has(QtWarningMsg, QStringLiteral("Error while opening file. "));
        EXPECT_EQ(complains, expected.outcome == QStringLiteral("returns false"));
    }
}

TEST_P(ChordFile, WritesTwentyLinesAndReadsThemBack)
{
    SaveAndLoad files;
    Chords chords{{0, {OrloRatio(2, 1)}}, // the scratch slot
                  {1, {OrloRatio(1, 1), OrloRatio(3, 2), OrloRatio(10, 8)}},
                  {3, {}},
                  {20, {OrloRatio(2147483647, 1000)}},
                  {21, {OrloRatio(7, 4)}}};
    const QString path = home.path(QStringLiteral("x.btoc"));
    QDir file(path);
    ASSERT_TRUE(files.saveDataToFile(&file, &chords, SETS));
    QByteArray wanted = "1/1 3/2 5/4 0\n";
    for (int slot = 2; slot < 20; ++slot)
        wanted += "0\n";
    wanted += "2147483647/1000 0\n";
    EXPECT_EQ(contentOf(path), wanted);

    Chords again;
    EXPECT_EQ(readInto(again, path), QStringLiteral("returns true"));
    EXPECT_EQ(describe(again).toStdString(), "1: 1/1 3/2 5/4\n20: 2147483647/1000");
    ASSERT_TRUE(files.saveDataToFile(&file, &again, SETS));
    EXPECT_EQ(contentOf(path), wanted);

    // A ratio beyond 32 bits is written as it is, and cannot be given back.
    chords = {{1, {OrloRatio(1, 1), OrloRatio(2, 4294967297)}}};
    ASSERT_TRUE(files.saveDataToFile(&file, &chords, SETS));
    EXPECT_TRUE(contentOf(path).startsWith("1/1 2/4294967297 0\n0\n"));
    const LogCatcher log;
    EXPECT_EQ(readInto(again, path), QStringLiteral("returns false"));
    EXPECT_TRUE(again.isEmpty());
}

TEST_P(ChordFile, TellsTheLineOfAnErrorByACharacterOfThatCode)
{
    const LogCatcher log;
    Chords chords;
    EXPECT_EQ(readInto(chords, write("1/1 0\n0\n1/1 five 0\n")), QStringLiteral("returns false"));
    EXPECT_TRUE(chords.isEmpty());
    EXPECT_TRUE(log.has(QtWarningMsg, QStringLiteral("Error while opening file.  Wrong format in line ") + QChar(3)));
}

TEST_P(ChordFile, ReadsWhateverAFileHoldsAndEnds)
{
    const LogCatcher log;
    const QByteArray samples[] = {QByteArray(100000, '/'), QByteArray(100000, ' '), QByteArray("\0\0\n\xff\xfe", 5),
                                  QByteArray(5000, '\n'),  "-1/2 0\n",              "1/-2 0\n",
                                  "+1/+2 0\n",             "0x10/2 1/1 0\n",        "\xef\xbb\xbf" "1/1 0\n"};
    for (const QByteArray& sample : samples) {
        Chords chords;
        readInto(chords, write(sample));
        EXPECT_LE(chords.size(), SETS);
    }
}

IN_ALL_LOCALES(ChordFile);

// ---------------------------------------------------------------- when the disk refuses

TEST(ChordFileDisk, WhatCannotBeOpenedLeavesAllAsItWas)
{
    const TestHome home;
    SaveAndLoad files;
    const LogCatcher log;
    Chords chords{{7, {OrloRatio(9, 8)}}};
    QDir absent(home.path(QStringLiteral("absent/x.btoc")));
    EXPECT_FALSE(files.getDataFromFile(&absent, &chords, SETS));
    EXPECT_EQ(chords.size(), 1);
    EXPECT_FALSE(files.saveDataToFile(&absent, &chords, SETS));
    EXPECT_EQ(log.count(QtDebugMsg, QStringLiteral("Could not open file: ")), 2);
}

TEST(ChordFileDisk, AFullDiskLeavesTheOldFile)
{
    const TestHome home;
    home.write(QStringLiteral("x.btoc"), "3/2 0\n");
    Chords chords;
    for (int slot = 1; slot <= 20; ++slot)
        chords[slot] = QList<OrloRatio>(500, OrloRatio(1234567, 7654321)); // 150 kB in all
    SaveAndLoad files;
    QDir file(home.path(QStringLiteral("x.btoc")));

    // A limit of the file size stands for the full disk.
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit small{20000, before.rlim_max};
    const auto formerHandler = signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    bool saved = true;
    {
        const LogCatcher log;
        saved = files.saveDataToFile(&file, &chords, SETS);
        EXPECT_TRUE(log.has(QtCriticalMsg, QStringLiteral("The old one is kept.")));
    }
    setrlimit(RLIMIT_FSIZE, &before);
    signal(SIGXFSZ, formerHandler);
    EXPECT_FALSE(saved);
    EXPECT_EQ(home.read(QStringLiteral("x.btoc")), "3/2 0\n");
    EXPECT_EQ(home.configDir().entryList(QDir::Files | QDir::Hidden), QStringList{QStringLiteral("x.btoc")});
    EXPECT_TRUE(files.saveDataToFile(&file, &chords, SETS));
}
