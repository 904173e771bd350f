#include "app/Settings.h"
#include "end-to-end/PlayingFixture.h"
#include "end-to-end/Waiting.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <csignal>

using namespace Qt::StringLiterals;

class StartAndStop : public PlayingFixture
{
protected:
    /// Neither plays nor, for the most part, presses.
    void SetUp() override { ASSERT_TRUE(desk.isReady()) << "Xvfb or jackd does not start."; }

    /// Starts of the program that the log tells of.
    qsizetype banners() const { return log().count(u'\n' + QString(78, u'-') + u"\nStarting app at "_s); }

    /// One box, then the end, with this in the log.
    void expectFatalBox(const QString& text, const QString& executable = RunningProgram::executable())
    {
        RunningProgram failing(desk, executable);
        ASSERT_TRUE(failing.waitForBox());
        EXPECT_TRUE(failing.place().isEmpty()) << "The main window is there.";
        ASSERT_TRUE(failing.confirmBox());
        EXPECT_EQ(failing.waitForExit(), 1);
        EXPECT_TRUE(log().contains(text + u"\n\nThe program will now shut down.\n"_s)) << log().toStdString();
    }
};

TEST_F(StartAndStop, AFirstStartMakesEveryFile)
{
    ASSERT_TRUE(home.configDir().removeRecursively());
    RunningProgram first(desk);
    ASSERT_TRUE(first.waitForWindow());
    EXPECT_TRUE(QDir(home.path(u"chord_presets"_s)).exists());
    EXPECT_EQ(banners(), 1);
    EXPECT_FALSE(log().contains(u"CRITICAL"_s)) << log().toStdString();
    const QStringList runtime = QDir(home.path(u"patch"_s)).entryList(QDir::Files, QDir::Name);
    EXPECT_EQ(runtime.join(u' ').toStdString(), "equal-loudness.pd orlo_main.pd orlo_voice.pd orlo_vprep.pd "
                                                "tb_compressorUI.pd tb_compressor~.pd");
    QFile sine(QCoreApplication::applicationDirPath() + u"/patches/Sine.pd"_s);
    ASSERT_TRUE(sine.open(QIODevice::ReadOnly));
    EXPECT_EQ(home.read(u"patch/orlo_voice.pd"_s), sine.readAll());

    QJsonObject wanted;
    Settings().write(wanted);
    EXPECT_EQ(options().keys(), wanted.keys());
    const QByteArray lattice = home.read(u"orlo_v2.json"_s);
    EXPECT_TRUE(lattice.contains("\"root\""));
    EXPECT_EQ(first.quit(), 0);
    EXPECT_EQ(home.read(u"orlo_v2.json"_s), lattice);
}

TEST_F(StartAndStop, ASecondStartComesBackAsTheFirstWasLeft)
{
    const ScreenMap map(desk);
    ASSERT_TRUE(map.isValid());
    const QRect place(40, 30, 1220, 765);
    QStringList patches = voicePatches().mid(0, 10);
    patches.removeAll(u"Sine"_s); // the default
    ASSERT_FALSE(patches.isEmpty());
    const QString patch = patches.last();
    const QString patchFile = u"/patches/%1.pd\""_s.arg(patch);
    {
        RunningProgram first(desk);
        ASSERT_TRUE(first.waitForWindow());
        ASSERT_TRUE(first.click(map.widget("circlesViewButton")));
        ASSERT_TRUE(first.click(map.widget("monoButton")));
        for (const QString& key : {u"r"_s, u"k"_s, u"k"_s, u"k"_s, u"k"_s, u"k"_s, patchKey(patch)})
            ASSERT_TRUE(first.type(key)); // the volume goes from 105 of 140 to 95
        ASSERT_TRUE(waitUntil([&] { return log().contains(patchFile); }));
        ASSERT_TRUE(first.moveTo(place));
        EXPECT_EQ(first.quit(), 0);
    }
    const QJsonObject saved = options();
    EXPECT_NEAR(saved[u"masterVolume"_s].toDouble(), 95.0 / 140.0, 1e-6);
    const QJsonObject wanted{{u"circlesView"_s, true},
                             {u"monophonic"_s, true},
                             {u"absRelView"_s, 0},
                             {u"defaultPatch"_s, patch + u".pd"_s},
                             {u"windowSize"_s, u"1220,765"_s},
                             {u"windowPos"_s, u"40,30"_s},
                             {u"audioDevice"_s, 0}};
    for (auto it = wanted.begin(); it != wanted.end(); ++it)
        EXPECT_EQ(saved[it.key()], it.value()) << it.key().toStdString();
    {
        RunningProgram second(desk);
        ASSERT_TRUE(second.waitForWindow());
        EXPECT_TRUE(waitUntil([&] { return second.place() == place; }));
        EXPECT_EQ(banners(), 2);
        EXPECT_TRUE(log().section(u"Starting app at"_s, -1).contains(patchFile));
        EXPECT_EQ(second.quit(), 0);
    }
    EXPECT_EQ(options(), saved) << "nothing was touched in the second run";
}

