// What other programs make of the MIDI output: a plain listener, and a synthesiser that is heard.

#include "end-to-end/PlayingFixture.h"
#include "end-to-end/Waiting.h"
#include "support/Tone.h"

#include <RtMidi.h>

#include <csignal>

#include <sys/prctl.h>

namespace {

QStringList lines(std::initializer_list<const char*> texts)
{
    QStringList list;
    for (const char* text : texts)
        list.append(QString::fromLatin1(text));
    return list;
}

/// The same message on each channel, from status byte `status` on.
QStringList onAllChannels(int status, const char* data)
{
    QStringList messages;
    for (int channel = 0; channel < 16; ++channel)
        messages.append(QStringLiteral("%1 %2").arg(status + channel, 2, 16).arg(QLatin1StringView(data)).toUpper());
    return messages;
}

const QStringList RANGE_200 = lines({"B0 64 00", "B0 65 00", "B0 06 02", "B0 26 00", "B0 64 7F", "B0 65 7F"});

class MidiPeer : public PlayingFixture
{
protected:
    void SetUp() override
    {
        PlayingFixture::SetUp();
        qputenv("JACK_DEFAULT_SERVER", desk.soundServer().toLatin1());
        qputenv("JACK_NO_START_SERVER", "1");
    }
    void TearDown() override
    {
        qunsetenv("JACK_DEFAULT_SERVER");
        qunsetenv("JACK_NO_START_SERVER");
    }

    /// The program, sending to this port.
    void startSendingTo(const char* port, int channel, int glissRangeCents = 0)
    {
        writeOptions({{QStringLiteral("midiOutDevice"), QString::fromLatin1(port)},
                      {QStringLiteral("midiOutChannel"), channel},
                      {QStringLiteral("glissRangeMPECents"), glissRangeCents}});
        program = std::make_unique<RunningProgram>(desk);
        ASSERT_TRUE(program->waitForWindow());
    }
};

/// An input that writes down each message it gets.
class Listening : public MidiPeer
{
protected:
    void SetUp() override
    {
        MidiPeer::SetUp();
        if (HasFatalFailure())
            return;
        mInput = std::make_unique<RtMidiIn>(RtMidi::UNIX_JACK, "listener", 1024);
        mInput->ignoreTypes(false, false, false);
        mInput->openVirtualPort("in");
    }
    void TearDown() override
    {
        mInput.reset();
        MidiPeer::TearDown();
    }

    void stopListening() { mInput.reset(); }
    /// The messages so far, once there are so many.
    QStringList heard(qsizetype atLeast)
    {
        waitUntil([&] {
            std::vector<unsigned char> message;
            for (mInput->getMessage(&message); !message.empty(); mInput->getMessage(&message)) {
                const QByteArray bytes(reinterpret_cast<const char*>(message.data()),
                                       static_cast<qsizetype>(message.size()));
                mHeard.append(QString::fromLatin1(bytes.toHex(' ')).toUpper());
            }
            return mHeard.size() >= atLeast;
        }, 5000);
        return std::exchange(mHeard, {});
    }
    ::testing::AssertionResult pressGives(const char* ball, const QStringList& expected)
    {
        if (!program->click(screen->ball(ball)))
            return ::testing::AssertionFailure() << "the ball cannot be pressed";
        const QStringList found = heard(expected.size());
        if (found != expected)
            return ::testing::AssertionFailure() << ball << " gave\n" << found.join(u'\n').toStdString();
        return ::testing::AssertionSuccess();
    }

private:
    std::unique_ptr<RtMidiIn> mInput;
    QStringList mHeard;
};

/// FluidSynth, heard instead of the program.
class Synthesiser : public MidiPeer
{
protected:
    void SetUp() override
    {
        MidiPeer::SetUp();
        if (HasFatalFailure())
            return;
        mSynth.setProcessEnvironment(desk.environment());
        mSynth.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
        mSynth.setStandardOutputFile(QProcess::nullDevice());
        mSynth.setStandardErrorFile(QProcess::nullDevice());
        const QString server = desk.soundServer();
        mSynth.start(QStringLiteral("fluidsynth"),
                     {QStringLiteral("-a"), QStringLiteral("jack"), QStringLiteral("-m"), QStringLiteral("jack"),
                      QStringLiteral("-R"), QStringLiteral("0"), QStringLiteral("-C"), QStringLiteral("0"),
                      QStringLiteral("-o"), QStringLiteral("audio.jack.server=") + server, QStringLiteral("-o"),
                      QStringLiteral("midi.jack.server=") + server,
                      QStringLiteral("/usr/share/sounds/sf2/TimGM6mb.sf2")});
        ASSERT_TRUE(mSynth.waitForStarted()) << "fluidsynth does not start.";
        ASSERT_TRUE(recorder->connectTo({"fluidsynth-midi:left", "fluidsynth-midi:right"}));
    }
    void TearDown() override
    {
        program.reset();
        mSynth.terminate();
        if (!mSynth.waitForFinished(5000))
            mSynth.kill();
        mSynth.waitForFinished(5000);
        MidiPeer::TearDown();
    }

