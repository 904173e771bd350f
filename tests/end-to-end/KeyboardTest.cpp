// A MIDI keyboard plays the running program: another program's port, over JACK.

#include "end-to-end/PlayingFixture.h"
#include "support/Tone.h"
#include "support/Waiting.h"

#include <RtMidi.h>

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <random>
#include <thread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr double EXACT_CENTS = 0.1;

class Keyboard : public PlayingFixture
{
protected:
    enum Status { Off = 0x80, On = 0x90, Control = 0xB0, Bend = 0xE0 };
    static constexpr int PEDAL = 64;
    static constexpr int KNOB = 20;

    /// The program, which wants the port of this keyboard; 1/1 is key 60.
    void SetUp() override
    {
        PlayingFixture::SetUp();
        qputenv("JACK_DEFAULT_SERVER", desk.soundServer().toLatin1());
        qputenv("JACK_NO_START_SERVER", "1");
        keys = std::make_unique<RtMidiOut>(RtMidi::UNIX_JACK, "keys");
        keys->openVirtualPort("out");
        const QString port = u"keys:out"_s;
        const QJsonObject knob{
            {u"input"_s, port}, {u"channel"_s, 1}, {u"controller"_s, KNOB}, {u"does"_s, u"volume"_s}};
        const QJsonObject input{{u"inputs"_s, QJsonArray{port}},
                                {u"controllers"_s, QJsonObject{{u"controllers"_s, QJsonArray{knob}}}}};
        QJsonArray learned;
        for (std::size_t i = 0; i < ratios.size(); ++i)
            learned.append(QJsonObject{{u"channel"_s, 0},
                                       {u"key"_s, FIRST_KEY + static_cast<int>(i)},
                                       {u"ratio"_s, u"%1/%2"_s.arg(ratios[i].first).arg(ratios[i].second)}});
        const QJsonObject layout{
            {u"name"_s, u"ratios"_s}, {u"enabled"_s, true}, {u"kind"_s, u"learned"_s}, {u"keys"_s, learned}};
        home.write(u"midi_input.json"_s, QJsonDocument(input).toJson());
        home.write(u"midi_layouts.json"_s,
                   QJsonDocument(QJsonObject{{u"layouts"_s, QJsonArray{layout}}}).toJson());
        ASSERT_NO_FATAL_FAILURE(start());
        ASSERT_TRUE(waitUntil([&] { return isHeard(); })) << "the program does not open the port.";
        ASSERT_TRUE(recorder->waitForSilence());
    }
    void TearDown() override
    {
        keys.reset();
        PlayingFixture::TearDown();
        program.reset();
        qunsetenv("JACK_DEFAULT_SERVER");
    }

    void send(int status, int data1, int data2)
    {
        const std::array<unsigned char, 3> message{static_cast<unsigned char>(status),
                                                   static_cast<unsigned char>(data1),
                                                   static_cast<unsigned char>(data2)};
        keys->sendMessage(message.data(), message.size());
    }
    void down(int key) { send(On, key, 100); }
    void up(int key) { send(On, key, 0); }
    double pitchOf(int key) const
    {
        const auto& [numerator, denominator] = ratios[static_cast<std::size_t>(key - FIRST_KEY)];
        return ROOT * numerator / denominator;
    }
    bool isHeard()
    {
        down(FIRST_KEY);
        const bool heard = tone::amplitudeAt(recorder->record(0.3), ROOT, VirtualDesk::SAMPLE_RATE) > 0.01;
        up(FIRST_KEY);
        return heard;
    }
    /// One sine, which is heard to be this one.
    void expectExactly(double frequency)
    {
        ASSERT_TRUE(recorder->waitForSound());
        std::optional<double> found;
        waitUntil([&] {
            found = tone::pitchOfSine(recorder->record(1.0), frequency, VirtualDesk::SAMPLE_RATE);
            return found.has_value();
        });
        ASSERT_TRUE(found) << "what sounds is no sine near " << frequency;
        EXPECT_NEAR(tone::centsBetween(*found, frequency), 0.0, EXACT_CENTS) << frequency;
    }

    static constexpr int FIRST_KEY = 60;
    static constexpr std::array<std::pair<int, int>, 8> ratios{
        {{1, 1}, {9, 8}, {5, 4}, {11, 8}, {3, 2}, {5, 3}, {7, 4}, {2, 1}}};
    std::unique_ptr<RtMidiOut> keys;
};

