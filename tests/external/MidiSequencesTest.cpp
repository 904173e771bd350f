// Long random sequences of what a player does, heard by a device at the other end.

#include "external/Interface.h"
#include "external/MidiDouble.h"
#include "sound/PatchHandOver.h"
#include "sound/PdPlayer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <thread>

namespace {

constexpr int VOICES = 20; // more than channels
constexpr int MTS_CHANNEL = 3;

/// A device at the other end of a port: hears bytes, and knows which notes sound.
struct Receiver
{
    void hear(std::span<const midi::Byte> message)
    {
        const bool isTuning = message.front() == 0xF0 && message.back() == 0xF7;
        const auto isData = [](midi::Byte byte) { return byte < 0x80; };
        const auto data = message.subspan(1, message.size() - (isTuning ? 2 : 1));
        broken += std::ranges::all_of(data, isData) && data.size() == (isTuning ? 6U + 4U * message[6] : 2U)
                      ? 0
                      : 1;
        const std::pair<int, int> note(message[0] & 0x0F, message[1]);
        switch (message[0] & 0xF0) {
        case 0x80: notes.erase(note); break;
        case 0x90: notes.insert(note); break;
        case 0xB0:
            if (message[1] == 0x7B)
                std::erase_if(notes, [&](const auto& each) { return each.first == note.first; });
            break;
        default: break;
        }
    }

    std::set<std::pair<int, int>> notes; // channel and key
    int broken = 0;                      // messages that no device understands
};

struct Rig
{
    Rig()
    {
        router.midiOutput = &out;
        out.system->listener = [this](std::span<const midi::Byte> message) {
            devices.at(static_cast<size_t>(out.system->openPort)).hear(message);
        };
    }

    std::array<Receiver, 4> devices; // by port
    MidiOutOverDouble out;
    Interface router;
};

class Sequence : public Rig
{
public:
    explicit Sequence(unsigned seed)
        : mRandom(seed)
    {
        out.setChannel(MTS_CHANNEL);
    }

    void step()
    {
        switch (any(12)) {
        case 0: selectPort(any(5) - 1); break;
        case 1: setMode(any(3)); break;
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
            ASSERT_TRUE(static_cast<int>(i) == mPort || devices[i].notes.empty()) << "port " << i;
        }
        std::multiset<int> heard;
        std::multiset<int> taken;
        for (const Receiver& device : devices) {
            for (const auto& [channel, key] : device.notes)
                heard.insert(mMpe ? out.mpeChannels.channelVoice[static_cast<size_t>(channel)] : key - 32);
        }
        for (size_t i = 0; i < out.mpeChannels.channelActive.size(); ++i) {
            if (out.mpeChannels.channelActive[i])
                taken.insert(out.mpeChannels.channelVoice[i]);
        }
        const std::multiset<int> expected(mSounding.begin(), mSounding.end());
        ASSERT_EQ(heard, expected);
        ASSERT_EQ(taken, mMpe ? expected : std::multiset<int>());
    }

private:
    int any(int count) { return static_cast<int>(mRandom() % static_cast<unsigned>(count)); }
    float anyFrequency() { return static_cast<float>(20 + any(12000)); }

    void start(int voice)
    {
        stop(voice); // the player gives out free voices only
        router.receiveInstructions(PdPlayer::instructionNoteOn, {voice}, {anyFrequency()}, {0.8F});
        if (mPort >= 0 && (!mMpe || mSounding.size() < (out.isMpeZone() ? 15 : 16)))
            mSounding.insert(voice);
    }
    void stop(int voice)
    {
        router.receiveInstructions(PdPlayer::instructionNoteOff, {voice}, {-1.0F}, {-1.0F});
        mSounding.erase(voice);
    }
    /// Of voices that sound, fade, were silenced or never had a channel.
    void bend()
    {
        QList<int> voices;
        QList<float> frequencies;
        for (int voice = any(2); voice < VOICES; voice += 1 + any(3)) {
            voices.append(voice);
            frequencies.append(anyFrequency());
        }
        if (any(2) == 0)
            router.receiveRetuning(voices, frequencies, QList<float>(voices.size(), 0.8F));
        else
            router.receiveInstructions(PdPlayer::instructionBend, voices, frequencies,
                                       QList<float>(voices.size(), -1.0F));
    }
    void selectPort(int port)
    {
        out.selectPort(port);
        mPort = port;
        mSounding.clear();
    }
    /// MTS, MPE or a zone.
    void setMode(int mode)
    {
        const std::pair<bool, bool> former(mMpe, out.isMpeZone());
        mode == 2 ? out.setMpeZone() : out.setChannel(mode == 1 ? MidiOutput::MPE : MTS_CHANNEL);
        mMpe = mode > 0;
        if (former != std::pair(mMpe, out.isMpeZone()))
            mSounding.clear();
    }

    std::mt19937 mRandom;
    int mPort = -1;
    bool mMpe = false;
    std::set<int> mSounding; // voices, on the device
};

} // namespace

TEST(MidiSequences, TheDeviceSoundsWhatThePlayerSoundsAndNothingElseHoldsAChannel)
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
        switch (random() % 4) {
        case 2: rig.out.setMpeZone(); break;
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
    for (const Receiver& device : rig.devices)
        EXPECT_EQ(device.broken, 0);
    EXPECT_EQ(
        std::count(rig.out.mpeChannels.channelActive.begin(), rig.out.mpeChannels.channelActive.end(), true),
        0);
}
