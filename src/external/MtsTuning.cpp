#include "external/MtsTuning.h"

#include <cmath>

namespace mts {

namespace {

midi::Byte byte(int value)
{
    return static_cast<midi::Byte>(value);
}

} // namespace

Tuning tuningOfNote(double note)
{
    int semitone = static_cast<int>(note);
    const double steps = (note - semitone) * midi::DATA_VALUES;
    const int whole = static_cast<int>(steps);
    const double rest = (steps - whole) * midi::DATA_VALUES;
    int coarse = whole;
    int fine = static_cast<int>(std::round(rest));
    if (fine == midi::DATA_VALUES) {
        fine = 0;
        ++coarse;
    }
    if (coarse == midi::DATA_VALUES) {
        coarse = 0;
        ++semitone;
    }
    if (semitone == midi::DATA_VALUES) { // the carry would leave the range
        semitone = midi::LAST_DATA;
        coarse = whole;
        fine = static_cast<int>(rest);
    }
    return {byte(semitone), byte(coarse), byte(fine)};
}

void beginTuningChange(midi::Bytes& message, std::int64_t count)
{
    // Universal real-time, all devices, MIDI tuning, single-note change, program 0.
    message.assign({midi::SYSEX_START, 0x7F, 0x7F, 0x08, 0x02, 0x00, static_cast<midi::Byte>(count)});
}

void addKeyTuning(midi::Bytes& message, int key, const Tuning& tuning)
{
    message.insert(message.end(), {byte(key), tuning.semitone, tuning.fractionMsb, tuning.fractionLsb});
}

void endTuningChange(midi::Bytes& message)
{
    message.push_back(midi::SYSEX_END);
}

} // namespace mts