TEST_F(Keyboard, EachKeySoundsItsRatioUntilItGoesUp)
{
    for (int key = FIRST_KEY; key < FIRST_KEY + static_cast<int>(ratios.size()); ++key) {
        SCOPED_TRACE(key);
        down(key);
        expectExactly(pitchOf(key));
        send(Off, key, 64);
        ASSERT_TRUE(recorder->waitForSilence());
    }
    // The wheel fully up: 8191 of 8192 of two semitones.
    send(Bend, 127, 127);
    down(FIRST_KEY);
    expectExactly(ROOT * std::exp2(2.0 / 12.0 * 8191.0 / 8192.0));
    send(Bend, 0, 64);
    expectExactly(ROOT);
    up(FIRST_KEY);
    EXPECT_TRUE(recorder->waitForSilence());
    expectOrderlyEnd();
}

TEST_F(Keyboard, PedalTranspositionAndKnobsActOnWhatIsHeld)
{
    send(Control, PEDAL, 127);
    down(FIRST_KEY);
    up(FIRST_KEY);
    expectExactly(ROOT);
    send(Control, PEDAL, 0);
    ASSERT_TRUE(recorder->waitForSilence());

    // Up by 2, while a key is held whose pitch stays.
    down(FIRST_KEY);
    ASSERT_TRUE(hears(ROOT));
    ASSERT_TRUE(program->type(u"Right"_s));
    constexpr int fifth = FIRST_KEY + 4;
    ASSERT_TRUE(waitUntil([&] {
        down(fifth);
        const bool isUp =
            tone::amplitudeAt(recorder->record(LISTENING), 2 * FIFTH, VirtualDesk::SAMPLE_RATE) > 0.01;
        up(fifth);
        return isUp;
    }));
    EXPECT_TRUE(hearsNoMore(2 * FIFTH));
    expectExactly(ROOT);

    // The knob takes the volume over at its place and turns it down.
    for (int value = 127; value >= 0; --value)
        send(Control, KNOB, value);
    EXPECT_TRUE(recorder->waitForSilence());
    for (int value = 0; value < 100; ++value)
        send(Control, KNOB, value);
    expectExactly(ROOT);
    up(FIRST_KEY);
    EXPECT_TRUE(recorder->waitForSilence());
}

TEST_F(Keyboard, NothingHangsOnAfterTenThousandNotes)
{
    constexpr int notes = 10'000;
    std::mt19937 random(1); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same notes each time
    const auto upTo = [&random](unsigned most) { return static_cast<int>(random() % (most + 1)); };
    std::array<int, ratios.size()> held{};
    for (int note = 0; note < notes; ++note) {
        const auto which = static_cast<std::size_t>(upTo(ratios.size() - 1));
        const int key = FIRST_KEY + static_cast<int>(which);
        down(key);
        ++held[which];
        // Some stay down and are struck again; some pedals and bends come between.
        while (held[which] > 0 && upTo(2) > 0) {
            upTo(1) ? up(key) : send(Off, key, 64);
            --held[which];
        }
        if (upTo(50) == 0)
            send(Control, PEDAL, upTo(1) * 127);
        if (upTo(50) == 0)
            send(Bend, upTo(127), upTo(127));
        if (note % 1000 == 999) {
            EXPECT_TRUE(program->type(note % 2000 == 999 ? u"Right"_s : u"Left"_s));
        }
        if (note % 16 == 15)
            std::this_thread::sleep_for(2ms); // a pace that no player reaches, below the port's limit
    }
    send(Control, PEDAL, 0);
    send(Bend, 0, 64);
    for (std::size_t which = 0; which < held.size(); ++which) {
        for (; held[which] > 0; --held[which])
            up(FIRST_KEY + static_cast<int>(which));
    }
    EXPECT_TRUE(recorder->waitForSilence());
    // On a busy machine a press of an arrow key is lost in the one before, which still flashes.
    EXPECT_TRUE(program->type(u"BackSpace"_s));
    EXPECT_TRUE(waitUntil([&] { return isHeard(); }));
    EXPECT_TRUE(recorder->waitForSilence());
    down(FIRST_KEY);
    expectExactly(ROOT);
    up(FIRST_KEY);
    EXPECT_TRUE(recorder->waitForSilence());
    expectOrderlyEnd();
}

} // namespace