    void tell(const QString& command)
    {
        mSynth.write(command.toLatin1() + '\n');
        mSynth.waitForBytesWritten();
    }
    /// Presses each by itself. Their pitches stand to the first one's as the ratios do. FluidSynth
    /// cuts each pitch to whole cents, so these are ratios little above a whole number of cents:
    /// -702 and 0.045, 386 and 0.314.
    void expectExactRatios()
    {
        const struct
        {
            const char* ball;
            double ratio;
        } balls[] = {{"/", 1.0}, {"/-3", 2.0 / 3.0}, {"/5", 5.0 / 4.0}};
        double root = 0.0;
        for (const auto& [ball, ratio] : balls) {
            SCOPED_TRACE(ball);
            ASSERT_TRUE(program->click(screen->ball(ball)));
            ASSERT_TRUE(recorder->waitForSound());
            recorder->record(0.3); // the stroke
            const auto found = tone::pitchNear(recorder->record(1.5), ROOT * ratio, VirtualDesk::SAMPLE_RATE);
            ASSERT_TRUE(found);
            root = root == 0.0 ? *found : root;
            EXPECT_NEAR(tone::centsBetween(*found, root * ratio), 0.0, 1.0);
            EXPECT_NEAR(tone::centsBetween(*found, ROOT * ratio), 0.0, SAMPLES_CENTS_OFF);
            ASSERT_TRUE(program->click(screen->ball(ball)));
            ASSERT_TRUE(recorder->waitForSilence());
        }
    }

    static constexpr double SAMPLES_CENTS_OFF = 5.0; // the tuning of the recorded samples themselves

private:
    QProcess mSynth;
};

} // namespace

TEST_F(Listening, OneChannelHearsTheTuningBeforeEachNote)
{
    startSendingTo("listener:in", 3);
    // The keys are those of the voices from 32 on, the velocity is the patch's first macro, 0.8.
    EXPECT_TRUE(pressGives("/", lines({"F0 7F 7F 08 02 00 01 20 45 00 00 F7", "93 20 65"})));
    EXPECT_TRUE(pressGives("/3", lines({"F0 7F 7F 08 02 00 01 21 4C 02 40 F7", "93 21 65"})));
    EXPECT_TRUE(pressGives("/5", lines({"F0 7F 7F 08 02 00 01 22 48 6E 3E F7", "93 22 65"})));
    EXPECT_TRUE(pressGives("/3", lines({"83 21 40"})));
    EXPECT_TRUE(pressGives("/5", lines({"83 22 40"})));
    // At the end all voices are ended once more that have not faded yet.
    ASSERT_TRUE(recorder->connectToProgram());
    ASSERT_TRUE(soundsAt(ROOT));
    recorder->record(1.0);
    EXPECT_EQ(program->quit(), 0);
    // The end of the note that still sounds, then what leaves the device as it was.
    EXPECT_EQ(heard(3).join(u'\n').toStdString(),
              lines({"83 20 40", "B3 7B 00",
                     "F0 7F 7F 08 02 00 03 20 20 00 00 21 21 00 00 22 22 00 00 F7"})
                  .join(u'\n')
                  .toStdString());
    EXPECT_EQ(options()[QStringLiteral("midiOutDevice")].toString(), QStringLiteral("listener:in"));
    EXPECT_EQ(options()[QStringLiteral("midiOutChannel")].toInt(), 3);
}

TEST_F(Listening, InMpeEachVoiceHasItsChannelAndBend)
{
    startSendingTo("listener:in", -1, 150);
    QStringList begin = lines({"B0 7B 00"}) + RANGE_200 + RANGE_200;
    begin[4] = QStringLiteral("B0 26 32"); // before the option is applied the range is 50 cents
    begin[3] = QStringLiteral("B0 06 00");
    EXPECT_EQ(heard(begin.size()), begin);
    EXPECT_TRUE(pressGives("/", lines({"E0 00 40", "90 45 65"})));
    EXPECT_TRUE(pressGives("/3", lines({"E1 50 40", "91 4C 65"}))); // 1.955 of 200 cents
    EXPECT_TRUE(pressGives("/5", lines({"E2 4F 3B", "92 49 65"}))); // -13.686
    EXPECT_TRUE(pressGives("/3", lines({"81 4C 40"})));
    EXPECT_TRUE(pressGives("/5", lines({"82 49 40"})));
    EXPECT_EQ(program->quit(), 0);
    const QStringList end =
        lines({"80 45 40"}) + onAllChannels(0xB0, "7B 00") + onAllChannels(0xE0, "00 40") + RANGE_200;
    EXPECT_EQ(heard(end.size()).join(u'\n').toStdString(), end.join(u'\n').toStdString());
}

TEST_F(Listening, TheProgramPlaysOnWhenItsListenerIsGone)
{
    startSendingTo("listener:in", 0);
    EXPECT_TRUE(pressGives("/", lines({"F0 7F 7F 08 02 00 01 20 45 00 00 F7", "90 20 65"})));
    stopListening();
    ASSERT_TRUE(program->click(screen->ball("/")));
    ASSERT_TRUE(recorder->connectToProgram());
    ASSERT_TRUE(recorder->waitForSilence());
    ASSERT_TRUE(program->click(screen->ball("/3")));
    EXPECT_TRUE(soundsAt(ROOT * 3.0 / 2.0));
    EXPECT_EQ(program->quit(), 0);
}

TEST_F(Synthesiser, ObeysTheTuningOfOneChannel)
{
    tell(QStringLiteral("prog 0 79"));
    tell(QStringLiteral("tuning t 0 0"));
    tell(QStringLiteral("settuning 0 0 0"));
    startSendingTo("fluidsynth-midi:midi_00", 0);
    expectExactRatios();
}

// Its channels have the range of two semitones that a device has by itself.
TEST_F(Synthesiser, FollowsTheBendsOfMpe)
{
    for (int channel = 0; channel < 3; ++channel)
        tell(QStringLiteral("prog %1 79").arg(channel));
    startSendingTo("fluidsynth-midi:midi_00", -1, 150);
    expectExactRatios();
}
