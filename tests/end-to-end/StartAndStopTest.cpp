#include "app/Settings.h"
#include "end-to-end/EndToEndTest.h"
#include "end-to-end/ScreenMap.h"
#include "end-to-end/Waiting.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <csignal>

class StartAndStop : public EndToEndTest
{
protected:
    /// One box, then the end, with this in the log.
    void expectFatalBox(RunningProgram& program, const char* text) const
    {
        ASSERT_TRUE(program.waitForBox());
        EXPECT_TRUE(program.place().isEmpty()) << "The main window is there.";
        ASSERT_TRUE(program.confirmBox());
        EXPECT_EQ(program.waitForExit(), 1);
        EXPECT_TRUE(log().contains(QLatin1StringView(text))) << log().toStdString();
    }
};

TEST_F(StartAndStop, AFirstStartMakesEveryFile)
{
    ASSERT_TRUE(home.configDir().removeRecursively());
    RunningProgram program(desk);
    ASSERT_TRUE(program.waitForWindow());
    EXPECT_TRUE(QDir(home.path(QStringLiteral("chord_presets"))).exists());
    EXPECT_EQ(banners(), 1);
    EXPECT_FALSE(log().contains(QStringLiteral("CRITICAL"))) << log().toStdString();
    const QStringList runtime = QDir(home.path(QStringLiteral("patch"))).entryList(QDir::Files, QDir::Name);
    EXPECT_EQ(runtime.join(u' ').toStdString(), "equal-loudness.pd orlo_main.pd orlo_voice.pd orlo_vprep.pd "
                                                "tb_compressorUI.pd tb_compressor~.pd");
    EXPECT_EQ(home.read(QStringLiteral("patch/orlo_voice.pd")),
              [] {
                  QFile sine(QCoreApplication::applicationDirPath() + QStringLiteral("/patches/Sine.pd"));
                  return sine.open(QIODevice::ReadOnly) ? sine.readAll() : QByteArray("no Sine.pd");
              }());

    const QJsonObject first = options();
    QJsonObject wanted;
    Settings().write(wanted);
    EXPECT_EQ(first.keys(), wanted.keys());
    EXPECT_EQ(first.size(), 33);
    EXPECT_EQ(first[QStringLiteral("windowSize")].toString(), QStringLiteral("-1,-1"));

    const QByteArray lattice = home.read(QStringLiteral("orlo_v2.json"));
    EXPECT_TRUE(lattice.contains("\"root\""));
    EXPECT_EQ(program.quit(), 0);
    EXPECT_EQ(home.read(QStringLiteral("orlo_v2.json")), lattice);
}

TEST_F(StartAndStop, ASecondStartComesBackAsTheFirstWasLeft)
{
    const ScreenMap screen(desk);
    ASSERT_TRUE(screen.isValid());
    const QRect place(40, 30, 1220, 765);
    QStringList patches = voicePatches().mid(0, 10);
    patches.removeAll(QStringLiteral("Sine")); // the default
    ASSERT_FALSE(patches.isEmpty());
    const QString patch = patches.last();
    const QString patchFile = QStringLiteral("/patches/%1.pd\"").arg(patch);
    {
        RunningProgram program(desk);
        ASSERT_TRUE(program.waitForWindow());
        ASSERT_TRUE(program.click(screen.widget("circlesViewButton")));
        ASSERT_TRUE(program.click(screen.widget("monoButton")));
        ASSERT_TRUE(program.type(QStringLiteral("r")));
        for (int i = 0; i < 5; ++i)
            ASSERT_TRUE(program.type(QStringLiteral("k"))); // from 105 of 140 to 95
        ASSERT_TRUE(program.type(patchKey(patch)));
        ASSERT_TRUE(waitUntil([&] { return log().contains(patchFile); }));
        ASSERT_TRUE(program.moveTo(place));
        EXPECT_EQ(program.quit(), 0);
    }
    const auto check = [&](const QJsonObject& saved) {
        EXPECT_TRUE(saved[QStringLiteral("circlesView")].toBool());
        EXPECT_TRUE(saved[QStringLiteral("monophonic")].toBool());
        EXPECT_EQ(saved[QStringLiteral("absRelView")].toInt(-1), 0);
        EXPECT_NEAR(saved[QStringLiteral("masterVolume")].toDouble(), 95.0 / 140.0, 1e-6);
        EXPECT_EQ(saved[QStringLiteral("defaultPatch")].toString(), patch + QStringLiteral(".pd"));
        EXPECT_EQ(saved[QStringLiteral("windowSize")].toString(), QStringLiteral("1220,765"));
        EXPECT_EQ(saved[QStringLiteral("windowPos")].toString(), QStringLiteral("40,30"));
        EXPECT_EQ(saved[QStringLiteral("audioDevice")].toInt(-1), 0);
    };
    check(options());
    {
        RunningProgram program(desk);
        ASSERT_TRUE(program.waitForWindow());
        EXPECT_TRUE(waitUntil([&] { return program.place() == place; }));
        EXPECT_EQ(banners(), 2);
        EXPECT_TRUE(log().section(QStringLiteral("Starting app at"), -1).contains(patchFile));
        EXPECT_EQ(program.quit(), 0);
    }
    SCOPED_TRACE("after a second run, in which nothing was touched");
    check(options());
}

