#include "model/LatticeSupport.h"
#include "model/OrloPathUnlimited.h"
#include "support/LocaleTest.h"
#include "support/LogCatcher.h"

#include <atomic>
#include <limits>
#include <memory>
#include <thread>

using Rational = OrloRatio::Rational;
using Integer = unsigned long long;

namespace {

constexpr Integer TWO_32 = 1ULL << 32;
constexpr Integer TWO_63 = 1ULL << 63;
constexpr Integer LARGEST = 0xFFFFFFFFFFFFFFFF;
constexpr Integer THREE_20 = 3486784401;
constexpr Integer THREE_40 = THREE_20 * THREE_20;
constexpr Integer THREE_38 = THREE_40 / 9;
constexpr Integer TWO_61 = 1ULL << 61;
constexpr Integer PRIME_31_6 = 887503681; // to the sixth power

class RatioTest : public LocaleTest, protected LatticeFixture
{
protected:
    void transposeBy(Integer n, Integer d) { orlo.onTransposed(OrloRatio(n, d), Orlo::FREE_TRANSPOSITION); }
};

TEST(PrimeTables, HoldTheOctaveReducedPrimes)
{
    const QList<int> primes{2, 3, 5, 7, 11, 13, 17, 19, 23, 29, 31};
    for (const int step : primes) {
        const int octave = step == 2 ? 1 : step < 4 ? 2 : step < 8 ? 4 : step < 16 ? 8 : 16;
        EXPECT_EQ(Orlo::primeRatio(step), static_cast<float>(step) / static_cast<float>(octave));
        EXPECT_EQ(Orlo::primeRatio(-step), static_cast<float>(octave) / static_cast<float>(step));
    }
    for (const int step : {-300, -4, -1, 0, 1, 9, 127, 259, std::numeric_limits<int>::min()})
        EXPECT_FALSE(Orlo::isValidPrime(step)) << step;
}

TEST_F(RatioTest, EqualityHashAndZero)
{
    EXPECT_EQ(OrloRatio(6, 4), OrloRatio(3, 2));
    EXPECT_FALSE(OrloRatio(3, 2) == OrloRatio(2, 3));
    EXPECT_EQ(qHash(OrloRatio(6, 4), 7), qHash(OrloRatio(3, 2), 7));
    EXPECT_THROW(OrloRatio(3, 0), boost::bad_rational);

    // Zero is no pitch, but nothing may run for ever on it.
    const OrloRatio zero;
    EXPECT_EQ(zero.toStringAbs(), u"0/1"_s);
    EXPECT_EQ(std::unique_ptr<OrloPath>(zero.getPathFromRatio())->length(), 0);
    EXPECT_EQ(std::unique_ptr<OrloPathUnlimited>(zero.getUnlimitedPathFromRatio())->length(), 0);
}

TEST_F(RatioTest, TheSecondFieldIsAssignedButNotCopied)
{
    orlo.onTransposed(OrloRatio(3, 2), 3);
    const OrloRatio third(OrloPath(u"/5"_s));
    EXPECT_EQ(third.ratio(), Rational(5, 4));
    EXPECT_EQ(third.absoluteRatio(), Rational(15, 8)); // 3/2 * 5/4
    EXPECT_EQ(OrloRatio(third), third);
    EXPECT_EQ(OrloRatio(third).absoluteRatio(), Rational(0, 1));
    OrloRatio assigned;
    assigned = third;
    assigned *= OrloRatio(OrloPathUnlimited(u"/-3/-3"_s)); // 4/9
    EXPECT_EQ(assigned.ratio(), Rational(5, 9));
    EXPECT_EQ(assigned.absoluteRatio(), Rational(15, 8));
    assigned.storeFromAbsolutePath(OrloPath(u"/-3"_s));
    EXPECT_EQ(assigned.ratio(), Rational(5, 9));
    EXPECT_EQ(assigned.absoluteRatio(), Rational(1, 1));
    assigned.storeFromAbsolutedPath(OrloPathUnlimited(u"/2"_s));
    EXPECT_EQ(assigned.absoluteRatio(), Rational(3, 1));
    EXPECT_EQ(OrloPath(static_cast<signed char>(127)).toRatio(), OrloRatio(1, 1))
        << "no prime leaves it alone";
}

TEST_F(RatioTest, TextsReduceIntoOneOctaveForDisplayOnly)
{
    const std::tuple<Integer, Integer, const char*, const char*> rows[] = {
        // ratio, within an octave, plain
        {1, 1, "1/1", "1/1"},
        {3, 1, "3/2", "3/1"},
        {2, 3, "4/3", "2/3"},
        {2, 1, "1/1", "2/1"},
        {1, 2, "1/1", "1/2"},
        {0, 1, "0/1", "0/1"},
        {16, 27, "32/27", "16/27"},
        {12, 5, "6/5", "12/5"},
        // The edges of 64 bits: what does not fit stays out of the octave.
        {LARGEST, 1, "18446744073709551615/9223372036854775808", "18446744073709551615/1"},
        {LARGEST - 1, 1, "9223372036854775807/4611686018427387904", "18446744073709551614/1"},
        {TWO_63 + 1, TWO_63, "9223372036854775809/9223372036854775808",
         "9223372036854775809/9223372036854775808"},
        {1, LARGEST, "9223372036854775808/18446744073709551615", "1/18446744073709551615"},
        {TWO_63 + 1, LARGEST - 2, "9223372036854775809/18446744073709551613",
         "9223372036854775809/18446744073709551613"},
    };
    for (const auto& [n, d, within, plain] : rows) {
        settings.ratiosWithinOctave = true;
        EXPECT_EQ(OrloRatio(n, d).toString().toStdString(), within) << plain;
        settings.ratiosWithinOctave = false;
        EXPECT_EQ(OrloRatio(n, d).toString().toStdString(), plain);
    }
}

TEST_F(RatioTest, AbsoluteAndRelative)
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
    constexpr Integer odd = 100280245065;   // the product of all odd primes up to 31
    constexpr Integer octaves = 1ULL << 31; // the product of the largest powers of 2 below them
    const std::tuple<OrloRatio, const char*, const char*> rows[] = {
        // the ratio, its path, and what its unlimited path has behind that
        {{1, 1}, "/", ""},
        {{9, 8}, "/3/3/-2", ""},
        {{1, 4}, "/-2/-2", ""},
        {{3, 1}, "/3/2", ""},
        {{10, 21}, "/5/-3/-7", ""},           // 5/4 * 2/3 * 4/7
        {{81, 80}, "/3/3/3/3/-5/-2", "/-2"},  // 81/16 * 4/5 = 81/20, two octaves too high
        {{111, 64}, "/3/-2/-2/-2/-2/-2", ""}, // 37 is dropped, its octaves are not
        {{odd, octaves}, "/3/5/7/11/13/17", "/19/23/29/31"},
        {{octaves, odd}, "/-3/-5/-7/-11/-13/-17", "/-19/-23/-29/-31"},
    };
    for (const auto& [ratio, path, behind] : rows) {
        const std::unique_ptr<OrloPathUnlimited> unlimited(ratio.getUnlimitedPathFromRatio());
        EXPECT_EQ(std::unique_ptr<OrloPath>(ratio.getPathFromRatio())->toString().toStdString(), path);
        EXPECT_EQ(unlimited->toString().toStdString(), std::string(path) + behind);
        EXPECT_TRUE(unlimited->toRatio() == ratio || ratio == OrloRatio(111, 64)) << path;
    }
}

