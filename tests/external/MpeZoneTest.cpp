// The MPE zone, as a receiver hears it that was written from the text of MPE.

#include "external/MidiDouble.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <random>
#include <set>

namespace {

/// A receiver of one lower zone. Ranges are kept for each channel, as a plain device has them.
struct MpeReceiver
{
    void hear(std::span<const midi::Byte> message)
    {
        const int channel = message[0] & 0x0F;
        Channel& at = channels.at(static_cast<size_t>(channel));
        const int first = message.size() > 1 ? message[1] : 0;
        const int second = message.size() > 2 ? message[2] : 0;
        switch (message[0] & 0xF0) {
        case 0x80: end(at, at.notes.erase(first) > 0); break;
        case 0x90:
            broken += members > 0 && (channel == 0 || channel > members || !at.notes.empty() || !at.bent);
            for (int other = 1; other <= members; ++other) {
                const Channel& free = channels.at(static_cast<size_t>(other));
                broken += free.notes.empty() && free.freed < at.freed; // it has been free for longer
            }
            at.notes.insert(first);
            break;
        case 0xB0: control(channel, at, first, second); break;
        case 0xE0:
            at.bend = second * 128 + first;
            at.bent = true;
            break;
        default: broken += message[0] != 0xF0;
        }
    }

    /// Of all notes, in cents from key 0, in order.
    std::multiset<double> pitches() const
    {
        std::multiset<double> heard;
        for (const Channel& each : channels) {
            for (const int key : each.notes)
                heard.insert(key * 100.0 + cents(each) + cents(channels[0]));
        }
        return heard;
    }

    struct Channel
    {
        std::set<int> notes;
        int bend = 8192;
        bool bent = false; // since its last note
        int range = 2;     // semitones
        int parameter = 0x3FFF;
        int freed = 0; // in order
    };
    std::array<Channel, 16> channels;
    int members = 0;
    int broken = 0; // messages that the text does not allow

private:
    static double cents(const Channel& each) { return (each.bend - 8192) / 8192.0 * each.range * 100.0; }
    void end(Channel& at, bool sounded)
    {
        at.bent = false;
        if (sounded && members > 0)
            at.freed = ++mFreed;
    }
    void control(int channel, Channel& at, int number, int value)
    {
        switch (number) {
        case 0x64: at.parameter = (at.parameter & 0x3F80) | value; break;
        case 0x65: at.parameter = (at.parameter & 0x7F) | value << 7; break;
        case 0x7B:
            end(at, !at.notes.empty());
            at.notes.clear();
            break;
        case 0x06:
            if (at.parameter == 6 && channel == 0 && value < 16) {
                members = value;
                for (int i = 1; i <= value; ++i)
                    channels.at(static_cast<size_t>(i)).range = 48;
            } else {
                broken += at.parameter != 0;
                at.range = value;
            }
            break;
        default: broken += number != 0x26 || at.parameter != 0;
        }
    }

    int mFreed = 0;
};

std::string parameter(int channel, const char* number, const char* value)
{
    return QStringLiteral("B%1 64 %2, B%1 65 00, B%1 06 %3, B%1 64 7F, B%1 65 7F")
        .arg(QString::number(channel, 16).toUpper(), QLatin1StringView(number), QLatin1StringView(value))
        .toStdString();
}

std::string memberRange(const char* semitones)
{
    std::string all;
    for (int channel = 1; channel < MidiOutput::CHANNELS; ++channel)
        all += ", " + parameter(channel, "00", semitones);
    return all;
}

class MpeZone : public ::testing::Test
{
protected:
    std::string take() const { return out.system->take(); }

    MpeReceiver receiver; // hears until the output has ended
    MidiOutOverDouble out;
};

} // namespace

TEST_F(MpeZone, IsAnnouncedWithItsRangesAndTakenBack)
{
    ASSERT_TRUE(out.selectPort(0));
    out.setChannel(3);
    out.setKeyFrequency({0}, {440.0F});
    take();
    out.setMpeZone();
    out.setMpeZone();
    const std::string begin = parameter(0, "06", "0F") + ", " + parameter(0, "00", "02") + ", E0 00 40";
    EXPECT_EQ(take(), "B3 7B 00, F0 7F 7F 08 02 00 01 20 20 00 00 F7, " + begin + memberRange("02"));
    const std::pair<int, const char*> ranges[] = {
        {200, ""}, {201, "03"}, {9600, "60"}, {std::numeric_limits<int>::max(), ""}, {-5, "02"}, {300, "03"},
    };
    for (const auto& [cents, semitones] : ranges) {
        out.mpeSetPitchBendRange(cents);
        EXPECT_EQ(take(), *semitones == 0 ? "" : memberRange(semitones).substr(2)) << cents;
    }
    const std::string end = onAllChannels(0xB0, "7B 00") + ", " + onAllChannels(0xE0, "00 40")
                            + memberRange("02") + ", " + parameter(0, "06", "00");
    out.selectPort(1);
    EXPECT_EQ(take(), end + ", close, open 1 as RtMidi Output, " + begin + memberRange("03"));
    out.setChannel(16); // no channel, as from MPE
    EXPECT_EQ(take(), end);
    out.setMpeZone();
    take();
    out.setChannel(-1);
    EXPECT_EQ(take(), end + ", " + bendRange("03", "00"));
    out.setMpeZone();
    EXPECT_EQ(take(), onAllChannels(0xB0, "7B 00") + ", " + onAllChannels(0xE0, "00 40") + ", "
                          + bendRange("02", "00") + ", " + begin + memberRange("03"));
    out.term();
    EXPECT_EQ(take(), end + ", close");
}

