#include "app/Accessors.h"
#include "app/Settings.h"
#include "model/Orlo.h"
#include "model/OrloPath.h"
#include "model/OrloPathUnlimited.h"
#include "model/OrloRatio.h"
#include "support/LocaleTest.h"
#include "support/LogCatcher.h"

#include <atomic>
#include <limits>
#include <memory>
#include <thread>

using namespace Qt::StringLiterals;
using Rational = OrloRatio::Rational;
using Integer = unsigned long long;

namespace {

constexpr Integer TWO_63 = 1ULL << 63;
constexpr Integer LARGEST = 0xFFFFFFFFFFFFFFFF;
constexpr Integer THREE_20 = 3486784401;
constexpr Integer THREE_40 = 12157665459056928801ULL;

class RatioTest : public LocaleTest
{
protected:
    RatioTest() { app::setParts({.orlo = &orlo, .settings = &settings}); }
    ~RatioTest() override { app::setParts({}); }

    void transposeBy(Integer n, Integer d) { orlo.onTransposed(OrloRatio(n, d), Orlo::FREE_TRANSPOSITION); }

    Settings settings;
    Orlo orlo;
};
IN_ALL_LOCALES(RatioTest);

TEST(PrimeTables, HoldTheOctaveReducedPrimes)
{
    const QList<int> primes{1, 2, 3, 5, 7, 11, 13, 17, 19, 23, 29, 31};
    EXPECT_EQ(QList<int>(OrloConstants::PRIMES.begin(), OrloConstants::PRIMES.end()), primes);

    const struct
    {
        int prime;
        Rational rational;
        float ratio;
    } rows[] = {{2, {2, 1}, 2.0F},       {3, {3, 2}, 1.5F},       {5, {5, 4}, 1.25F},     {7, {7, 4}, 1.75F},
                {11, {11, 8}, 1.375F},   {13, {13, 8}, 1.625F},   {17, {17, 16}, 1.0625F}, {19, {19, 16}, 1.1875F},
                {23, {23, 16}, 1.4375F}, {29, {29, 16}, 1.8125F}, {31, {31, 16}, 1.9375F}};
    for (const auto& row : rows) {
        EXPECT_EQ(OrloConstants::PRIME_RATIONALS.at(row.prime), row.rational) << row.prime;
        EXPECT_EQ(OrloConstants::PRIME_RATIOS.at(row.prime), row.ratio) << row.prime;
        EXPECT_EQ(Orlo::primeRatio(row.prime), row.ratio) << row.prime;
        EXPECT_EQ(Orlo::primeRatio(-row.prime), 1.0F / row.ratio) << row.prime;
    }
    EXPECT_EQ(Orlo::primeRatio(0), -1.0F);
    EXPECT_EQ(Orlo::primeRatio(1), -1.0F);

    for (int step = -300; step <= 300; ++step)
        EXPECT_EQ(Orlo::isValidPrime(step), qAbs(step) > 1 && primes.contains(qAbs(step))) << step;
    EXPECT_FALSE(Orlo::isValidPrime(std::numeric_limits<int>::min()));
}

TEST(RatioValue, EqualityHashAndZero)
{
    EXPECT_EQ(OrloRatio(6, 4), OrloRatio(3, 2));
    EXPECT_FALSE(OrloRatio(3, 2) == OrloRatio(2, 3));
    EXPECT_EQ(qHash(OrloRatio(6, 4), 9), qHash(OrloRatio(3, 2), 9));
    EXPECT_EQ(qHash(OrloRatio(3, 2), 7), 6822U);               // (7 * 31 + 3) * 31 + 2
    EXPECT_EQ(qHash(OrloRatio(LARGEST, 1), 0), LARGEST - 29);  // (-1) * 31 + 1
    EXPECT_EQ(qHash(OrloRatio(LARGEST, 1), 1), 931U);          // (31 - 1) * 31 + 1
    EXPECT_EQ(OrloRatio().ratio(), Rational(0, 1));
    EXPECT_THROW(OrloRatio(3, 0), boost::bad_rational);
    EXPECT_THROW(OrloRatio(0, 0), boost::bad_rational);

    // Zero is no pitch, but nothing may run for ever on it.
    const OrloRatio zero;
    EXPECT_EQ(zero.toString(), u"0/1"_s);
    EXPECT_EQ(zero.toStringAbs(), u"0/1"_s);
    EXPECT_EQ(zero.getAbsRatio(), Rational(0, 1));
    EXPECT_EQ(std::unique_ptr<OrloPath>(zero.getPathFromRatio())->length(), 0);
    EXPECT_EQ(std::unique_ptr<OrloPathUnlimited>(zero.getUnlimitedPathFromRatio())->length(), 0);
}

TEST_P(RatioTest, TheSecondFieldIsAssignedButNotCopied)
{
    orlo.onTransposed(OrloRatio(3, 2), 3);
    const OrloRatio third(OrloPath(u"/5"_s));
    EXPECT_EQ(third.ratio(), Rational(5, 4));
    EXPECT_EQ(third.absoluteRatio(), Rational(15, 8)); // 3/2 * 5/4
    const OrloRatio copy(third);
    EXPECT_EQ(copy, third);
    EXPECT_EQ(copy.absoluteRatio(), Rational(0, 1));
    EXPECT_EQ(OrloRatio(third.ratio()).absoluteRatio(), Rational(0, 1));
    OrloRatio assigned;
    assigned = third;
    EXPECT_EQ(assigned.absoluteRatio(), Rational(15, 8));

    assigned *= OrloRatio(OrloPathUnlimited(u"/-3/-3"_s)); // 4/9
    EXPECT_EQ(assigned.ratio(), Rational(5, 9));
    EXPECT_EQ(assigned.absoluteRatio(), Rational(15, 8));
    assigned.storeFromAbsolutePath(OrloPath(u"/-3"_s));
    EXPECT_EQ(assigned.ratio(), Rational(5, 9));
    EXPECT_EQ(assigned.absoluteRatio(), Rational(1, 1));
    assigned.storeFromAbsolutedPath(OrloPathUnlimited(u"/2"_s));
    EXPECT_EQ(assigned.absoluteRatio(), Rational(3, 1));

    EXPECT_EQ(OrloPath(u"/3/-3"_s).toRatio(), OrloRatio(1, 1));
    EXPECT_EQ(OrloPathUnlimited(u"/-3/7"_s).toRatio(), OrloRatio(7, 6)); // 2/3 * 7/4
    EXPECT_EQ(OrloPath(static_cast<signed char>(127)).toRatio(), OrloRatio(1, 1)) << "no prime leaves it alone";
}

TEST_P(RatioTest, TextsReduceIntoOneOctaveForDisplayOnly)
{
    const struct
    {
        Integer n, d;
        const char* within;
        const char* plain;
    } rows[] = {
        {1, 1, "1/1", "1/1"},
        {3, 1, "3/2", "3/1"},
        {2, 3, "4/3", "2/3"},
        {2, 1, "1/1", "2/1"},
        {1, 2, "1/1", "1/2"},
        {0, 1, "0/1", "0/1"},
        {5, 1, "5/4", "5/1"},
        {1, 3, "4/3", "1/3"},
        {16, 27, "32/27", "16/27"},
        {12, 5, "6/5", "12/5"},
        // The edges of 64 bits: what does not fit stays out of the octave.
        {LARGEST, 1, "18446744073709551615/9223372036854775808", "18446744073709551615/1"},
        {LARGEST - 1, 1, "9223372036854775807/4611686018427387904", "18446744073709551614/1"},
        {TWO_63 + 1, TWO_63, "9223372036854775809/9223372036854775808", "9223372036854775809/9223372036854775808"},
        {1, LARGEST, "9223372036854775808/18446744073709551615", "1/18446744073709551615"},
        {TWO_63 + 1, LARGEST - 2, "9223372036854775809/18446744073709551613", "9223372036854775809/18446744073709551613"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.plain);
        const OrloRatio ratio(row.n, row.d);
        settings.ratiosWithinOctave = true;
        EXPECT_EQ(ratio.toString().toStdString(), row.within);
        settings.ratiosWithinOctave = false;
        EXPECT_EQ(ratio.toString().toStdString(), row.plain);
    }
}

TEST_P(RatioTest, AbsoluteAndRelative)
{
    transposeBy(3, 2);
    EXPECT_EQ(OrloRatio(4, 3).getAbsRatio(), Rational(2, 1));
    EXPECT_EQ(OrloRatio(2, 1).getRelativeFromAbsoluteRatio(), Rational(4, 3));
    EXPECT_EQ(OrloRatio(4, 3).toStringAbs(), u"1/1"_s);
    settings.ratiosWithinOctave = false;
    EXPECT_EQ(OrloRatio(4, 3).toStringAbs(), u"2/1"_s);

    // Only the lattice's primes cancel before printing; the value itself is in lowest terms.
    transposeBy(1, 37);
    EXPECT_EQ(OrloRatio(37, 1).toStringAbs(), u"37/37"_s);
    EXPECT_EQ(OrloRatio(37, 1).getAbsRatio(), Rational(1, 1));

    // The product wraps before it cancels: (3^21 mod 2^24) / (3^20 mod 2^24), not 3/1.
    transposeBy(1ULL << 40, THREE_20);
    EXPECT_EQ(OrloRatio(THREE_20 * 3, 1ULL << 40).getAbsRatio(), Rational(8147635, 13900689));
    transposeBy(3, 1ULL << 40);
    EXPECT_THROW(OrloRatio(1, 1ULL << 40).getAbsRatio(), boost::bad_rational) << "a denominator of 2^80";
}

TEST(RatioPaths, AreCanonical)
{
    const struct
    {
        Integer n, d;
        const char* path;
        const char* unlimited;
    } rows[] = {
        {1, 1, "/", "/"},
        {3, 2, "/3", "/3"},
        {2, 3, "/-3", "/-3"},
        {9, 8, "/3/3/-2", "/3/3/-2"},
        {3, 1, "/3/2", "/3/2"},
        {15, 8, "/3/5", "/3/5"},
        {7, 5, "/7/-5", "/7/-5"},
        {1, 4, "/-2/-2", "/-2/-2"},
        {31, 29, "/31/-29", "/31/-29"},
        {10, 21, "/5/-3/-7", "/5/-3/-7"},                // 5/4 * 2/3 * 4/7
        {81, 80, "/3/3/3/3/-5/-2", "/3/3/3/3/-5/-2/-2"}, // 81/16 * 4/5 = 81/20, two octaves too high
        {111, 64, "/3/-2/-2/-2/-2/-2", "/3/-2/-2/-2/-2/-2"}, // 37 is dropped, its octaves are not
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.unlimited);
        const OrloRatio ratio(row.n, row.d);
        const std::unique_ptr<OrloPath> path(ratio.getPathFromRatio());
        const std::unique_ptr<OrloPathUnlimited> unlimited(ratio.getUnlimitedPathFromRatio());
        EXPECT_EQ(path->toString().toStdString(), row.path);
        EXPECT_EQ(unlimited->toString().toStdString(), row.unlimited);
    }
}

