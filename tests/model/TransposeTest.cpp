#include "model/LatticeSupport.h"
#include "support/LogCatcher.h"

#include <vector>

using namespace Qt::StringLiterals;

namespace {

/// The sanitizers object to comparing an emptied QList.
using Steps = std::vector<int>;

Steps stepsOf(const QList<int>& list)
{
    return {list.begin(), list.end()};
}

class TransposeTest : public ::testing::Test, protected LatticeFixture
{
};

TEST_F(TransposeTest, OppositeStepsCancel)
{
    const struct
    {
        Steps steps, left;
    } rows[] = {
        {{}, {}},
        {{3, 5, -3}, {5}},
        {{3, 5, -5, -3}, {}},
        {{-3, 3, 3}, {3}},
        {{5, 3, 3, -3, -3, -5}, {}},
        {{2, -3, 5, -2}, {-3, 5}},
        {{3, 5, 3, -3, 7}, {3, 5, 7}}, // the nearer of the two goes
        {{3, 3, 5}, {3, 3, 5}},
    };
    for (const auto& row : rows) {
        QList<int> steps(row.steps.begin(), row.steps.end());
        Orlo::removeOppositePairs(steps);
        EXPECT_EQ(stepsOf(steps), row.left) << ::testing::PrintToString(row.steps);
    }
}

TEST_F(TransposeTest, StepsAndRatioFollowThePlayer)
{
    const struct
    {
        unsigned long long n, d;
        int step;
        Steps steps;
    } rows[] = {
        {3, 2, 3, {3}},
        {15, 8, 5, {3, 5}},
        {5, 4, -3, {5}},
        {1, 1, -5, {}},
        {1, 1, 0, {}},                                                      // an empty list is reset all the same
        {81, 80, Orlo::FREE_TRANSPOSITION, {3, 3, 3, 3, -5, -2, -2}},       // its canonical steps
        {27, 40, -3, {3, 3, 3, -5, -2, -2}},
        {9, 8, Orlo::FREE_TRANSPOSITION, {3, 3, -2}},                       // replaces the list
        {1, 1, 0, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::Message() << row.n << '/' << row.d << " by " << row.step);
        takeSaid();
        orlo.onTransposed(OrloRatio(row.n, row.d), row.step);
        EXPECT_EQ(orlo.transposition(), OrloRatio(row.n, row.d));
        EXPECT_EQ(orlo.publishedTransposition().numerator, row.n);
        EXPECT_EQ(orlo.publishedTransposition().denominator, row.d);
        EXPECT_EQ(stepsOf(orlo.transposeSteps()), row.steps);
        EXPECT_EQ(orlo.ballFromRatio(OrloRatio(row.n, row.d)), orlo.rootBall());
        EXPECT_EQ(takeSaid(), (QStringList{u"reset"_s, u"changed"_s}));
    }
}

TEST_F(TransposeTest, TheSameBaseFrequencyChangesNothing)
{
    orlo.onBaseFrequencyChanged(440.0F);
    EXPECT_EQ(takeSaid(), QStringList());
    orlo.onBaseFrequencyChanged(441.0F);
    EXPECT_EQ(takeSaid(), (QStringList{u"reset"_s, u"changed"_s}));
    EXPECT_EQ(orlo.baseFrequency(), 441.0F);
}

TEST_F(TransposeTest, OneOneStaysAudible)
{
    orlo.initWithDefaults();
    const struct
    {
        float baseFrequency;
        OrloRatio present, further;
        bool can;
    } rows[] = {
        {320.0F, {1, 1}, {1, 16}, true}, // 20 Hz
        {319.84F, {1, 1}, {1, 16}, false}, // 19.99 Hz
        {320.0F, {1, 2}, {1, 8}, true},
        {320.0F, {1, 2}, {1, 16}, false},
        {400.0F, {1, 1}, {50, 1}, true}, // 20000 Hz
        {400.01F, {1, 1}, {50, 1}, false}, // 20000.5 Hz
        {400.0F, {5, 1}, {10, 1}, true},
        {440.0F, {1, 1}, {1, 22}, true}, // 20 Hz
        {440.0F, {1, 1}, {500, 11}, true}, // 20000 Hz
        {440.0F, {1, 1}, {1, 1}, true},
    };
    for (const auto& row : rows) {
        orlo.onBaseFrequencyChanged(row.baseFrequency);
        orlo.onTransposed(row.present, Orlo::FREE_TRANSPOSITION);
        const LogCatcher log;
        EXPECT_EQ(orlo.canTransposeTo(row.further), row.can)
            << row.baseFrequency << " Hz by " << row.further.numerator() << '/' << row.further.denominator();
        EXPECT_TRUE(log.lines().isEmpty());
    }
}

TEST_F(TransposeTest, EveryBallMustFit)
{
    // Close to 1/1, so that the root can be played, and nothing in it cancels against 2 or 3.
    const OrloRatio huge((1ULL << 63) + 5, (1ULL << 63) + 3);
    EXPECT_TRUE(orlo.canTransposeTo(huge)) << "no ball is in the map yet";
    readRoot("{}");
    EXPECT_TRUE(orlo.canTransposeTo(huge));
    readRoot(R"({"children": {"3": {}}})");
    const LogCatcher log;
    EXPECT_FALSE(orlo.canTransposeTo(huge));
    ASSERT_EQ(log.lines().size(), 2);
    EXPECT_TRUE(log.lines()[0].text.startsWith(u"canMultiply fail on 3/2 * "_s));
    EXPECT_EQ(log.lines()[1].type, QtDebugMsg);
    EXPECT_EQ(log.lines()[1].text.toStdString(),
              "canTransposeTo fail on 1/1 to 9223372036854775813/9223372036854775811:\n"
              "  ball: /3 at 3/2 can't be played");
}

TEST_F(TransposeTest, BallsAreColouredByTheirStepFromTheAbsoluteOrigin)
{
    readRoot(R"({"children": {
        "-3": {"children": {"-31": {}, "-3": {}}}, "3": {}, "-5": {}, "5": {}, "7": {},
        "2": {"children": {"-3": {}}}}})");
    const struct
    {
        int step; // the transposition
        const char* path;
        Steps absolute;
        int last, highest;
    } rows[] = {
        {0, "/", {}, 1, 1},
        {0, "/3", {3}, 3, 3},
        {0, "/2", {2}, 2, 2},
        {0, "/2/-3", {2, -3}, 3, 3},
        {0, "/5", {5}, 32, 32},
        {0, "/-3/-31", {-3, -31}, 32, 32},
        {5, "/", {5}, 5, 5},   // nothing but a leaf's step
        {5, "/3", {5, 3}, 3, 5},
        {5, "/2", {5, 2}, 2, 5},
        {5, "/-5", {}, 1, 1},  // back at the origin
        {5, "/5", {5, 5}, 32, 32},
        {-31, "/", {-31}, 31, 31},
        {3, "/-3", {}, 1, 1},
        {3, "/-3/-3", {-3}, 3, 3},
        {3, "/2/-3", {2}, 2, 2},
        {3, "/-3/-31", {-31}, 32, 32},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::Message() << row.path << " after " << row.step);
        orlo.onTransposed(OrloRatio(1, 1), 0);
        if (row.step != 0)
            orlo.onTransposed(OrloPath(static_cast<signed char>(row.step)).toRatio(), row.step);
        const OrloBall* at = ball(row.path);
        EXPECT_EQ(stepsOf(at->absPathSteps()), row.absolute);
        EXPECT_EQ(at->lastAbsStep(), row.last);
        EXPECT_EQ(at->highestAbsStep(), row.highest);
    }
    EXPECT_EQ(ball("/")->lastStep(), 1);
    EXPECT_EQ(ball("/-3/-31")->lastStep(), 31);
}

