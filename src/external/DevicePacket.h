#pragma once

#include <QString>

#include <array>

/// A packet of the physical device: 72 bytes, of which eleven are read. Each of these stands in the last
/// byte of a group of four. A datagram of another size is none.
struct DevicePacket
{
    static constexpr qint64 SIZE = 72;

    std::array<char, SIZE> bytes;

    /// [any] The wand's number, which is only logged.
    int wand() const;
    /// [any] The ten characters of the tag.
    QString rfid() const;
};
