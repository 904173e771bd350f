// What keeps the log readable: how many lines of a kind it gets, and what foreign texts look like in it.

#include "app/RationedLog.h"

#include "app/LogText.h"
#include "support/LogCatcher.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(RationedLog, WritesTheFirstLinesAndCountsTheOthers)
{
    const LogCatcher log;
    RationedLog slow(u"more."_s, 3, std::chrono::hours(1));
    for (const QString& line : {u"a"_s, u"%1 b"_s, u"c"_s, u"d"_s, u"e"_s})
        slow.write(line);
    slow.tellLeftOut(); // not yet
    EXPECT_EQ(log.lines().size(), 3);
    slow.tellLeftOutNow();
    slow.tellLeftOutNow();
    EXPECT_EQ(log.lines().size(), 4);
    EXPECT_TRUE(log.has(QtWarningMsg, u"%1 b"_s) && log.has(QtWarningMsg, u"2 more."_s));
}

TEST(LogText, NoForeignTextForgesALine)
{
    const std::pair<QString, QString> rows[] = {
        {u"04a1B2 c3%1\"\\'"_s, u"04a1B2 c3%1\"\\'"_s},
        {u"Gänge 音 \U0001F3B5"_s, u"Gänge 音 \U0001F3B5"_s},
        {u"a\nb\r\tc\u001b[31m\u007f\u0085"_s, u"a\\nb\\r\\tc\\x1b[31m\\x7f\\x85"_s},
        {u"\u2028\u2029\u202e\u2066\ufeff\u200b"_s, u"\\u2028\\u2029\\u202e\\u2066\\ufeff\\u200b"_s},
        {u"\U000E0041\uE000"_s, u"\\U000e0041\\ue000"_s},
        {QString(1, QChar(0)) + QChar(0xD800), u"\\x00\uFFFD"_s},
    };
    for (const auto& [foreign, shown] : rows)
        EXPECT_EQ(logText(foreign).toStdString(), shown.toStdString());
}
