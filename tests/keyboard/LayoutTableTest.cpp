#include "keyboard/LayoutTable.h"
#include "keyboard/Layout.h"
#include "keyboard/TwelveSteps.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

using Kind = Layout::Kind;

Layout layoutOf(Kind kind, int rootKey = 60)
{
    Layout layout;
    layout.kind = kind;
    layout.rootKey = rootKey;
    return layout;
}

/// Of each key of a channel its ratio, "~" and its cents, or "-" without a pitch.
std::string keys(const QList<Layout>& layouts, int channel, int from, int to, const QString& input = {})
{
    const auto table = LayoutTable::make(layouts, input);
    QStringList told;
    for (int key = from; key <= to; ++key) {
        const KeyTarget& target = table->at(channel - 1, key);
        if (target.ratio.numerator() != 0)
            told.append(u"%1/%2"_s.arg(target.ratio.numerator()).arg(target.ratio.denominator()));
        else if (target.tempered > 0.0)
            told.append(u'~' + QString::number(1200.0 * std::log2(target.tempered), 'f', 3));
        else
            told.append(u"-"_s);
        EXPECT_TRUE(target.ratio.numerator() == 0 || target.tempered == 0.0);
    }
    return told.join(u' ').toStdString();
}

} // namespace

// Worked out by a search through all ratios of each limit with big integers and fifty decimals.
TEST(TwelveSteps, AreTheSimplestRatiosOfTheWindowOrTheNearest)
{
    const struct
    {
        int limit;
        double window;
        const char* expected;
    } cases[] = {
        {2, 25, "1/1 1/1 1/1 1/1 1/1 1/1 1/1 2/1 2/1 2/1 2/1 2/1"},
        {3, 25, "1/1 256/243 9/8 32/27 81/64 4/3 729/512 3/2 128/81 27/16 16/9 243/128"},
        {3, 5, "1/1 256/243 9/8 32/27 81/64 4/3 729/512 3/2 128/81 27/16 16/9 243/128"},
        {5, 25, "1/1 16/15 9/8 6/5 5/4 4/3 45/32 3/2 8/5 5/3 9/5 15/8"},
        {5, 5,
         "1/1 62500/59049 9/8 1215/1024 19683/15625 4/3 78125/55296 3/2 31250/19683 2048/1215 16/9 "
         "59049/31250"},
        {5, 0.001,
         "1/1 78125/73728 134217728/119574225 51200000/43046721 19683/15625 10935/8192 94921875/67108864 "
         "16384/10935 31250/19683 43046721/25600000 119574225/67108864 147456/78125"},
        {7, 25, "1/1 15/14 9/8 6/5 5/4 4/3 7/5 3/2 8/5 5/3 9/5 15/8"},
        {7, 50, "1/1 15/14 8/7 6/5 5/4 4/3 7/5 3/2 8/5 5/3 7/4 15/8"},
        {11, 10, "1/1 35/33 9/8 25/21 44/35 4/3 45/32 3/2 35/22 27/16 16/9 66/35"},
        {31, 3, "1/1 18/17 55/49 19/16 29/23 4/3 65/46 3/2 27/17 32/19 57/32 17/9"},
    };
    for (const auto& [limit, window, expected] : cases) {
        QStringList told;
        for (const OrloRatio& ratio : twelvesteps::ratios(limit, window))
            told.append(u"%1/%2"_s.arg(ratio.numerator()).arg(ratio.denominator()));
        EXPECT_EQ(told.join(u' ').toStdString(), expected) << limit << ' ' << window;
    }
}

TEST(LayoutTable, TwelveStepsRepeatInOctavesFromTheRootKey)
{
    const Layout twelve = layoutOf(Kind::Twelve, 69);
    EXPECT_EQ(keys({twelve}, 1, 57, 58), "1/2 8/15");
    EXPECT_EQ(keys({twelve}, 16, 68, 82),
              "15/16 1/1 16/15 9/8 6/5 5/4 4/3 45/32 3/2 8/5 5/3 9/5 15/8 2/1 32/15");
    EXPECT_EQ(keys({twelve}, 1, 0, 0), "3/160");
}

TEST(LayoutTable, GeneratorsRunAlongKeysAndAcrossRows)
{
    Layout layout = layoutOf(Kind::Generators);
    layout.generators.along = OrloPathUnlimited(u"/3"_s);
    layout.generators.across = OrloPathUnlimited(u"/5"_s);
    layout.generators.rowLength = 3;
    EXPECT_EQ(keys({layout}, 5, 56, 66), "36/25 4/5 6/5 9/5 1/1 3/2 9/4 5/4 15/8 45/16 25/16");
    layout.generators.rows = Layout::Generators::Rows::OfChannels;
    layout.generators.rootChannel = 2;
    EXPECT_EQ(keys({layout}, 1, 59, 61), "8/15 4/5 6/5");
    EXPECT_EQ(keys({layout}, 4, 58, 61), "25/36 25/24 25/16 75/32");
}

