#include "end-to-end/PlayingFixture.h"
#include "support/Waiting.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

class StartAndStop : public PlayingFixture
{
protected:
    /// Neither plays nor, for the most part, presses.
    void SetUp() override { ASSERT_TRUE(desk.isReady()) << "Xvfb or jackd does not start."; }

    /// Starts of the program that the log tells of.
    qsizetype banners() const { return log().count(u'\n' + QString(78, u'-') + u"\nStarting app at "_s); }
};

TEST_F(StartAndStop, AFirstStartMakesEveryFile)
{
    ASSERT_TRUE(home.configDir().removeRecursively());
    RunningProgram first(desk);
    ASSERT_TRUE(first.waitForWindow());
    EXPECT_TRUE(QDir(home.path(u"chord_presets"_s)).exists());
    EXPECT_EQ(banners(), 1);
    EXPECT_FALSE(log().contains(u"CRITICAL"_s)) << log().toStdString();
    EXPECT_TRUE(home.read(u"patch/orlo_voice.pd"_s).startsWith("#N canvas"));
    EXPECT_EQ(options().size(), 33);
    const QByteArray lattice = home.read(u"orlo_v2.json"_s);
    EXPECT_TRUE(lattice.contains("\"root\""));
    EXPECT_EQ(first.quit(), 0);
    EXPECT_EQ(home.read(u"orlo_v2.json"_s), lattice);
}

TEST_F(StartAndStop, ASecondStartComesBackAsTheFirstWasLeft)
{
    const QRect place(40, 30, 1220, 765);
    const QString patchFile = u"/patches/Organ.pd\""_s; // not the default
    {
        RunningProgram first(desk);
        ASSERT_TRUE(first.waitForWindow() && first.type(u"f r k k k k k "_s + patchKey(u"Organ"_s)));
        ASSERT_TRUE(waitUntil([&] { return log().contains(patchFile); }));
        ASSERT_TRUE(first.moveTo(place));
        EXPECT_EQ(first.quit(), 0);
    }
    const QJsonObject saved = options();
    EXPECT_NEAR(saved[u"masterVolume"_s].toDouble(), 95.0 / 140.0, 1e-6); // from 105
    EXPECT_EQ(saved[u"absRelView"_s].toInt(-1), 0);
    EXPECT_TRUE(saved[u"circlesView"_s].toBool());
    RunningProgram second(desk);
    ASSERT_TRUE(second.waitForWindow());
    EXPECT_TRUE(waitUntil([&] { return second.place() == place; }));
    EXPECT_EQ(banners(), 2);
    EXPECT_TRUE(log().section(u"Starting app at"_s, -1).contains(patchFile));
    EXPECT_EQ(second.quit(), 0);
    EXPECT_EQ(options(), saved) << "nothing was touched in the second run";
}

TEST_F(StartAndStop, BrokenOptionsGiveOneBoxAndDefaults)
{
    const QByteArray broken = "{ \"masterVolume\": 0.1, ";
    const QString reset = u"Failed to read saved options. All options will be reset to defaults.\n"_s;
    home.write(u"options.json"_s, broken);
    RunningProgram started(desk);
    ASSERT_TRUE(started.waitForBox());
    EXPECT_FALSE(log().contains(reset)); // not before the box is closed
    ASSERT_TRUE(started.confirmBox() && started.waitForWindow());
    EXPECT_FALSE(started.hasBox());
    EXPECT_TRUE(log().contains(reset));
    EXPECT_EQ(home.read(u"options.json"_s), broken);
    EXPECT_EQ(started.quit(), 0);
    EXPECT_EQ(options()[u"masterVolume"_s].toDouble(), 0.75);
}

TEST_F(StartAndStop, WithoutAStyleSheetTheProgramEnds)
{
    const QTemporaryDir elsewhere;
    const QString copy = elsewhere.filePath(u"brevick-tuning-orlo"_s);
    ASSERT_TRUE(QFile::copy(RunningProgram::executable(), copy));
    RunningProgram failing(desk, copy);
    ASSERT_TRUE(failing.waitForBox());
    EXPECT_TRUE(failing.place().isEmpty()) << "The main window is there.";
    ASSERT_TRUE(failing.confirmBox());
    EXPECT_EQ(failing.waitForExit(), 1);
    EXPECT_TRUE(log().contains(u"Failed to find style sheet file %1/style.qss."_s.arg(elsewhere.path())));
    EXPECT_TRUE(
        log().contains(u"Initialisation of style sheet failed.\n\nThe program will now shut down.\n"_s));
}
