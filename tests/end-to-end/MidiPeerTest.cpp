// What other programs make of the MIDI output: a plain listener, and a synthesiser that is heard.

#include "end-to-end/PlayingFixture.h"
#include "support/Tone.h"
#include "support/Waiting.h"

#include <RtMidi.h>

#include <algorithm>
#include <map>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

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
        program.reset();
        synth.kill();
        synth.waitForFinished();
        qunsetenv("JACK_DEFAULT_SERVER");
    }

    /// The program, sending to this port.
    void startSendingTo(const QString& port, int channel, bool zone = false)
    {
        writeOptions({{u"midiOutDevice"_s, port},
                      {u"midiOutChannel"_s, channel},
                      {u"midiOutMpeZone"_s, zone},
                      {u"glissRangeMPECents"_s, 150}});
        program = std::make_unique<RunningProgram>(desk);
        ASSERT_TRUE(program->waitForWindow());
    }
    /// FluidSynth is told these commands, and heard instead of the program.
    void startSynth(const QByteArray& commands)
    {
        synth.setProcessEnvironment(desk.environment());
        synth.startCommand(
            u"fluidsynth -a jack -m jack -R 0 -C 0 -o audio.jack.server=%1 -o midi.jack.server=%1 "
            "/usr/share/sounds/sf2/TimGM6mb.sf2"_s.arg(desk.soundServer()));
        synth.write(commands + '\n');
        ASSERT_TRUE(synth.waitForBytesWritten()) << "fluidsynth does not start.";
        ASSERT_TRUE(recorder->connectTo({"fluidsynth-midi:left", "fluidsynth-midi:right"}));
    }
    /// Pressed each by itself, the balls' pitches stand to the first one's as the ratios do. FluidSynth cuts
    /// each pitch to whole cents, so these are ratios little above a whole number of cents: -702 and 0.045,
    /// 386 and 0.314.
    void expectExactRatios(const QByteArray& commands, int channel)
    {
        ASSERT_NO_FATAL_FAILURE(startSynth(commands));
        startSendingTo(u"fluidsynth-midi:midi_00"_s, channel);
        const std::pair<const char*, double> balls[] = {{"/", 1.0}, {"/-3", 2.0 / 3.0}, {"/5", 5.0 / 4.0}};
        double root = 0.0;
        for (const auto& [ball, ratio] : balls) {
            SCOPED_TRACE(ball);
            ASSERT_TRUE(press(ball) && recorder->waitForSound());
            recorder->record(0.3); // the stroke
            const auto found = tone::pitchNear(recorder->record(1.5), ROOT * ratio, VirtualDesk::SAMPLE_RATE);
            ASSERT_TRUE(found);
            root = root == 0.0 ? *found : root;
            EXPECT_NEAR(tone::centsBetween(*found, root * ratio), 0.0, 1.0);
            EXPECT_NEAR(tone::centsBetween(*found, ROOT * ratio), 0.0, 5.0) << "the samples' own tuning";
            ASSERT_TRUE(press(ball) && recorder->waitForSilence());
        }
        program.reset();
    }

    TestProcess synth;
};

} // namespace