TEST_F(StartAndStop, AnEndBySignalSavesTheOptions)
{
    for (const int signal : {SIGTERM, SIGINT}) {
        SCOPED_TRACE(signal);
        writeOptions({});
        RunningProgram ended(desk);
        ASSERT_TRUE(ended.waitForWindow());
        ASSERT_TRUE(ended.type(u"r"_s));
        ASSERT_TRUE(ended.type(u"f"_s));
        ::kill(static_cast<pid_t>(ended.processId()), signal);
        EXPECT_EQ(ended.waitForExit(), 0);
        EXPECT_TRUE(options()[u"circlesView"_s].toBool());
        EXPECT_EQ(options()[u"absRelView"_s].toInt(-1), 0);
    }
}

TEST_F(StartAndStop, BrokenOptionsGiveOneBoxAndDefaults)
{
    const QByteArray broken = "{ \"masterVolume\": 0.1, ";
    const QString reset = u"Failed to read saved options. All options will be reset to defaults.\n"_s;
    home.write(u"options.json"_s, broken);
    RunningProgram started(desk);
    ASSERT_TRUE(started.waitForBox());
    EXPECT_FALSE(log().contains(reset)); // not before the box is closed
    EXPECT_TRUE(log().contains(u"Couldn't parse file "_s));
    ASSERT_TRUE(started.confirmBox());
    ASSERT_TRUE(started.waitForWindow());
    EXPECT_FALSE(started.hasBox());
    EXPECT_TRUE(log().contains(reset));
    EXPECT_EQ(home.read(u"options.json"_s), broken);
    EXPECT_EQ(started.quit(), 0);
    EXPECT_EQ(options()[u"masterVolume"_s].toDouble(), 0.75);
    EXPECT_EQ(options().size(), 33);
}

TEST_F(StartAndStop, WithoutAStyleSheetALatticeOrSoundTheProgramEnds)
{
    const QTemporaryDir elsewhere;
    const QString copy = elsewhere.filePath(u"brevick-tuning-orlo"_s);
    ASSERT_TRUE(QFile::copy(RunningProgram::executable(), copy));
    expectFatalBox(u"Initialisation of style sheet failed."_s, copy);
    EXPECT_TRUE(log().contains(u"Failed to find style sheet file %1/style.qss."_s.arg(elsewhere.path())));

    const QByteArray broken = "{ \"root\": { \"children\": ";
    home.write(u"orlo_v2.json"_s, broken);
    expectFatalBox(u"Orlo initialisation failed."_s);
    EXPECT_EQ(home.read(u"orlo_v2.json"_s), broken);

    ASSERT_TRUE(QFile::remove(home.path(u"orlo_v2.json"_s)));
    desk.killSound();
    expectFatalBox(
        u"Initialisation of audio device failed. This means no audio playback will be possible."_s);
    EXPECT_TRUE(log().contains(u"Number of audio devices found: 0"_s));
}
