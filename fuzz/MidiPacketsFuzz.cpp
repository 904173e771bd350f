#include "external/MidiInParser.h"
#include "fuzz/Fuzz.h"

#include <algorithm>

/// Packets, each behind a byte that gives its length.
FUZZ_TARGET(midi_packets)
{
    MidiInParser parser;
    for (qsizetype at = 0; at < input.size();) {
        const auto length =
            std::min<qsizetype>(static_cast<unsigned char>(input[at]) % 16, input.size() - at - 1);
        const QByteArray packet = input.mid(at + 1, length);
        at += 1 + length;
        qsizetype taken = 0;
        const auto check = [&](const MidiInMessage& message) {
            const bool hasOne = message.kind() == 0xC0 || message.kind() == 0xD0;
            FUZZ_REQUIRE(message.status >= 0x80 && message.status < 0xF0);
            FUZZ_REQUIRE(message.data1 < 0x80 && message.data2 < (hasOne ? 1 : 0x80));
            taken += hasOne ? 1 : 2;
        };
        const auto* bytes = reinterpret_cast<const std::uint8_t*>(packet.constData());
        const std::size_t bad = parser.parse({bytes, static_cast<std::size_t>(packet.size())}, check);
        // No data byte counts twice.
        const auto isData = [](char byte) { return static_cast<unsigned char>(byte) < 0x80; };
        FUZZ_REQUIRE(taken + static_cast<qsizetype>(bad) <= std::ranges::count_if(packet, isData));
    }
}
