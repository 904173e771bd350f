#include "tuning/BulkDump.h"

#include <cmath>

namespace bulkdump {
namespace {

constexpr int KEYS = 128;
constexpr int NAME_LENGTH = 16;
constexpr int STEPS_OF_SEMITONE = 128 * 128;
constexpr int NO_CHANGE = KEYS * STEPS_OF_SEMITONE - 1; // 7F 7F 7F, which leaves the key as it is
constexpr double A_HERTZ = 440.0;
constexpr int A_KEY = 69;

/// In 1/16384 semitone above the pitch of key 0.
int stepsOf(double hertz)
{
    const double steps = (A_KEY + 12.0 * std::log2(hertz / A_HERTZ)) * STEPS_OF_SEMITONE;
    const double nearest = std::round(steps);
    return nearest >= 0.0 && nearest < NO_CHANGE ? static_cast<int>(nearest) : NO_CHANGE;
}

} // namespace

QByteArray write(const TuningScale& scale)
{
    QByteArray dump("\xF0\x7E\x7F\x08\x01\x00", 6);
    dump += scale.title.leftJustified(NAME_LENGTH, ' ', true);
    bool isTuned = false;
    for (int key = 0; key < KEYS; ++key) {
        const int steps = stepsOf(scale.hertzOfKey(key));
        isTuned = isTuned || steps != NO_CHANGE;
        for (const int shift : {14, 7, 0})
            dump += static_cast<char>((steps >> shift) & 0x7F);
    }
    if (!isTuned)
        return {};
    int sum = 0; // of all bytes between F0 and itself
    for (const char byte : dump.sliced(1))
        sum ^= byte;
    dump += static_cast<char>(sum & 0x7F);
    return dump + '\xF7';
}

} // namespace bulkdump