TEST_F(StartAndStop, AnEndBySignalSavesTheOptions)
{
    for (const int signal : {SIGTERM, SIGINT}) {
        SCOPED_TRACE(signal);
        writeOptions({});
        RunningProgram program(desk);
        ASSERT_TRUE(program.waitForWindow());
        ASSERT_TRUE(program.type(QStringLiteral("r")));
        ASSERT_TRUE(program.type(QStringLiteral("f")));
        ::kill(static_cast<pid_t>(program.processId()), signal);
        EXPECT_EQ(program.waitForExit(), 0);
        EXPECT_TRUE(options()[QStringLiteral("circlesView")].toBool());
        EXPECT_EQ(options()[QStringLiteral("absRelView")].toInt(-1), 0);
    }
}

TEST_F(StartAndStop, BrokenOptionsGiveOneBoxAndDefaults)
{
    const QByteArray broken = "{ \"masterVolume\": 0.1, ";
    home.write(QStringLiteral("options.json"), broken);
    RunningProgram program(desk);
    ASSERT_TRUE(program.waitForBox());
    EXPECT_FALSE(log().contains(QStringLiteral("All options will be reset"))); // not before the box is closed
    EXPECT_TRUE(log().contains(QStringLiteral("Couldn't parse file ")));
    ASSERT_TRUE(program.confirmBox());
    ASSERT_TRUE(program.waitForWindow());
    EXPECT_FALSE(program.hasBox());
    EXPECT_TRUE(log().contains(
        QStringLiteral("Failed to read saved options. All options will be reset to defaults.\n")));
    EXPECT_EQ(home.read(QStringLiteral("options.json")), broken);
    EXPECT_EQ(program.quit(), 0);
    EXPECT_EQ(options()[QStringLiteral("masterVolume")].toDouble(), 0.75);
    EXPECT_EQ(options().size(), 33);
}

TEST_F(StartAndStop, ABrokenLatticeEndsTheProgramAndIsLeftAsItIs)
{
    const QByteArray broken = "{ \"root\": { \"children\": ";
    home.write(QStringLiteral("orlo_v2.json"), broken);
    RunningProgram program(desk);
    expectFatalBox(program, "Orlo initialisation failed.\n\nThe program will now shut down.\n");
    EXPECT_EQ(home.read(QStringLiteral("orlo_v2.json")), broken);
}

TEST_F(StartAndStop, AMissingStyleSheetEndsTheProgram)
{
    const QTemporaryDir elsewhere;
    const QString copy = elsewhere.filePath(QStringLiteral("brevick-tuning-orlo"));
    ASSERT_TRUE(QFile::copy(RunningProgram::executable(), copy));
    RunningProgram program(desk, {}, copy);
    expectFatalBox(program, "Initialisation of style sheet failed.\n\nThe program will now shut down.\n");
    EXPECT_TRUE(log().contains(QStringLiteral("Failed to find style sheet file %1/style.qss.").arg(elsewhere.path())));
}

TEST_F(StartAndStop, NoSoundDeviceEndsTheProgram)
{
    desk.killSound();
    RunningProgram program(desk);
    expectFatalBox(program, "Initialisation of audio device failed. This means no audio playback will be "
                            "possible.\n\nThe program will now shut down.\n");
    EXPECT_TRUE(log().contains(QStringLiteral("Number of audio devices found: 0")));
}
