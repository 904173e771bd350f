#include "external/MidiBytes.h"

#include "external/MpeBendRange.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace midi {

namespace {

constexpr double A4_HZ = 440.0;
constexpr double A4_NOTE = 69.0;
constexpr double STEPS = 128.0; // of seven bits
constexpr int STEP_COUNT = 128;
constexpr int LAST_STEP = 127;

constexpr Byte NOTE_OFF = 0x80;
constexpr Byte NOTE_ON = 0x90;
constexpr Byte CONTROL = 0xB0;
constexpr Byte PITCH_BEND = 0xE0;
constexpr Byte SYSEX_START = 0xF0;
constexpr Byte SYSEX_END = 0xF7;
constexpr Byte RELEASE_VELOCITY = 0x40;
constexpr Byte ALL_NOTES_OFF = 0x7B;
constexpr Byte RPN_LSB = 0x64;
constexpr Byte RPN_MSB = 0x65;
constexpr Byte DATA_MSB = 0x06;
constexpr Byte DATA_LSB = 0x26;
constexpr Byte NO_RPN = 0x7F;

Byte byte(int value)
{
    return static_cast<Byte>(value);
}

ShortMessage onChannel(Byte status, int channel, int first, int second)
{
    return {byte(status + channel), byte(first), byte(second)};
}

} // namespace

double noteOfFrequency(float hz)
{
    const double note = std::log2(static_cast<double>(hz) / A4_HZ) * 12.0 + A4_NOTE;
    return std::isnan(note) ? -std::numeric_limits<double>::infinity() : note;
}

ShortMessage noteOn(int channel, int key, int velocity)
{
    return onChannel(NOTE_ON, channel, key, velocity);
}

Byte velocityByte(int velocity)
{
    const Byte cut = byte(velocity);
    if (cut < NOTE_OFF)
        return cut;
    return velocity < 0 ? 0 : byte(LAST_STEP);
}

ShortMessage noteOff(int channel, int key)
{
    return onChannel(NOTE_OFF, channel, key, RELEASE_VELOCITY);
}

ShortMessage allNotesOff(int channel)
{
    return onChannel(CONTROL, channel, ALL_NOTES_OFF, 0);
}

bool isWellFormed(std::span<const Byte> message)
{
    if (message.empty() || message.front() < NOTE_OFF)
        return false;
    const bool ends = message.front() == SYSEX_START && message.back() == SYSEX_END;
    message = message.subspan(1, message.size() - (ends ? 2 : 1));
    return std::all_of(message.begin(), message.end(), [](Byte data) { return data < NOTE_OFF; });
}

Tuning tuningOfNote(double note)
{
    int semitone = static_cast<int>(note);
    const double steps = (note - semitone) * STEPS;
    const int whole = static_cast<int>(steps);
    const double rest = (steps - whole) * STEPS;
    int coarse = whole;
    int fine = static_cast<int>(std::round(rest));
    if (fine == STEP_COUNT) {
        fine = 0;
        ++coarse;
    }
    if (coarse == STEP_COUNT) {
        coarse = 0;
        ++semitone;
    }
    if (semitone == STEP_COUNT) { // the carry would leave the range
        semitone = LAST_STEP;
        coarse = whole;
        fine = static_cast<int>(rest);
    }
    return {byte(semitone), byte(coarse), byte(fine)};
}

void beginTuningChange(Bytes& message, std::int64_t count)
{
    // Universal real-time, all devices, MIDI tuning, single-note change, program 0.
    message.assign({SYSEX_START, 0x7F, 0x7F, 0x08, 0x02, 0x00, static_cast<Byte>(count)});
}

void addKeyTuning(Bytes& message, int key, const Tuning& tuning)
{
    message.insert(message.end(), {byte(key), tuning.semitone, tuning.fractionMsb, tuning.fractionLsb});
}

void endTuningChange(Bytes& message)
{
    message.push_back(SYSEX_END);
}

double bendCents(double note, double start, int key, int rangeCents)
{
    const double moved = (note - start) * 100.0;
    const double fromKey = (start - key) * 100.0;
    const double room = static_cast<double>(rangeCents) - mpe::ROUNDING_CENTS;
    double bend = (note - key) * 100.0;
    if (moved > room)
        bend = fromKey + room;
    if (moved < -room)
        bend = fromKey - room;
    return bend;
}

Bend bendOfFactor(double factor)
{
    Bend bend;
    bend.factor = factor;
    if (factor >= 1.0) {
        bend.msb = bend.lsb = LAST_STEP;
        return bend;
    }
    if (factor <= -1.0) {
        bend.msb = bend.lsb = 0;
        return bend;
    }
    bend.coarse = factor * 64.0 + 64.0;
    int msb = static_cast<int>(bend.coarse);
    bend.fine = (bend.coarse - msb) * STEPS;
    int lsb = static_cast<int>(std::round(bend.fine));
    if (lsb == STEP_COUNT) {
        lsb = 0;
        ++msb;
    }
    if (msb == STEP_COUNT)
        msb = lsb = LAST_STEP;
    bend.msb = byte(msb);
    bend.lsb = byte(lsb);
    return bend;
}

Bend bendOfCents(double cents, int rangeCents)
{
    const double factor = cents / rangeCents;
    return bendOfFactor(std::isnan(factor) ? 0.0 : factor); // no bend in no range
}

ShortMessage pitchBend(int channel, Byte msb, Byte lsb)
{
    return onChannel(PITCH_BEND, channel, lsb, msb);
}

ShortMessage pitchBendCentre(int channel)
{
    return pitchBend(channel, 0x40, 0x00);
}

BendRange bendRange(int cents)
{
    const int semitones = static_cast<int>(static_cast<double>(static_cast<float>(cents)) / 100.0);
    const int rest = cents - semitones * 100;
    // An option of any size must not become a status byte.
    const int semitonesByte = std::clamp(semitones, 0, LAST_STEP);
    const int restByte = std::clamp(rest, 0, LAST_STEP);
    return {semitones,
            rest,
            {onChannel(CONTROL, 0, RPN_LSB, 0), onChannel(CONTROL, 0, RPN_MSB, 0),
             onChannel(CONTROL, 0, DATA_MSB, semitonesByte), onChannel(CONTROL, 0, DATA_LSB, restByte),
             onChannel(CONTROL, 0, RPN_LSB, NO_RPN), onChannel(CONTROL, 0, RPN_MSB, NO_RPN)}};
}

} // namespace midi
