#include "end-to-end/PlayingFixture.h"
#include "support/Waiting.h"

#include <QFile>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

class StartAndStop : public PlayingFixture
{
protected:
    /// Neither plays nor presses.
    void SetUp() override { ASSERT_TRUE(desk.isReady()) << "Xvfb or jackd does not start."; }
};

TEST_F(StartAndStop, AFirstStartMakesEveryFileAndASecondComesBackAsItWasLeft)
{
    const QRect place(40, 30, 1220, 765);
    const QString patchFile = u"/patches/Organ.pd\""_s; // not the default
    const QString banner = u'\n' + QString(78, u'-') + u"\nStarting app at "_s;
    ASSERT_TRUE(home.configDir().removeRecursively());
    {
        RunningProgram first(desk);
        ASSERT_TRUE(first.waitForWindow());
        EXPECT_FALSE(log().contains(u"CRITICAL"_s)) << log().toStdString();
        EXPECT_TRUE(home.configDir().exists(u"chord_presets"_s));
        EXPECT_TRUE(home.read(u"patch/orlo_voice.pd"_s).startsWith("#N canvas"));
        ASSERT_TRUE(first.type(u"f r k k k k k "_s + patchKey(u"Organ"_s)) && logs(patchFile));
        ASSERT_TRUE(first.moveTo(place));
        EXPECT_EQ(first.quit(), 0);
    }
    const QByteArray lattice = home.read(u"orlo_v2.json"_s);
    EXPECT_TRUE(lattice.contains("\"root\""));
    const QJsonObject saved = options();
    EXPECT_NEAR(saved[u"masterVolume"_s].toDouble(), 95.0 / 140.0, 1e-6); // from 105
    EXPECT_EQ(saved[u"absRelView"_s].toInt(-1), 0);
    EXPECT_TRUE(saved[u"circlesView"_s].toBool());
    RunningProgram second(desk);
    ASSERT_TRUE(second.waitForWindow());
    EXPECT_TRUE(waitUntil([&] { return second.place() == place; }));
    EXPECT_EQ(log().count(banner), 2);
    EXPECT_TRUE(log().section(banner, -1).contains(patchFile));
    EXPECT_EQ(second.quit(), 0);
    EXPECT_EQ(options(), saved) << "nothing was touched in the second run";
    EXPECT_EQ(home.read(u"orlo_v2.json"_s), lattice);
}

TEST_F(StartAndStop, ASecondCopyOnOneFolderEnds)
{
    RunningProgram first(desk);
    ASSERT_TRUE(first.waitForWindow());
    const QString before = log();
    EXPECT_EQ(RunningProgram(desk).waitForExit(), 0);
    EXPECT_EQ(log(), before);
    first.freeze();
    {
        RunningProgram second(desk);
        ASSERT_TRUE(second.waitForBox() && second.confirmBox());
        EXPECT_EQ(second.waitForExit(), 1);
    }
    first.killNow(); // its lock and its socket stay behind
    RunningProgram next(desk);
    ASSERT_TRUE(next.waitForWindow());
    EXPECT_EQ(RunningProgram(desk).waitForExit(), 0);
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
    EXPECT_TRUE(log().contains(u"style sheet failed.\n\nThe program will now shut down.\n"_s));
}

TEST_F(StartAndStop, WithoutAnyConfigurationOfAlsaOnlyAMissingDeviceIsFatal)
{
    desk.removeAlsa();
    {
        RunningProgram underJack(desk);
        ASSERT_TRUE(underJack.waitForWindow());
        EXPECT_TRUE(log().contains(u"PaStream started"_s));
        EXPECT_EQ(underJack.quit(), 0);
    }
    desk.jack().killNow();
    RunningProgram failing(desk);
    ASSERT_TRUE(failing.waitForBox() && failing.confirmBox());
    EXPECT_EQ(failing.waitForExit(), 1);
    EXPECT_TRUE(log().contains(u"Initialisation of audio device failed."_s));
}
