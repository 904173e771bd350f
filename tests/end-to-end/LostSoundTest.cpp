#include "end-to-end/PlayingFixture.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

/// What happens when the sound device goes away or stands still under the running program.
class LostSound : public PlayingFixture
{
protected:
    void play()
    {
        start();
        ASSERT_TRUE(press("/") && soundsAt(ROOT));
    }
};

TEST_F(LostSound, EndsInOrderAfterTheSoundServerDied)
{
    ASSERT_NO_FATAL_FAILURE(play());
    desk.jack().killNow();
    expectOrderlyEnd(SIGINT);
}

TEST_F(LostSound, ComesBackWithItsNoteAsOftenAsTheServerDoes)
{
    ASSERT_NO_FATAL_FAILURE(play());
    for (int restart = 0; restart < 2; ++restart) {
        const auto isGone = [&] { return logs(u"The sound device is gone: "_s, restart + 1); };
        if (restart == 1) { // the second one stands still before it dies
            desk.jack().freeze();
            EXPECT_TRUE(isGone());
        }
        desk.jack().killNow();
        recorder.reset(); // its client would keep this process from the next server
        EXPECT_TRUE(isGone());
        ASSERT_TRUE(desk.startJack());
        recorder = std::make_unique<Recorder>(desk.soundServer());
        ASSERT_TRUE(recorder->connectToProgram());
        EXPECT_TRUE(soundsAt(ROOT));
    }
    ASSERT_TRUE(press("/") && recorder->waitForSilence());
    expectOrderlyEnd();
}

TEST_F(LostSound, ChangesThePatchAndEndsWhileTheSoundServerStandsStill)
{
    ASSERT_NO_FATAL_FAILURE(play());
    desk.jack().freeze();
    const QString opening = u"Opening PD patch: "_s;
    const auto before = log().count(opening);
    ASSERT_TRUE(program->type(patchKey(u"Sine"_s)) && logs(opening, before + 1));
    EXPECT_TRUE(log().contains(u"No audio stream is running"_s));
    desk.jack().thaw();

    // The note goes on under the new patch, and ends as any other.
    EXPECT_TRUE(soundsAt(ROOT));
    ASSERT_TRUE(press("/") && recorder->waitForSilence() && press("/3"));
    EXPECT_TRUE(soundsAt(FIFTH));
    desk.jack().freeze();
    expectOrderlyEnd();
    EXPECT_EQ(options()[u"audioDevice"_s].toInt(-1), 0) << "the lost device is not forgotten";
}

TEST_F(LostSound, AVoiceThatLoopsForEverCostsNothingButTheSound)
{
    ASSERT_TRUE(desk.isReady());
    const QByteArray looping = "#N canvas 0 0 300 200 12;\n#X obj 9 9 inlet;\n#X obj 9 30 outlet~;\n"
                               "#X obj 9 60 loadbang;\n#X obj 9 90 until;\n#X connect 2 0 3 0;\n";
    // In a copy without the trial of voices, which would stop it.
    const QTemporaryDir elsewhere;
    const QDir beside(QCoreApplication::applicationDirPath());
    QDir(elsewhere.path()).mkpath(u"patches"_s);
    for (const QString& name : beside.entryList({u"*.qss"_s, u"*.svg"_s}, QDir::Files))
        QFile::link(beside.filePath(name), elsewhere.filePath(name));
    QFile::link(beside.filePath(u"patches/shell"_s), elsewhere.filePath(u"patches/shell"_s));
    home.write(elsewhere.filePath(u"patches/Loop.pd"_s), looping);
    const QString copy = elsewhere.filePath(u"brevick-tuning-orlo"_s);
    ASSERT_TRUE(QFile::copy(RunningProgram::executable(), copy));

    writeOptions({{u"defaultPatch"_s, u"Loop.pd"_s}});
    program = std::make_unique<RunningProgram>(desk, copy);
    ASSERT_TRUE(program->waitForBox());
    EXPECT_TRUE(log().contains(u"There is no more sound"_s));
    ASSERT_TRUE(program->confirmBox() && program->waitForWindow());
    expectOrderlyEnd();
}
