// Long random sequences of what a player does, heard by a device at the other end.

#include "external/Interface.h"
#include "external/MidiDouble.h"
#include "external/MidiReceiver.h"
#include "sound/PatchHandOver.h"
#include "sound/PdPlayer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <thread>

namespace {

constexpr int VOICES = 20; // more than channels
constexpr int MTS_CHANNEL = 3;
constexpr double LAST_PITCH = 127.99999;

struct Rig
{
    Rig()
    {
        router.midiOutput = &out;
        out.system->listener = [this](std::span<const midi::Byte> message) {
            devices.at(static_cast<size_t>(out.system->openPort)).hear(message);
        };
    }

    std::array<MidiReceiver, 4> devices; // by port
    MidiOutOverDouble out;
    Interface router;
};

class Sequence : public Rig
{
public:
    explicit Sequence(unsigned seed)
        : mRandom(seed)
        , mRoom(std::array{0.0, 2.0, 12.0, 95.5}.at(static_cast<size_t>(any(4))))
    {
        out.setChannel(MTS_CHANNEL);
        out.mpeSetPitchBendRange(static_cast<int>(std::lround(mRoom * 100.0)) + 50);
    }

    void step()
    {
        switch (any(12)) {
        case 0: selectPort(any(5) - 1); break;
        case 1: setChannel(any(2) == 0 ? MidiOutput::MPE : MTS_CHANNEL); break;
        case 2:
        case 3:
        case 4: stop(any(VOICES)); break;
        case 5:
        case 6:
        case 7: bend(); break;
        default: start(any(VOICES)); break;
        }
    }

    void check()
    {
        out.system->take();
        for (size_t i = 0; i < devices.size(); ++i) {
            ASSERT_EQ(devices[i].broken, 0);
            ASSERT_TRUE(static_cast<int>(i) == mPort || devices[i].notes().empty()) << "port " << i;
        }
        std::set<int> heard;
        std::set<int> taken;
        if (mPort >= 0) {
            for (const MidiReceiver::Note& note : devices[static_cast<size_t>(mPort)].notes()) {
                const int voice = mMpe ? out.channelVoice[static_cast<size_t>(note.first)] : note.second - 32;
                ASSERT_TRUE(mVoices[static_cast<size_t>(voice)].sounds) << voice;
                ASSERT_TRUE(heard.insert(voice).second) << voice << " sounds twice";
                const double pitch = devices[static_cast<size_t>(mPort)].pitch(note, mMpe);
                ASSERT_NEAR(pitch, expectedPitch(voice), 0.01) << voice;
            }
        }
        for (size_t i = 0; i < out.channelActive.size(); ++i) {
            if (out.channelActive[i])
                taken.insert(out.channelVoice[i]);
        }
        std::set<int> expected;
        for (int i = 0; i < VOICES; ++i) {
            if (mVoices[static_cast<size_t>(i)].sounds)
                expected.insert(i);
        }
        ASSERT_EQ(heard, expected);
        ASSERT_EQ(taken, mMpe ? expected : std::set<int>());
    }

private:
    struct Voice
    {
        bool sounds = false; // on the device
        double start = 0.0;
        double pitch = 0.0;
    };

    int any(int count) { return static_cast<int>(mRandom() % static_cast<unsigned>(count)); }
    float anyFrequency(double highest)
    {
        return static_cast<float>(20.0 * std::pow(highest / 20.0, any(10000) / 10000.0));
    }
    static double pitchOf(float frequency)
    {
        return 69.0 + 12.0 * std::log2(static_cast<double>(frequency) / 440.0);
    }