TEST(RatioPaths, RoundTripOverAllPrimes)
{
    // Every product of the ten odd primes with exponents -1, 0 and 1, spread over some octaves.
    constexpr Integer ODD[] = {3, 5, 7, 11, 13, 17, 19, 23, 29, 31};
    for (int code = 0; code < 59049; ++code) {
        Integer n = 1;
        Integer d = 1;
        QList<int> up;
        QList<int> down;
        for (int rest = code, i = 0; i < 10; ++i, rest /= 3) {
            if (rest % 3 == 1) {
                n *= ODD[i];
                up.append(static_cast<int>(ODD[i]));
            } else if (rest % 3 == 2) {
                d *= ODD[i];
                down.append(-static_cast<int>(ODD[i]));
            }
        }
        (code % 2 ? n : d) <<= code % 17;
        const OrloRatio ratio(n, d);
        const std::unique_ptr<OrloPathUnlimited> path(ratio.getUnlimitedPathFromRatio());
        ASSERT_EQ(path->toRatio(), ratio) << n << '/' << d;
        ASSERT_EQ(path->toList().first(up.size() + down.size()), up + down) << n << '/' << d;
    }
}

TEST(RatioProducts, AreGuardedAtTheEdgeOf64Bits)
{
    // `fits` is the truth of integers without a limit. `can` is the answer of the comparison in
    // floating point, which misses what wraps from one tiny value to another.
    const struct
    {
        OrloRatio a, b;
        bool fits, can;
    } rows[] = {
        {{3, 2}, {5, 4}, true, true},
        {{1ULL << 32, 1}, {1ULL << 31, 1}, true, true},
        {{1ULL << 32, 1}, {1ULL << 32, 1}, false, false},
        {{LARGEST, 3}, {3, 1}, true, true},
        {{LARGEST, 1}, {2, 1}, false, false},
        {{TWO_63, 1}, {1, TWO_63}, true, true},
        {{THREE_20, 1ULL << 31}, {1ULL << 31, THREE_20}, true, true},
        {{THREE_40, TWO_63}, {2, 1}, true, true},
        {{THREE_40, TWO_63}, {3, 2}, false, false},
        {{1, THREE_40}, {1, 2}, false, true},
        {{1, LARGEST}, {1, 2}, false, true},
        {{1, 1ULL << 32}, {1, 1ULL << 32}, false, false},
        {{1, 1ULL << 32}, {3, 1ULL << 31}, true, true},
        {{887503681, 1 << 24}, {887503681, 1 << 24}, true, true},         // 31^6, twice
        {{887503681, 1 << 24}, {27512614111, 1 << 28}, false, false},     // 31^6 and 31^7
        {{LARGEST, TWO_63}, {1, 2}, false, false},
        {{4294967297, 1}, {4294967297, 1}, false, false},                 // (2^32 + 1)^2
        {{(1ULL << 53) + 1, 1}, {1, 1}, true, true},
        {{0, 1}, {5, 4}, true, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::Message() << row.a.numerator() << '/' << row.a.denominator() << " * "
                                          << row.b.numerator() << '/' << row.b.denominator());
        EXPECT_EQ(row.a.fitsWhenMultipliedWith(row.b), row.fits);
        EXPECT_EQ(row.b.fitsWhenMultipliedWith(row.a), row.fits);
        EXPECT_EQ(row.a.canMultiplyWith(row.b), row.can);
    }
}