TEST_F(MpeZone, TheErrorIsTheStepOrWhatAHeldNoteMisses)
{
    EXPECT_DOUBLE_EQ(out.pitchErrorCents(), 100.0 / 16384.0);
    out.mpeSetPitchBendRange(250);
    for (const bool zone : {false, true}) {
        const double step = (zone ? 300.0 : 250.0) / 8192.0;
        zone ? out.setMpeZone() : out.setChannel(-1);
        out.setKeyFrequency({0, 1, 2}, {440.0F, 660.0F, 15000.0F}); // the last has no key
        EXPECT_DOUBLE_EQ(out.pitchErrorCents(), step);
        out.bendVoices({0}, {2000.0F}); // 2621.2 cents, of which 200 are followed
        EXPECT_NEAR(out.pitchErrorCents(), 1200.0 * std::log2(2000.0 / 440.0) - 200.0, step);
        out.voiceOff(0);
        EXPECT_DOUBLE_EQ(out.pitchErrorCents(), step);
    }
}

TEST_F(MpeZone, AReceiverHearsEachVoiceAtItsPitchAndLearnsOfTheEnd)
{
    out.mpeSetPitchBendRange(150);
    out.system->listener = [&](std::span<const midi::Byte> message) { receiver.hear(message); };
    constexpr unsigned seed = 16;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const auto any = [&](int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); };
    const auto anyHz = [&] { return static_cast<float>(20 + any(12000)); };
    struct Voice
    {
        float began; // Hz
        float now;   // with its glissando
    };
    std::map<int, Voice> sounding;
    for (int step = 0; step < 6000; ++step) {
        const int voice = any(20);
        const float glide = std::exp2(static_cast<float>(any(80) - 40) / 1200.0F); // within each limit
        switch (any(500) < 4 ? any(4) : 4 + any(9)) {
        case 0: out.selectPort(any(2) - 1), sounding.clear(); break;
        case 1: out.setChannel(any(4) - 1), sounding.clear(); break;
        case 2: out.endNotes(), sounding.clear(); break;
        case 3: out.mpeSetPitchBendRange(100 + any(1500)); break;
        case 4:
            if (!out.isMpeZone())
                out.setMpeZone(), sounding.clear();
            break;
        case 5:
            if (sounding.contains(voice)) { // by a comma, or to anywhere
                Voice& at = sounding[voice];
                at.began = at.now = any(2) == 0 && at.now < 11000.0F ? at.now * 1.0125F : anyHz();
                out.retuneVoices({voice}, {at.now}, {0.8F});
            }
            break;
        case 6:
        case 7:
        case 8:
            if (sounding.contains(voice))
                sounding[voice].now = sounding[voice].began * glide;
            out.bendVoices({voice}, {sounding.contains(voice) ? sounding[voice].now : 500.0F});
            break;
        default:
            out.voiceOff(voice);
            sounding.erase(voice);
            if (!out.portOpen || any(5) < 2) // the player asks for the port too
                break;
            const float hz = anyHz();
            out.setKeyFrequency({voice}, {hz});
            out.voiceOn(voice, 100);
            if (out.isMpeZone() && sounding.size() < 15)
                sounding[voice] = {hz, hz};
        }
        out.system->flush();
        ASSERT_EQ(receiver.broken, 0) << "step " << step;
        if (!out.portOpen || !out.isMpeZone()) {
            ASSERT_EQ(receiver.members, 0);
            for (size_t i = 1; i < 16; ++i)
                ASSERT_EQ(receiver.channels[i].range, 2);
            continue;
        }
        ASSERT_EQ(receiver.members, 15);
        std::multiset<double> wanted;
        for (const auto& [each, at] : sounding)
            wanted.insert(6900.0 + 1200.0 * std::log2(static_cast<double>(at.now) / 440.0));
        const std::multiset<double> heard = receiver.pitches();
        const double halfStep = receiver.channels[1].range * 100.0 / 8192.0 / 2.0 + 0.001;
        const auto isNear = [&](double a, double b) { return std::abs(a - b) <= halfStep; };
        ASSERT_TRUE(std::ranges::equal(wanted, heard, isNear)) << "step " << step;
    }
    out.selectPort(-1);
    EXPECT_EQ(receiver.members, 0);
    EXPECT_TRUE(receiver.pitches().empty());
}