    void start(int voice)
    {
        stop(voice);                                   // the player gives out free voices only
        const float frequency = anyFrequency(12500.0); // up to the last key
        router.receiveInstructions(PdPlayer::instructionNoteOn, {voice}, {frequency}, {0.8F});
        const auto sounding =
            std::count_if(mVoices.begin(), mVoices.end(), [](const Voice& each) { return each.sounds; });
        const bool fits = mPort >= 0 && (!mMpe || sounding < MidiOutput::CHANNELS);
        mVoices[static_cast<size_t>(voice)] = {fits, pitchOf(frequency), pitchOf(frequency)};
    }
    void stop(int voice)
    {
        router.receiveInstructions(PdPlayer::instructionNoteOff, {voice}, {-1.0F}, {-1.0F});
        mVoices[static_cast<size_t>(voice)].sounds = false;
    }
    /// Of voices that sound, fade, were silenced or never had a channel.
    void bend()
    {
        QList<int> voices;
        QList<float> frequencies;
        for (int voice = 0; voice < VOICES; ++voice) {
            if (any(2) == 0)
                continue;
            voices.append(voice);
            frequencies.append(anyFrequency(20000.0));
            mVoices[static_cast<size_t>(voice)].pitch = pitchOf(frequencies.last());
        }
        router.receiveInstructions(PdPlayer::instructionBend, voices, frequencies,
                                   QList<float>(voices.size(), -1.0F));
    }
    void selectPort(int port)
    {
        out.selectPort(port);
        mPort = port;
        silence();
    }
    void setChannel(int channel)
    {
        if ((channel == MidiOutput::MPE) != mMpe)
            silence();
        out.setChannel(channel);
        mMpe = channel == MidiOutput::MPE;
    }
    void silence()
    {
        for (Voice& voice : mVoices)
            voice.sounds = false;
    }
    double expectedPitch(int index) const
    {
        const Voice& voice = mVoices[static_cast<size_t>(index)];
        return mMpe ? std::clamp(voice.pitch, voice.start - mRoom, voice.start + mRoom)
                    : std::min(voice.pitch, LAST_PITCH);
    }

    std::mt19937 mRandom;
    const double mRoom; // for a glissando in MPE, semitones
    int mPort = -1;
    bool mMpe = false;
    std::array<Voice, VOICES> mVoices;
};

} // namespace

TEST(MidiSequences, WhatSoundsHasItsPitchAndWhatDoesNotHoldsNoChannel)
{
    const unsigned first = std::random_device()();
    for (unsigned seed = first; seed < first + 24; ++seed) {
        SCOPED_TRACE(::testing::Message() << "seed " << seed);
        Sequence sequence(seed);
        for (int i = 0; i < 400; ++i) {
            sequence.step();
            sequence.check();
            ASSERT_FALSE(::testing::Test::HasFatalFailure()) << "step " << i;
        }
    }
}

TEST(MidiSequences, TwoThreadsAtOnceBreakNoMessage)
{
    Rig rig;
    PatchHandOver handOver;
    rig.out.setEngineRunner(
        [&handOver](const std::function<void()>& work) { return handOver.runInBlock(work); });
    std::atomic<bool> running{true};
    std::thread engine([&] {
        std::mt19937 random(1);
        while (running) {
            if (!handOver.enterBlock())
                continue;
            for (int i = 0; i < 20; ++i) {
                const int voice = static_cast<int>(random() % VOICES);
                const int instruction = std::array{1, -1, 2}.at(random() % 3);
                rig.router.receiveInstructions(instruction, {voice},
                                               {static_cast<float>(20 + random() % 10000)}, {0.8F});
            }
            handOver.leaveBlock(); // and again at once: more than the sender can take
        }
    });
    std::mt19937 random(2);
    const auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(1000);
    int changes = 0;
    for (; std::chrono::steady_clock::now() < until; ++changes) {
        switch (random() % 3) {
        case 0: rig.out.selectPort(static_cast<int>(random() % 4)); break;
        case 1: rig.out.setChannel(static_cast<int>(random() % 4) - 1); break;
        default: rig.out.mpeSetPitchBendRange(static_cast<int>(random() % 1200) + 50); break;
        }
    }
    running = false;
    engine.join();
    rig.out.setEngineRunner(nullptr);
    rig.out.selectPort(-1);
    EXPECT_GT(changes, 100);
    EXPECT_FALSE(rig.out.system->enteredTwice);
    for (const MidiReceiver& device : rig.devices)
        EXPECT_EQ(device.broken, 0);
    EXPECT_EQ(std::count(rig.out.channelActive.begin(), rig.out.channelActive.end(), true), 0);
}