TEST_P(RatioTest, AProductThatWrapsIsLogged)
{
    settings.ratiosWithinOctave = false;
    const LogCatcher log;
    EXPECT_TRUE(OrloRatio(3, 2).canMultiplyWith(OrloRatio(5, 4)));
    EXPECT_FALSE(OrloRatio(1ULL << 40, 1).canMultiplyWith(OrloRatio(1ULL << 30, 1))); // 2^70 wraps to 0
    ASSERT_EQ(log.lines().size(), 1);
    EXPECT_EQ(log.lines()[0].type, QtDebugMsg);
    EXPECT_EQ(log.lines()[0].text.toStdString(),
              "canMultiply fail on 1099511627776/1 * 1073741824/1:\n  test product: 0, real product: 1.18059e+21");
}

TEST(PublishedRatioStress, NoReaderSeesAMixedPair)
{
    // The writer publishes pairs n / ~n as fast as it can, much faster than any player, for as long
    // as the reader has not had its fill: on a busy machine that may start late.
    constexpr Integer READS = 2'000'000;
    PublishedRatio published;
    EXPECT_EQ(published.read().numerator, 1U);
    published.publish({0, LARGEST});
    std::atomic<bool> isReading{true};
    Integer mixed = 0;
    Integer backwards = 0;
    std::thread reader([&] {
        Integer last = 0;
        for (Integer reads = 0; reads < READS; ++reads) {
            const PublishedRatio::Value value = published.read();
            mixed += value.denominator != ~value.numerator ? 1 : 0;
            backwards += value.numerator < last ? 1 : 0;
            last = value.numerator;
        }
        isReading = false;
    });
    Integer n = 0;
    while (isReading) {
        ++n;
        published.publish({n, ~n});
    }
    reader.join();
    EXPECT_EQ(mixed, 0U);
    EXPECT_EQ(backwards, 0U);
    EXPECT_EQ(published.read().numerator, n);
}

} // namespace