TEST(RatioProducts, AreGuardedAtTheEdgeOf64Bits)
{
    // `fits` is the truth of integers without a limit. `can` is the answer of the comparison in
    // floating point, which misses what wraps from one tiny value to another.
    const std::tuple<OrloRatio, OrloRatio, bool, bool> rows[] = {
        {{TWO_32, 1}, {TWO_32, 1}, false, false},
        {{TWO_32, 1}, {TWO_32 / 2, 1}, true, true},
        {{LARGEST, 1}, {2, 1}, false, false},
        {{LARGEST, 3}, {3, 1}, true, true},
        {{THREE_40, TWO_63}, {3, 2}, false, false},
        {{THREE_40, TWO_63}, {2, 1}, true, true},
        {{1, TWO_32}, {1, TWO_32}, false, false},
        {{1, TWO_32}, {3, TWO_32 / 2}, true, true},
        {{1, THREE_40}, {1, 2}, false, true},
        {{1, LARGEST}, {1, 2}, false, true},
        {{TWO_63, 1}, {1, TWO_63}, true, true},
        {{THREE_20, TWO_32}, {TWO_32, THREE_20}, true, true},
        {{PRIME_31_6, 1 << 24}, {PRIME_31_6, 1 << 24}, true, true},
        {{PRIME_31_6, 1 << 24}, {31 * PRIME_31_6, 1 << 28}, false, false},
        {{TWO_32 + 1, 1}, {TWO_32 + 1, 1}, false, false},
        {{(1ULL << 53) + 1, 1}, {1, 1}, true, true},
        {{3, 2}, {5, 4}, true, true},
        {{0, 1}, {5, 4}, true, true},
        {{5 * THREE_38, TWO_61}, {5 * TWO_61, THREE_38}, true, true}, // only when both pairs cancel
    };
    for (const auto& [a, b, fits, can] : rows) {
        SCOPED_TRACE(::testing::Message() << a.numerator() << '/' << a.denominator() << " * " << b.numerator()
                                          << '/' << b.denominator());
        EXPECT_EQ(a.fitsWhenMultipliedWith(b), fits);
        EXPECT_EQ(b.fitsWhenMultipliedWith(a), fits);
        EXPECT_EQ(a.canMultiplyWith(b), can);
    }
}

TEST(PublishedRatioStress, NoReaderSeesAMixedPair)
{
    // The writer publishes pairs n / ~n as fast as it can, much faster than any player, for as long
    // as the reader has not had its fill: on a busy machine that may start late.
    PublishedRatio published;
    EXPECT_EQ(published.read().numerator, 1U);
    published.publish({0, LARGEST});
    std::atomic<bool> isReading{true};
    int mixed = 0;
    int backwards = 0;
    std::thread reader([&] {
        Integer last = 0;
        for (int reads = 0; reads < 2'000'000; ++reads) {
            const PublishedRatio::Value value = published.read();
            mixed += value.denominator != ~value.numerator ? 1 : 0;
            backwards += value.numerator < last ? 1 : 0;
            last = value.numerator;
        }
        isReading = false;
    });
    Integer n = 0;
    for (; isReading; published.publish({n, ~n}))
        ++n;
    reader.join();
    EXPECT_EQ(mixed, 0);
    EXPECT_EQ(backwards, 0);
    EXPECT_EQ(published.read().numerator, n);
}

} // namespace
