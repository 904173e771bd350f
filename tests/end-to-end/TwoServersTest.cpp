#include "end-to-end/PlayingFixture.h"
#include "support/Waiting.h"

#include <QElapsedTimer>

using namespace Qt::StringLiterals;

/// The sound goes to PulseAudio and MIDI to JACK. What one of them does is nothing to the other.
class TwoServers : public PlayingFixture
{
protected:
    void SetUp() override
    {
        PlayingFixture::SetUp();
        recorder.reset(); // JACK can be killed without a client of this process
        ASSERT_TRUE(desk.addPulse()) << "pulseaudio does not start.";
        startMidiListener();
        writeOptions({{u"midiOutDevice"_s, u"midi-monitor:input"_s}, {u"midiOutChannel"_s, 3}});
        program = std::make_unique<RunningProgram>(desk);
        ASSERT_TRUE(program->waitForWindow());
        ASSERT_TRUE(press("/") && soundsAt(ROOT));
        ASSERT_TRUE(hearsNotes(1));
    }
    Recording& ear() override { return onJack ? static_cast<Recording&>(*recorder) : desk.pulse(); }

    /// Under the same name each time.
    void startMidiListener()
    {
        mListener.killNow();
        mHeard.clear();
        mListener.setProcessEnvironment(desk.environment());
        mListener.setStandardOutputFile(QString());
        mListener.start(u"jack_midi_dump"_s, QStringList());
        ASSERT_TRUE(mListener.waitForStarted());
    }
    qsizetype notesHeard()
    {
        mHeard += mListener.readAll();
        return mHeard.count("note on ");
    }
    bool hearsNotes(qsizetype count)
    {
        return waitUntil([&] { return notesHeard() >= count; });
    }
    /// At once, and on either side of its middle in turn, so that no two presses are a double click.
    bool pressManyTimes(const char* ball, int times)
    {
        const QPoint corner = program->place().topLeft();
        const QPoint middle = corner + place("grapes", ball);
        const auto click = [&](int side) {
            return u"mousemove %1 %2 click --delay 1 1 "_s.arg(middle.x() + side).arg(middle.y());
        };
        return desk.act((click(-6) + click(6)).repeated(times / 2)
                        + u"mousemove %1 %2"_s.arg(corner.x() + 2).arg(corner.y() + 2));
    }

    bool onJack = false; // what is heard

private:
    TestProcess mListener;
    QByteArray mHeard;
};

TEST_F(TwoServers, PulseDiesAndComesBackWithItsNoteBesideMidi)
{
    desk.pulse().killNow();
    EXPECT_TRUE(logs(u"The sound device is gone: ALSA: pulse"_s));
    ASSERT_TRUE(press("/3"));
    ASSERT_TRUE(desk.pulse().startServer());
    EXPECT_TRUE(hears(ROOT) && hears(FIFTH));
    EXPECT_TRUE(hearsNotes(2)) << "what was pressed meanwhile waits for the blocks";
    ASSERT_TRUE(press("/5"));
    EXPECT_TRUE(hearsNotes(3));
    EXPECT_FALSE(log().contains(u"MIDI output:"_s)) << log().toStdString();
    expectOrderlyEnd();
}

TEST_F(TwoServers, AFrozenPulseIsLeftForJack)
{
    ASSERT_TRUE(openOptions());
    desk.pulse().freeze();
    QElapsedTimer timer;
    timer.start();
    ASSERT_TRUE(program->type(u"Down"_s));
    EXPECT_TRUE(logs(u"PaStream started"_s, 2));
    EXPECT_LT(timer.elapsed(), 5000);
    recorder = std::make_unique<Recorder>(desk.soundServer());
    ASSERT_TRUE(recorder->connectToProgram());
    onJack = true;
    EXPECT_TRUE(soundsAt(ROOT));

    desk.pulse().thaw();
    ASSERT_TRUE(program->type(u"Up"_s));
    onJack = false;
    EXPECT_TRUE(soundsAt(ROOT));
    ASSERT_TRUE(program->type(u"Escape"_s));
    ASSERT_TRUE(waitUntil([this] { return !desk.window(u"Options"_s).has_value(); }));
    ASSERT_TRUE(program->waitForWindow());
    desk.pulse().freeze();
    expectOrderlyEnd();
    EXPECT_EQ(options()[u"audioDevice"_s].toInt(-1), 0);
}

TEST_F(TwoServers, JackFrozenAndKilledUnderMidiIsNothingToTheSound)
{
    constexpr double A_LATE_BLOCK = 0.2; // seconds
    size_t from = ear().length();
    desk.jack().freeze();
    ASSERT_TRUE(pressManyTimes("/3", 600));
    EXPECT_TRUE(logs(u"MIDI output: sending failed: "_s));
    ASSERT_TRUE(program->waitForBox() && program->confirmBox());
    ASSERT_TRUE(press("/3"));
    EXPECT_TRUE(hears(ROOT) && hears(FIFTH));
    EXPECT_LE(ear().longestSilenceSince(from), A_LATE_BLOCK);

    from = ear().length();
    desk.jack().killNow();
    ASSERT_TRUE(desk.startJack());
    ASSERT_NO_FATAL_FAILURE(startMidiListener());
    // A press that comes before the port is open again says nothing.
    EXPECT_TRUE(waitUntil([&] { return press("/3") && notesHeard() > 0; }, 30000));
    EXPECT_TRUE(hears(ROOT));
    EXPECT_LE(ear().longestSilenceSince(from), A_LATE_BLOCK);

    desk.jack().freeze();
    expectOrderlyEnd();
    EXPECT_EQ(options()[u"midiOutDevice"_s].toString(), u"midi-monitor:input"_s);
}
