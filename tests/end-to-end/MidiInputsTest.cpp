// MIDI inputs by name, against a real MIDI system whose ports come and go.

#include "external/MidiInputs.h"
#include "end-to-end/VirtualDesk.h"
#include "external/MidiInRing.h"
#include "support/Waiting.h"

#include <RtMidi.h>

#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

class MidiInputsFixture : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(desk.isReady()) << "Xvfb or jackd does not start.";
        qputenv("JACK_DEFAULT_SERVER", desk.soundServer().toLatin1());
        qputenv("JACK_NO_START_SERVER", "1");
    }
    void TearDown() override { qunsetenv("JACK_DEFAULT_SERVER"); }

    /// A keyboard that is plugged in as long as this lives; its port is called "keys:out".
    static std::unique_ptr<RtMidiOut> plug()
    {
        auto keyboard = std::make_unique<RtMidiOut>(RtMidi::UNIX_JACK, "keys");
        keyboard->openVirtualPort("out");
        return keyboard;
    }
    /// Whether what the keyboard sends arrives. It is sent until it does: a server on a busy machine may
    /// drop a block.
    bool arrives(RtMidiOut& keyboard, std::vector<unsigned char> bytes)
    {
        MidiInRing& ring = inputs.ring(inputs.slotOf(PORT));
        std::array<MidiInMessage, 256> messages;
        const auto isHere = [&](const MidiInMessage& message) {
            return message.status == bytes[0] && message.data1 == bytes[1] && message.data2 == bytes[2]
                   && message.input == inputs.slotOf(PORT);
        };
        return waitUntil([&] {
            keyboard.sendMessage(&bytes);
            return std::ranges::any_of(messages.begin(), messages.begin() + ring.read(messages), isHere);
        });
    }

    static inline const QString PORT = u"keys:out"_s;
    VirtualDesk desk;
    MidiInputs inputs;
};

} // namespace

TEST_F(MidiInputsFixture, AKeyboardThatGoesComesBackAHundredTimes)
{
    int lost = 0;
    int back = 0;
    QObject::connect(&inputs, &MidiInputs::lost, [&] { ++lost; });
    QObject::connect(&inputs, &MidiInputs::back, [&] { ++back; });
    inputs.setWanted({PORT});
    const auto isOpen = [this] { return inputs.open() == QStringList{PORT}; };
    for (int i = 0; i < 100; ++i) {
        auto keyboard = plug();
        // Chosen again, it is looked for at once.
        inputs.setWanted({PORT});
        ASSERT_TRUE(waitUntil([&] { return isOpen() && back == i; })) << i;
        const auto key = static_cast<unsigned char>(i);
        ASSERT_TRUE(arrives(*keyboard, {0x90, key, 100})) << i;
        keyboard.reset();
        inputs.setWanted({PORT});
        ASSERT_TRUE(waitUntil([&] { return !isOpen(); })) << i;
        EXPECT_TRUE(inputs.ring(inputs.slotOf(PORT)).takeGone()) << "its keys would stay down";
    }
    EXPECT_EQ(lost, 100);
    EXPECT_EQ(back, 99);
}

TEST_F(MidiInputsFixture, ComesBackByItselfAndAfterTheServerToo)
{
    auto keyboard = plug();
    EXPECT_TRUE(waitUntil([this] { return inputs.available().contains(PORT); }));
    inputs.setWanted({PORT});
    const auto isOpen = [this] { return !inputs.open().isEmpty(); };
    ASSERT_TRUE(waitUntil(isOpen));
    keyboard.reset();
    ASSERT_TRUE(waitUntil([&] { return !isOpen(); }));
    keyboard = plug();
    ASSERT_TRUE(waitUntil(isOpen));
    // Half a SysEx does not hold back the notes behind it for ever.
    std::vector<unsigned char> half{0xF0, 1, 2};
    keyboard->sendMessage(&half);
    EXPECT_TRUE(arrives(*keyboard, {0x90, 60, 100}));
    // So quickly that the port's name is hardly missing.
    for (int i = 0; i < 5; ++i) {
        keyboard.reset();
        keyboard = plug();
        EXPECT_TRUE(arrives(*keyboard, {0x90, static_cast<unsigned char>(70 + i), 100})) << i;
    }

    [[maybe_unused]] const auto* dead = keyboard.release(); // JACK's library has deleted its client
    desk.jack().kill();
    ASSERT_TRUE(desk.jack().waitForFinished());
    ASSERT_TRUE(waitUntil([&] { return !isOpen(); }));
    ASSERT_TRUE(desk.startJack());
    keyboard = plug();
    ASSERT_TRUE(waitUntil(isOpen));
    EXPECT_TRUE(arrives(*keyboard, {0x80, 60, 100}));

    inputs.setWanted({});
    EXPECT_TRUE(waitUntil([&] { return !isOpen(); }));
    EXPECT_EQ(inputs.slotOf(PORT), -1);
}

TEST_F(MidiInputsFixture, AServerThatStandsStillHoldsUpNobody)
{
    auto keyboard = plug();
    inputs.setWanted({PORT});
    ASSERT_TRUE(waitUntil([this] { return !inputs.open().isEmpty(); }));
    desk.jack().freeze();
    QElapsedTimer clock;
    clock.start();
    qint64 longest = 0;
    // Longer than two looks, so that one of them waits for the server.
    waitUntil(
        [&] {
            const qint64 before = clock.elapsed();
            inputs.available();
            inputs.setWanted({PORT, u"another"_s});
            inputs.setWanted({PORT});
            longest = std::max(longest, clock.elapsed() - before);
            return false;
        },
        1500);
    desk.jack().thaw();
    EXPECT_LT(longest, 300);
    EXPECT_TRUE(arrives(*keyboard, {0x90, 60, 100}));
}