TEST_F(MidiPeer, AListenerHearsTheTuningBeforeEachNoteAndIsNotMissed)
{
    auto input = std::make_unique<RtMidiIn>(RtMidi::UNIX_JACK, "listener", 1024);
    input->ignoreTypes(false, false, false);
    input->openVirtualPort("in");
    // The messages of one press, or of the end.
    const auto heard = [&](const QStringList& expected) {
        QStringList messages;
        waitUntil(
            [&] {
                std::vector<unsigned char> message;
                for (input->getMessage(&message); !message.empty(); input->getMessage(&message)) {
                    const QByteArray bytes(reinterpret_cast<const char*>(message.data()),
                                           static_cast<qsizetype>(message.size()));
                    messages.append(QString::fromLatin1(bytes.toHex(' ')).toUpper());
                }
                return messages.size() >= expected.size();
            },
            5000);
        EXPECT_EQ(messages.join(u'\n').toStdString(), expected.join(u'\n').toStdString());
    };
    startSendingTo(u"listener:in"_s, 3);
    // The keys are those of the voices from 32 on, the velocity is the patch's first macro, 0.8.
    const std::pair<const char*, QStringList> presses[] = {
        {"/", {u"F0 7F 7F 08 02 00 01 20 45 00 00 F7"_s, u"93 20 65"_s}},
        {"/3", {u"F0 7F 7F 08 02 00 01 21 4C 02 40 F7"_s, u"93 21 65"_s}},
        {"/3", {u"83 21 40"_s}},
    };
    for (const auto& [ball, messages] : presses) {
        ASSERT_TRUE(press(ball));
        heard(messages);
    }
    // At the end all voices are ended once more that have not faded yet.
    ASSERT_TRUE(recorder->connectToProgram() && soundsAt(ROOT));
    recorder->record(1.0);
    EXPECT_EQ(program->quit(), 0);
    // The end of the note that still sounds, then what leaves the device as it was.
    heard({u"83 20 40"_s, u"B3 7B 00"_s, u"F0 7F 7F 08 02 00 02 20 20 00 00 21 21 00 00 F7"_s});
    EXPECT_EQ(options()[u"midiOutDevice"_s].toString(), u"listener:in"_s);
    EXPECT_EQ(options()[u"midiOutChannel"_s].toInt(), 3);

    startSendingTo(u"listener:in"_s, 0);
    ASSERT_TRUE(press("/"));
    heard({u"F0 7F 7F 08 02 00 01 20 45 00 00 F7"_s, u"90 20 65"_s});
    input.reset();
    ASSERT_TRUE(recorder->connectToProgram());
    ASSERT_TRUE(press("/") && recorder->waitForSilence() && press("/3"));
    EXPECT_TRUE(soundsAt(FIFTH));
    EXPECT_EQ(program->quit(), 0);
}

TEST_F(MidiPeer, ASynthesiserObeysTheTuningOfOneChannel)
{
    expectExactRatios("prog 0 79\ntuning t 0 0\nsettuning 0 0 0", 0);
}

// Its channels have the range of two semitones that a device has by itself.
TEST_F(MidiPeer, ASynthesiserFollowsTheBendsOfMpe)
{
    expectExactRatios("prog 0 79\nprog 1 79\nprog 2 79", -1);
}

// FluidSynth cuts each pitch to whole cents and bends a little too little. So these lie near a key and little
// above a whole number of cents, below the range of its next sample, and no partial lies near another one.
TEST_F(MidiPeer, ASynthesiserPlaysFifteenVoicesOfAZoneAtOnce)
{
    const std::pair<const char*, double> balls[] = {{"/", 1.0},
                                                    {"/-2", 1.0 / 2.0},
                                                    {"/-3", 2.0 / 3.0},
                                                    {"/-17", 16.0 / 17.0},
                                                    {"/5", 5.0 / 4.0},
                                                    {"/2/-3/-3", 8.0 / 9.0},
                                                    {"/-2/-2", 1.0 / 4.0},
                                                    {"/-2/-3", 1.0 / 3.0},
                                                    {"/-3/-3", 4.0 / 9.0},
                                                    {"/-2/-17", 8.0 / 17.0},
                                                    {"/-2/5", 5.0 / 8.0},
                                                    {"/3/-29", 24.0 / 29.0},
                                                    {"/2/-3", 4.0 / 3.0},
                                                    {"/-3/-3/-3", 8.0 / 27.0},
                                                    {"/-3/-3/5", 5.0 / 9.0}};
    QByteArray sounds; // a steady one on each member, also on the channel of the drums
    for (int channel = 1; channel < 16; ++channel)
        sounds += "select " + QByteArray::number(channel) + " 1 0 79\n";
    ASSERT_NO_FATAL_FAILURE(startSynth(sounds));
    startSendingTo(u"fluidsynth-midi:midi_00"_s, 0, true);
    for (const auto& [ball, ratio] : balls)
        ASSERT_TRUE(press(ball) && hears(ROOT * ratio)) << ball;
    std::map<const char*, std::vector<double>> off; // missing blocks spoil one recording or another
    for (int i = 0; i < 9; ++i) {
        const auto recording = recorder->record(0.8);
        for (const auto& [ball, ratio] : balls)
            off[ball].push_back(tone::centsOff(recording, ROOT * ratio, VirtualDesk::SAMPLE_RATE));
    }
    for (auto& [ball, errors] : off) {
        std::ranges::nth_element(errors, errors.begin() + 4);
        EXPECT_NEAR(errors[4] - off["/"][4], 0.0, 0.5) << ball;
    }
    EXPECT_EQ(program->quit(), 0);
    EXPECT_TRUE(recorder->waitForSilence());
}
