#include "external/DevicePacket.h"

#include <cstddef>

namespace {

constexpr std::size_t WAND_AT = 23;
constexpr std::size_t RFID_AT = 27;
constexpr std::size_t RFID_STEP = 4;
constexpr std::size_t RFID_LENGTH = 10;

} // namespace

int DevicePacket::wand() const
{
    return static_cast<signed char>(bytes[WAND_AT]);
}

QString DevicePacket::rfid() const
{
    std::array<char, RFID_LENGTH> text;
    for (std::size_t i = 0; i < RFID_LENGTH; ++i)
        text[i] = bytes[RFID_AT + i * RFID_STEP];
    return QString::fromUtf8(text.data(), RFID_LENGTH);
}
