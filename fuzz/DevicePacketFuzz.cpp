#include "external/DevicePacket.h"
#include "external/RfidMap.h"
#include "fuzz/Fuzz.h"
#include "sound/ThreadCheck.h"

#include <algorithm>

namespace {

/// Another packet that says the same: only the last byte of each group from the wand's on is read.
DevicePacket withOtherFiller(DevicePacket packet)
{
    for (std::size_t i = 0; i < packet.bytes.size(); ++i) {
        if (i < 23 || i > 63 || i % 4 != 3)
            packet.bytes[i] = static_cast<char>(~packet.bytes[i]);
    }
    return packet;
}

} // namespace

/// A map in the first line, then packets.
FUZZ_TARGET(device_packet)
{
    const ThreadCheck::RoleOfThisThread role(ThreadCheck::Role::Listener);
    const qsizetype lineEnd = input.indexOf('\n');
    RfidMap map;
    map.read(QJsonDocument::fromJson(input.left(lineEnd)).object());
    const QJsonObject entries = fuzz::written(map);

    DevicePacket packet;
    const auto size = static_cast<qsizetype>(packet.bytes.size());
    for (qsizetype at = lineEnd + 1; at + size <= input.size(); at += size) {
        std::copy_n(input.begin() + at, size, packet.bytes.begin());
        const QString tag = packet.rfid();
        FUZZ_REQUIRE(tag.size() <= 10 && packet.wand() >= -128 && packet.wand() <= 127);
        const DevicePacket same = withOtherFiller(packet);
        FUZZ_REQUIRE(same.rfid() == tag && same.wand() == packet.wand());
        const bool isKnown = map.lookup(tag) != nullptr;
        FUZZ_REQUIRE(isKnown == entries.contains(tag.toLower()));
    }
}
