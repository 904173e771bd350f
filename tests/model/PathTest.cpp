#include "model/OrloPath.h"
#include "model/OrloPathUnlimited.h"
#include "support/LocaleTest.h"
#include "support/LogCatcher.h"

#include <tuple>
#include <type_traits>

using namespace Qt::StringLiterals;

namespace {

class PathTexts : public LocaleTest
{
};

TEST_F(PathTexts, ReadAndPrint)
{
    const std::tuple<const char*, const char*, QList<int>> rows[] = {
        {"", "/", {}},
        {"//", "/", {}},
        {"/-2/3/3", "/-2/3/3", {-2, 3, 3}},
        {"3//5/", "/3/5", {3, 5}},
        {"/31/-29/23/-19/17/-13", "/31/-29/23/-19/17/-13", {31, -29, 23, -19, 17, -13}},
        {"/-31/11/-7", "/-31/11/-7", {-31, 11, -7}},
    };
    for (const auto& [text, printed, steps] : rows) {
        SCOPED_TRACE(text);
        const OrloPath path{QLatin1StringView(text)};
        const OrloPathUnlimited unlimited{QLatin1StringView(text)};
        EXPECT_EQ(path.toString().toStdString(), printed);
        EXPECT_EQ(unlimited.parseToString().toStdString(), printed);
        EXPECT_EQ(path.toList(), steps);
        EXPECT_EQ(unlimited.toList(), steps);
        EXPECT_EQ(OrloPath(path.toString()), path);
        EXPECT_TRUE(path.isValid());
    }
}

template <class Path>
class EitherPath : public ::testing::Test
{
protected:
    static constexpr int LIMIT = std::is_same_v<Path, OrloPath> ? 6 : 100;
    static Path of(int steps) { return Path(u"/3"_s.repeated(steps)); }
};
using BothPaths = ::testing::Types<OrloPath, OrloPathUnlimited>;
TYPED_TEST_SUITE(EitherPath, BothPaths);

TYPED_TEST(EitherPath, RefusesWhatIsNoPrimeOfTheLattice)
{
    for (const char* text : {"/3/x", "/4", "/33", "/0", "/1", "/-1", "/-32", "/37", "/127", "/131", "/259",
                             "/3.0", "/3,5", "/ ", "/2147483651", "/-99999999999999999999", "/3/5/7/0/3"}) {
        SCOPED_TRACE(text);
        const LogCatcher log;
        TypeParam path{QLatin1StringView(text)};
        EXPECT_FALSE(path.isValid());
        EXPECT_EQ(path.toString(), u"/127"_s);
        EXPECT_EQ(log.count(QtDebugMsg, u"Invalid path: "_s + QLatin1StringView(text)), 1);
        path.storeFromString(u"/5"_s);
        EXPECT_TRUE(path.isValid());
        EXPECT_EQ(path.toString(), u"/5"_s);
    }
}

TYPED_TEST(EitherPath, KeepsTheLimitButForOneStepOfAConcatenation)
{
    constexpr int limit = TestFixture::LIMIT;
    TypeParam path(u"/3"_s.repeated(limit) + u"/5/x"_s); // not even looked at behind the limit
    EXPECT_EQ(path, this->of(limit));
    path.addLeaf(5);
    EXPECT_EQ(path, this->of(limit));
    path.removeLeaf();
    EXPECT_EQ(path, this->of(limit - 1));
    path.addLeaf(-31);
    EXPECT_EQ(path.length(), limit);
    EXPECT_EQ(path.toList().last(), -31);

    TypeParam over = this->of(limit) + TypeParam(u"/5/7"_s);
    over.removeLeaf(); // too full to be touched
    over.addLeaf(7);
    TypeParam assigned;
    assigned = over;
    for (const TypeParam& same : {over, assigned, over + TypeParam(u"/7"_s)}) {
        EXPECT_EQ(same.length(), limit + 1);
        EXPECT_EQ(same.toList().last(), 5);
    }
    EXPECT_EQ((this->of(1) + over).length(), limit + 1);
    EXPECT_EQ(TypeParam(over.toString()), this->of(limit)) << "its text reads back without the extra step";
}

TYPED_TEST(EitherPath, WhatLiesBehindTheEndIsNotPartOfTheValue)
{
    TypeParam path(u"/3/5/7"_s);
    path.removeLeaf();
    EXPECT_EQ(path, TypeParam(u"/3/5"_s));
    EXPECT_EQ(qHash(path, 5), qHash(TypeParam(u"/3/5"_s), 5));
    EXPECT_FALSE(path == TypeParam(u"/3/-5"_s));
    for (int i = 0; i < 4; ++i)
        path.removeLeaf();
    EXPECT_EQ(path.toString(), u"/"_s);
}

TEST(UnlimitedPath, HighestPrimeAndFixedPaths)
{
    const std::pair<const char*, int> rows[] = {{"/", 1}, {"/-2", 2}, {"/-31/29", 31}, {"/7/-5", 7}};
    for (const auto& [text, highest] : rows)
        EXPECT_EQ(OrloPathUnlimited(QLatin1StringView(text)).getHighestPrime(), highest) << text;
    const OrloPath full = OrloPath(u"/3/3/3/3/3/3"_s) + OrloPath(u"/-5"_s);
    EXPECT_EQ(OrloPathUnlimited(&full).toString(), u"/3/3/3/3/3/3/-5"_s);
}

} // namespace