TEST(LayoutTable, WhatLeaves64BitsIsTemperedAndNothingElse)
{
    Layout layout = layoutOf(Kind::Generators);
    layout.generators.along = OrloPathUnlimited(u"/3/3/3/3/-5/-2/-2"_s);
    layout.generators.rowLength = Layout::Generators::MAX_ROW_LENGTH;
    // 81^10 is just below 2^64.
    EXPECT_EQ(keys({layout}, 1, 70, 71), "12157665459056928801/10737418240000000000 ~236.569");
    // 50 fifths alone would not fit, but 15 go down again.
    layout.generators.along = OrloPathUnlimited(u"/3"_s);
    layout.generators.across = OrloPathUnlimited(u"/-3"_s);
    layout.generators.rows = Layout::Generators::Rows::OfChannels;
    EXPECT_EQ(keys({layout}, 16, 110, 110), "50031545098999707/34359738368");
}

TEST(LayoutTable, ScalesAreExactWhereTheLatticeHasTheirPrimes)
{
    Layout layout = layoutOf(Kind::Scala);
    layout.scala.scale =
        ScalaScale(u"x"_s, {ScalaPitch::of(OrloRatio(31, 29)), ScalaPitch::of(OrloRatio(37, 32)),
                            ScalaPitch::ofCents(701.955), ScalaPitch::of(OrloRatio(2, 1))});
    EXPECT_EQ(keys({layout}, 1, 59, 65), "~-498.045 1/1 31/29 ~251.344 ~701.955 2/1 62/29");
    layout.scala.keyboard = ScalaKeyboard{
        .first = 62, .last = 66, .middle = 62, .referenceFrequency = 100.0, .degrees = {0, std::nullopt, 4}};
    EXPECT_EQ(keys({layout}, 1, 61, 67), "- 1/1 - 2/1 2/1 - -");
    // Degrees and frequencies beyond all numbers.
    layout.scala.scale = ScalaScale(u"x"_s, {ScalaPitch::ofCents(1e9)});
    layout.scala.keyboard = std::nullopt;
    EXPECT_EQ(keys({layout}, 1, 59, 61), "- 1/1 -");
}

TEST(LayoutTable, HarmonicsRiseAndSubharmonicsFallWithoutPrimesBeyond31)
{
    const struct
    {
        Kind kind;
        Layout::Harmonics values;
        int from, to;
        const char* expected;
    } cases[] = {
        {Kind::Harmonics, {}, 58, 63, "- - 1/1 2/1 3/1 4/1"},
        {Kind::Harmonics, {.first = 8, .octaves = 3}, 59, 62, "7/8 1/1 9/8 5/4"},
        {Kind::Harmonics, {.first = 36}, 58, 64, "34/1 35/1 36/1 38/1 39/1 40/1 42/1"},
        {Kind::Harmonics, {.first = 37}, 59, 61, "36/1 38/1 39/1"},
        {Kind::Subharmonics, {}, 57, 61, "1/4 1/3 1/2 1/1 -"},
        {Kind::Subharmonics, {.first = 8, .octaves = 3}, 58, 62, "4/5 8/9 1/1 8/7 4/3"},
    };
    for (const auto& [kind, values, from, to, expected] : cases) {
        Layout layout = layoutOf(kind);
        layout.harmonics = values;
        EXPECT_EQ(keys({layout}, 1, from, to), expected);
    }
    Layout silent = layoutOf(Kind::Harmonics);
    silent.harmonics = {.first = 36, .beyond31 = Layout::Harmonics::Beyond31::Silent};
    EXPECT_EQ(keys({silent}, 1, 60, 63), "36/1 - 38/1 39/1");
    // A silent key stays silent whatever comes behind.
    EXPECT_EQ(keys({silent, layoutOf(Kind::Twelve)}, 1, 24, 25), "1/8 1/1");
    EXPECT_EQ(keys({silent, layoutOf(Kind::Twelve)}, 1, 61, 61), "-");
}

TEST(LayoutTable, TheFirstLayoutThatHasAKeyWins)
{
    Layout learned = layoutOf(Kind::Learned);
    learned.learned.keys = {{{Layout::Learned::ANY_CHANNEL, 60}, OrloRatio(7, 4)},
                            {{3, 60}, OrloRatio(11, 8)},
                            {{3, 62}, OrloRatio(37, 32)}};
    Layout twelve = layoutOf(Kind::Twelve);
    twelve.inputs = {u"one"_s};
    Layout series = layoutOf(Kind::Harmonics);
    series.firstChannel = 3;
    series.lastChannel = 4;
    const QList<Layout> all{learned, twelve, series};
    EXPECT_EQ(keys(all, 1, 60, 62, u"one"_s), "7/4 16/15 9/8");
    EXPECT_EQ(keys(all, 3, 60, 62, u"one"_s), "11/8 16/15 ~251.344");
    EXPECT_EQ(keys(all, 2, 60, 62, u"two"_s), "7/4 - -");
    EXPECT_EQ(keys(all, 4, 60, 62, u"two"_s), "7/4 2/1 3/1");
    learned.enabled = false;
    EXPECT_EQ(keys({series, learned}, 5, 60, 62), "- - -");
    EXPECT_EQ(keys({series, twelve}, 4, 59, 61, u"one"_s), "15/16 1/1 2/1");
}
