#include "end-to-end/PlayingFixture.h"
#include "support/ClickLevel.h"
#include "support/Waiting.h"

#include <QElapsedTimer>

#include <algorithm>

using namespace Qt::StringLiterals;

/// The options dialog of the running program, by its keys. The recorder is the second sound device.
class RunningOptions : public PlayingFixture
{
protected:
    static constexpr double LOUDEST_CLICK = -80.0; // dB of full scale

    /// How loud the former device's sound breaks off.
    double clickOfChange(const QString& key)
    {
        const QString start = u"PaStream started"_s;
        const auto before = log().count(start);
        const size_t from = recorder->length();
        EXPECT_TRUE(program->type(key) && logs(start, before + 1));
        return clickLevel(recorder->since(from));
    }
};

TEST_F(RunningOptions, ANoteOutlivesEveryChangeOfTheSoundDevice)
{
    start();
    ASSERT_TRUE(press("/3"));
    ASSERT_TRUE(soundsAt(FIFTH) && openOptions());

    const double first = clickOfChange(u"Down"_s);
    ASSERT_TRUE(recorder->connectToProgram(2));
    EXPECT_TRUE(soundsAt(FIFTH));
    const double second = clickOfChange(u"Up"_s);
    // A busy machine loses a block now and then, which is a click too.
    EXPECT_LT(std::min(first, second), LOUDEST_CLICK) << first << " and " << second;
    ASSERT_TRUE(recorder->connectToProgram(3));
    EXPECT_TRUE(soundsAt(FIFTH));

    // A server that stands still is not called before it is back. Then the former device is opened by
    // itself.
    desk.jack().freeze();
    QElapsedTimer timer;
    timer.start();
    ASSERT_TRUE(program->type(u"Down"_s));
    ASSERT_TRUE(program->waitForBox());
    EXPECT_LT(timer.elapsed(), 5000);
    EXPECT_TRUE(log().contains(u"still does not answer, so Pa_OpenStream was not called"_s));
    desk.jack().thaw();
    ASSERT_TRUE(program->confirmBox());
    ASSERT_TRUE(recorder->connectToProgram(4));
    EXPECT_TRUE(soundsAt(FIFTH));

    EXPECT_EQ(program->quit(), 0);
    EXPECT_EQ(options()[u"audioDevice"_s].toInt(), 0);
}

TEST_F(RunningOptions, ANoteGoesToTheNewOneToOneWhenTheOptionsClose)
{
    start();
    ASSERT_TRUE(press("/3"));
    ASSERT_TRUE(soundsAt(FIFTH) && openOptions());
    ASSERT_TRUE(program->type(u"Tab Tab Tab Tab Tab Tab 4 3 2 Tab"_s)); // from the sound device to 1/1
    ASSERT_TRUE(waitUntil([this] { return options()[u"baseFrequency"_s].toDouble() == 432.0; }));
    EXPECT_TRUE(soundsAt(FIFTH));
    ASSERT_TRUE(program->type(u"Escape"_s));
    ASSERT_TRUE(waitUntil([this] { return !desk.window(u"Options"_s); }));
    EXPECT_TRUE(soundsAt(432.0 * 1.5));
}
