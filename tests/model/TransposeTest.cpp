#include "model/LatticeSupport.h"
#include "support/LogCatcher.h"

#include <vector>

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

TEST_F(TransposeTest, StepsAndRatioFollowThePlayer)
{
    constexpr int FREE = Orlo::FREE_TRANSPOSITION;
    const std::tuple<OrloRatio, int, Steps> rows[] = {
        {{3, 2}, 3, {3}},
        {{15, 8}, 5, {3, 5}},
        {{45, 16}, 3, {3, 5, 3}},
        {{15, 8}, -3, {3, 5}}, // of two opposite steps the nearer goes
        {{5, 4}, -3, {5}},
        {{1, 1}, -5, {}},
        {{1, 1}, 0, {}},                            // an empty list is reset all the same
        {{81, 80}, FREE, {3, 3, 3, 3, -5, -2, -2}}, // its canonical steps
        {{27, 40}, -3, {3, 3, 3, -5, -2, -2}},
        {{9, 8}, FREE, {3, 3, -2}}, // replaces the list
        {{1, 1}, 0, {}},
    };
    takeSaid();
    for (const auto& [ratio, step, steps] : rows) {
        SCOPED_TRACE(::testing::Message()
                     << ratio.numerator() << '/' << ratio.denominator() << " by " << step);
        orlo.onTransposed(ratio, step);
        EXPECT_EQ(orlo.transposition(), ratio);
        EXPECT_EQ(orlo.publishedTransposition().numerator, ratio.numerator());
        EXPECT_EQ(orlo.publishedTransposition().denominator, ratio.denominator());
        EXPECT_EQ(stepsOf(orlo.transposeSteps()), steps);
        EXPECT_EQ(orlo.ballFromRatio(ratio), orlo.rootBall());
        EXPECT_EQ(takeSaid(), "reset, changed");
    }
    orlo.onBaseFrequencyChanged(440.0F); // the same as before
    EXPECT_EQ(takeSaid(), "");
    orlo.onBaseFrequencyChanged(441.0F);
    EXPECT_EQ(takeSaid(), "reset, changed");
}

TEST_F(TransposeTest, OneOneStaysAudible)
{
    orlo.initWithDefaults();
    const std::tuple<float, OrloRatio, OrloRatio, bool> rows[] = {
        // base frequency, present and further transposition, whether it can be
        {320.0F, {1, 1}, {1, 16}, true},   // 20 Hz
        {319.84F, {1, 1}, {1, 16}, false}, // 19.99 Hz
        {320.0F, {1, 2}, {1, 8}, true},
        {320.0F, {1, 2}, {1, 16}, false},  // 20 and 10 Hz
        {400.0F, {5, 1}, {10, 1}, true},   // 20000 Hz
        {400.01F, {1, 1}, {50, 1}, false}, // 20000.5 Hz
        {440.0F, {1, 1}, {1, 22}, true},
        {440.0F, {1, 1}, {500, 11}, true}, // the bounds, not as powers of 2
    };
    for (const auto& [baseFrequency, present, further, can] : rows) {
        orlo.onBaseFrequencyChanged(baseFrequency);
        orlo.onTransposed(present, Orlo::FREE_TRANSPOSITION);
        EXPECT_EQ(orlo.canTransposeTo(further), can)
            << baseFrequency << " Hz by " << further.numerator() << '/' << further.denominator();
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
    EXPECT_TRUE(log.has(QtDebugMsg, u"canMultiply fail on 3/2 * "_s));
    EXPECT_TRUE(log.has(QtDebugMsg,
                        u"canTransposeTo fail on 1/1 to 9223372036854775813/9223372036854775811:\n"
                        u"  ball: /3 at 3/2 can't be played"_s));
}

TEST_F(TransposeTest, BallsAreColouredByTheirStepFromTheAbsoluteOrigin)
{
    readRoot(R"({"children": {
        "-3": {"children": {"-31": {}, "-3": {}}}, "3": {}, "-5": {}, "5": {}, "7": {},
        "2": {"children": {"-3": {}}}}})");
    const std::tuple<int, const char*, Steps, int, int> rows[] = {
        // transposition, path, its steps from the origin, the last and the highest of them
        {0, "/", {}, 1, 1},
        {0, "/3", {3}, 3, 3},
        {0, "/2", {2}, 2, 2},
        {0, "/2/-3", {2, -3}, 3, 3},
        {5, "/3", {5, 3}, 3, 5},
        {5, "/2", {5, 2}, 2, 5},
        {0, "/-3/-31", {-3, -31}, 32, 32},
        {5, "/5", {5, 5}, 32, 32},
        {3, "/-3/-31", {-31}, 32, 32},
        {3, "/-3/-3", {-3}, 3, 3},
        {3, "/2/-3", {2}, 2, 2},
        {5, "/-5", {}, 1, 1}, // back at the origin
        {5, "/", {5}, 5, 5},
        {-31, "/", {-31}, 31, 31}, // nothing but a leaf's step
    };
    for (const auto& [step, path, absolute, last, highest] : rows) {
        orlo.onTransposed(OrloRatio(1, 1), 0);
        if (step != 0)
            orlo.onTransposed(OrloPath(static_cast<signed char>(step)).toRatio(), step);
        EXPECT_EQ(stepsOf(ball(path)->absPathSteps()), absolute) << path << " after " << step;
        EXPECT_EQ(ball(path)->lastAbsStep(), last) << path << " after " << step;
        EXPECT_EQ(ball(path)->highestAbsStep(), highest) << path << " after " << step;
    }
}

TEST_F(TransposeTest, OfTwoPrimeSwitchesTheLastWins)
{
    const QByteArray root =
        R"({"children": {"-3": {"children": {"5": {}, "-5": {}}}, "3": {"children": {"5": {}}}}})";
    readRoot(root);
    QStringList seen;
    for (const char* path : {"/", "/-3", "/-3/-5", "/-3/5", "/3", "/3/5"})
        QObject::connect(ball(path), &OrloBall::enabledChanged, [&seen, path](bool on) {
            seen.append(QLatin1StringView(path) + (on ? u" on"_s : u" off"_s));
        });
    const std::tuple<int, bool, const char*> rows[] = {
        // Upwards first, and children before their parent.
        {3, false, "/3/5 off, /3 off, /-3/-5 off, /-3/5 off, /-3 off"},
        {3, false, ""},
        {7, true, ""},
        {4, false, ""},
        {5, true, "/-3/5 on, /-3/-5 on, /3/5 on"},
        {1, false, "/ off"}, // stops at a ball that is off already, whatever hangs on that
        {1, true, "/-3 on, /3 on, / on"},
        {5, false, "/-3/5 off, /-3/-5 off, /3/5 off"},
        {3, true, ""}, // the leaves stay off, since their parents were never switched off
    };
    for (const auto& [prime, on, reports] : rows) {
        seen.clear();
        orlo.onPrimeEnabledToggled(prime, on);
        EXPECT_EQ(seen.join(u", "_s).toStdString(), reports) << prime << (on ? " on" : " off");
    }
    readRoot(root);
    EXPECT_TRUE(ball("/3")->isEnabled());
    EXPECT_FALSE(ball("/3/5")->isEnabled()) << "a lattice that is loaded anew switched it on";
}

} // namespace
