#include "files/SoonSaver.h"

#include "support/LogCatcher.h"
#include "support/TestHome.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <QDir>

using namespace Qt::StringLiterals;

static_assert(SoonSaver::INTERVAL <= std::chrono::seconds(2), "a change is saved within three seconds");

class SoonSaverTest : public ::testing::Test
{
protected:
    SoonSaverTest()
    {
        WholeFile::setListener([this](const WholeFile::Outcome&) { ++writes; });
    }
    ~SoonSaverTest() override { WholeFile::setListener({}); }

    /// All that is due is written, and it is known what became of it.
    static void settle(SoonSaver& saver)
    {
        saver.check();
        saver.wait();
        QCoreApplication::processEvents();
    }

    const TestHome home;
    const LogCatcher log;
    std::atomic<int> writes{0};
    QByteArray chords = "1";
    const QList<SoonSaver::Source> source{{home.path(u"chords"_s), [this] { return chords; }}};
};

TEST_F(SoonSaverTest, WhatChangesIsWrittenByItselfAndNothingElse)
{
    home.write(u"chords"_s, "1, as it was formatted before");
    SoonSaver saver(source);
    settle(saver);
    EXPECT_EQ(writes, 0);
    chords = "10";
    EXPECT_TRUE(waitUntil([this] { return home.read(u"chords"_s) == "10"; }));
    settle(saver);
    EXPECT_EQ(writes, 1);
    // While a write is under way the next one waits, and takes what is newest then.
    for (int change = 0; change < 3; ++change) {
        chords += "0";
        saver.check();
    }
    saver.wait();
    EXPECT_EQ(home.read(u"chords"_s), "100");
    QCoreApplication::processEvents();
    settle(saver);
    EXPECT_EQ(home.read(u"chords"_s), "10000");
    EXPECT_EQ(writes, 3);
    // What others have written since is not what is in memory.
    chords = "2";
    saver.check();
    saver.letOthersWrite();
    home.write(u"chords"_s, "3");
    QCoreApplication::processEvents();
    settle(saver);
    EXPECT_EQ(home.read(u"chords"_s), "2");
}

TEST_F(SoonSaverTest, WhatCannotBeWrittenIsTriedAgainWhenItChanges)
{
    home.configDir().mkpath(u"chords"_s);
    SoonSaver saver(source);
    for (int change = 1; change <= 3; ++change) {
        chords += "0";
        for (int check = 0; check < 2; ++check)
            settle(saver);
        EXPECT_EQ(writes, change);
    }
    EXPECT_EQ(log.count(QtCriticalMsg, u"The old one is kept."_s), 1);
    home.configDir().rmdir(u"chords"_s);
    chords = "3";
    settle(saver);
    EXPECT_EQ(home.read(u"chords"_s), "3");
}
