#include "harmony/IntervalNames.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QSet>
#include <QStringList>

#include <array>
#include <cmath>

using intervalnames::Entry;

namespace {

double centsOf(const Entry& entry)
{
    return static_cast<double>(
        1200.0L
        * std::log2(static_cast<long double>(entry.numerator) / static_cast<long double>(entry.denominator)));
}

/// Of exponents such as "-4 4 -1".
WideRatio ratioOf(const QString& exponents)
{
    constexpr std::array PRIMES{2, 3, 5, 7, 11, 13, 17, 19, 23, 29, 31};
    WideRatio ratio = 1;
    const QStringList numbers = exponents.split(u' ');
    for (qsizetype i = 0; i < numbers.size(); ++i) {
        const int exponent = numbers[i].toInt();
        const WideInt power =
            pow(WideInt(PRIMES.at(static_cast<std::size_t>(i))), static_cast<unsigned>(qAbs(exponent)));
        ratio *= exponent < 0 ? WideRatio(1, power) : WideRatio(power);
    }
    return ratio;
}

} // namespace

// The file has each name with the exponents by which it is defined: commas as tuning theory writes them,
// Pythagorean names by their place in the chain of fifths.
TEST(IntervalNames, EachHasItsRatioAndCents)
{
    QFile file(QStringLiteral(ORLO_TEST_DATA "/interval_names.tsv"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const auto table = intervalnames::table();
    ASSERT_GE(table.size(), 250U);
    QSet<QString> names;
    std::size_t at = 0;
    while (!file.atEnd()) {
        const QString line = QString::fromLatin1(file.readLine()).trimmed();
        if (line.startsWith(u'#'))
            continue;
        const QStringList fields = line.split(u'\t');
        ASSERT_EQ(fields.size(), 3) << line.toStdString();
        ASSERT_LT(at, table.size());
        const Entry& entry = table[at++];
        EXPECT_EQ(QString::fromLatin1(entry.name), fields[0]);
        EXPECT_EQ(intervalnames::nameOf(ratioOf(fields[1])), fields[0]);
        EXPECT_NEAR(centsOf(entry), fields[2].toDouble(), 1e-8) << entry.name;
        EXPECT_TRUE(at < 2 || centsOf(table[at - 2]) < centsOf(entry)) << entry.name;
        EXPECT_FALSE(names.contains(fields[0])) << entry.name;
        names.insert(fields[0]);
    }
    EXPECT_EQ(at, table.size());
}

TEST(IntervalNames, OfIntervalsCommasAndTheirPowers)
{
    const WideInt huge = pow(WideInt(2), 90);
    const struct
    {
        WideRatio ratio;
        const char* name;
        const char* comma;
        const char* power;
    } cases[] = {
        {WideRatio(3, 2), "perfect fifth", "", ""},
        {WideRatio(2, 3), "perfect fifth", "", ""},
        {WideRatio(3), "perfect fifth + 1 octave", "", ""},
        {WideRatio(1, 6), "perfect fifth + 2 octaves", "", ""},
        {WideRatio(2), "octave", "", ""},
        {WideRatio(1, 4), "2 octaves", "", ""},
        {WideRatio(1), "", "", ""},
        {WideRatio(37, 32), "", "", ""},
        {WideRatio(81, 80), "syntonic comma", "syntonic comma", ""},
        {WideRatio(80, 81), "syntonic comma", "syntonic comma", ""},
        {WideRatio(81, 20), "syntonic comma + 2 octaves", "", ""},
        {WideRatio(6561, 6400), "", "", "2 syntonic comma"},
        {WideRatio(512000, 531441), "", "", "3 syntonic comma"},
        {WideRatio(4096, 3969), "", "", "2 septimal comma"},
        // Neither a fourth power of it nor 37/36 of one.
        {WideRatio(6561, 1600), "", "", ""},
        {WideRatio(6561 * 37, 6400 * 37 + 6400), "", "", ""},
        {WideRatio(6561, 25), "", "", ""},
        {WideRatio(pow(WideInt(531441), 5), pow(WideInt(524288), 5)), "", "", "5 Pythagorean comma"},
        {WideRatio(5 * huge, 4), "major third + 90 octaves", "", ""},
    };
    for (const auto& [ratio, name, comma, power] : cases) {
        const std::string told = ratio.str();
        EXPECT_EQ(intervalnames::nameOf(ratio).toStdString(), name) << told;
        EXPECT_EQ(intervalnames::commaNameOf(ratio).toStdString(), comma) << told;
        const auto found = intervalnames::powerOfComma(ratio);
        EXPECT_EQ(found ? std::to_string(found->count) + ' ' + found->name.toStdString() : "", power) << told;
    }
}

TEST(IntervalNames, TheNearestOne)
{
    const struct
    {
        double cents;
        double within;
        const char* expected;
        double rest;
    } cases[] = {
        {700.0, 5.0, "perfect fifth", 700.0 - 701.9550008654},
        {-704.0, 5.0, "perfect fifth", 704.0 - 701.9550008654},
        {1900.0, 5.0, "perfect fifth + 1 octave", -1.9550008654},
        {2401.0, 5.0, "2 octaves", 1.0},
        {650.0, 1.0, "", 0.0},
        {5.0, 10.0, "", 0.0},
        {22.0, 6.0, "septimal comma", 22.0 - 27.2640918002},
    };
    for (const auto& [cents, within, expected, rest] : cases) {
        const auto found = intervalnames::nearestTo(cents, within);
        EXPECT_EQ(found ? intervalnames::nameOf(*found).toStdString() : "", expected) << cents;
        EXPECT_NEAR(found ? found->cents : 0.0, rest, 1e-9) << cents;
    }
}