TEST_F(TransposeTest, OfTwoPrimeSwitchesTheLastWins)
{
    readRoot(R"({"children": {"-3": {"children": {"5": {}, "-5": {}}}, "3": {"children": {"5": {}}}}})");
    QStringList seen;
    for (const char* path : {"/", "/-3", "/-3/-5", "/-3/5", "/3", "/3/5"}) {
        QObject::connect(ball(path), &OrloBall::enabledChanged,
                         [&seen, path](bool on) { seen.append(QLatin1StringView(path) + (on ? u" on"_s : u" off"_s)); });
    }
    const auto after = [&](int prime, bool on) {
        seen.clear();
        orlo.onPrimeEnabledToggled(prime, on);
        return seen.join(u", "_s).toStdString();
    };
    // Upwards first, and children before their parent.
    EXPECT_EQ(after(3, false), "/3/5 off, /3 off, /-3/-5 off, /-3/5 off, /-3 off");
    EXPECT_EQ(after(3, false), "");
    EXPECT_EQ(after(5, true), "/-3/5 on, /-3/-5 on, /3/5 on");
    EXPECT_EQ(after(7, true), "");
    EXPECT_EQ(after(4, false), "");
    // It stops at a ball that is off already, whatever hangs on that.
    EXPECT_EQ(after(1, false), "/ off");
    EXPECT_TRUE(ball("/3/5")->isEnabled());
    EXPECT_EQ(after(1, true), "/-3 on, /3 on, / on");
    EXPECT_EQ(after(5, false), "/-3/5 off, /-3/-5 off, /3/5 off");
    EXPECT_EQ(after(3, true), "") << "the leaves stay off, since their parents were never switched off";
}

} // namespace
