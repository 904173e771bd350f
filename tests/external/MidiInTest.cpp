// What one MIDI input delivers: its bytes as messages, and these on their way to the engine.

#include "external/MidiInParser.h"
#include "external/MidiInRing.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstdio>
#include <random>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

namespace {

using Packet = std::vector<std::uint8_t>;

std::string asText(const MidiInMessage& message)
{
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%02X %02X %02X; ", message.status, message.data1, message.data2);
    return text.data();
}

} // namespace

TEST(MidiIn, FindsTheMessagesOfABrokenStream)
{
    const std::tuple<std::vector<Packet>, std::string, std::size_t> rows[] = {
        {{{0x90, 60, 100}}, "90 3C 64; ", 0},
        {{{0xD3, 5}, {0xC3, 7}}, "D3 05 00; C3 07 00; ", 0},
        // running status, but not from one packet to the next
        {{{0x90, 60, 100, 60, 0}, {61, 1}}, "90 3C 64; 90 3C 00; ", 2},
        // a clock within a message
        {{{0x90, 60, 0xF8, 100}}, "90 3C 64; ", 0},
        // a message that is cut short is not finished by the next packet
        {{{0x90, 60}, {100}, {0x80, 60, 64}}, "80 3C 40; ", 2},
        // by a status
        {{{0x90, 60, 0x91, 62, 1}}, "91 3E 01; ", 1},
        // half a SysEx, its other half, and one that another status ends
        {{{0xF0, 0x7E, 1}, {2, 3, 0xF7}, {0xF0, 9, 0x90, 60, 1}}, "90 3C 01; ", 0},
        // a system message ends the running status
        {{{0x90, 60, 1}, {0xF2, 1, 2}, {60, 0}}, "90 3C 01; ", 0},
        {{{1, 2, 3}, {}}, "", 3},
    };
    for (const auto& [packets, expected, expectedBad] : rows) {
        MidiInParser parser;
        std::string found;
        std::size_t bad = 0;
        for (const Packet& packet : packets)
            bad += parser.parse(packet, [&](const MidiInMessage& message) { found += asText(message); });
        EXPECT_EQ(found, expected);
        EXPECT_EQ(bad, expectedBad) << expected;
    }
}

TEST(MidiIn, RandomBytesMakeWholeMessagesOnly)
{
    std::mt19937 random(16);
    MidiInParser parser;
    for (int i = 0; i < 20000; ++i) {
        Packet packet(random() % 8);
        for (std::uint8_t& byte : packet)
            byte = static_cast<std::uint8_t>(random());
        parser.parse(packet, [](const MidiInMessage& message) {
            ASSERT_TRUE(message.status >= 0x80 && message.status < 0xF0 && message.data1 < 0x80
                        && message.data2 < 0x80)
                << asText(message);
        });
    }
}

TEST(MidiIn, AFloodIsCountedAndWhatRemainsIsInOrder)
{
    constexpr int MESSAGES = 100000;
    MidiInRing ring;
    std::atomic<bool> ended{false};
    std::jthread writer([&] {
        for (int i = 0; i < MESSAGES; ++i) {
            const auto part = [i](int shift) { return static_cast<std::uint8_t>((i >> shift) & 0x7F); };
            ring.write({0x90, part(14), part(7), part(0)});
        }
        ended = true;
    });
    std::array<MidiInMessage, 64> messages;
    int last = -1;
    std::size_t count = 0;
    std::uint32_t lost = 0;
    for (bool wasEnded = false;;) {
        const std::size_t read = ring.read(messages);
        count += read;
        for (std::size_t i = 0; i < read; ++i) {
            const int number = (messages[i].data1 << 14) | (messages[i].data2 << 7) | messages[i].input;
            ASSERT_GT(number, last);
            last = number;
        }
        lost += ring.takeLost();
        if (read == 0 && wasEnded)
            break;
        wasEnded = ended;
    }
    EXPECT_EQ(count + lost, MESSAGES);
    EXPECT_EQ(ring.lostInAll(), lost);
    for (std::size_t i = 0; i <= MidiInRing::CAPACITY; ++i)
        EXPECT_EQ(ring.write({0x80, 1, 1, 0}), i < MidiInRing::CAPACITY);
    EXPECT_EQ(ring.takeLost(), 1U);
    EXPECT_EQ(ring.takeLost(), 0U);
}
