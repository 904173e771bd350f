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

    SoonSaver::Source source(const QString& name, const QByteArray& content)
    {
        return {home.path(name), [&content] { return content; }};
    }
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
    QByteArray options = "1";
    QByteArray chords = "2";
};

TEST_F(SoonSaverTest, WhatChangesIsWrittenByItselfAndNothingElse)
{
    home.write(u"options"_s, "1, as it was formatted before");
    SoonSaver saver({source(u"options"_s, options), source(u"chords"_s, chords)});
    settle(saver);
    EXPECT_EQ(writes, 1) << "only what is not there yet";
    EXPECT_EQ(home.read(u"chords"_s), "2");
    settle(saver);
    EXPECT_EQ(writes, 1);
    options = "10";
    EXPECT_TRUE(waitUntil([this] { return home.read(u"options"_s) == options; }, 3000));
    settle(saver);
    EXPECT_EQ(writes, 2);

    // While a write is under way the next one waits, and takes what is newest then.
    chords = "20";
    saver.check();
    chords = "200";
    saver.check();
    chords = "2000";
    settle(saver);
    settle(saver);
    EXPECT_EQ(home.read(u"chords"_s), "2000");
    EXPECT_EQ(writes, 4);
}

TEST_F(SoonSaverTest, WhatCannotBeWrittenIsTriedAgainWhenItChanges)
{
    home.configDir().mkpath(u"chords"_s);
    SoonSaver saver({source(u"chords"_s, chords)});
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
