#include "external/MpeBend.h"

#include <cmath>

namespace mpe {

namespace {

constexpr int CENTRE = 0x2000; // of the bend's 14 bits

} // namespace

double bendCents(double note, double start, int key, int rangeCents)
{
    const double moved = (note - start) * 100.0;
    const double fromKey = (start - key) * 100.0;
    const double room = static_cast<double>(rangeCents) - ROUNDING_CENTS;
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
        bend.msb = bend.lsb = midi::LAST_DATA;
        return bend;
    }
    if (factor <= -1.0) {
        bend.msb = bend.lsb = 0;
        return bend;
    }
    bend.coarse = factor * 64.0 + 64.0;
    int msb = static_cast<int>(bend.coarse);
    bend.fine = (bend.coarse - msb) * midi::DATA_VALUES;
    int lsb = static_cast<int>(std::round(bend.fine));
    if (lsb == midi::DATA_VALUES) {
        lsb = 0;
        ++msb;
    }
    if (msb == midi::DATA_VALUES)
        msb = lsb = midi::LAST_DATA;
    bend.msb = static_cast<midi::Byte>(msb);
    bend.lsb = static_cast<midi::Byte>(lsb);
    return bend;
}

Bend bendOfCents(double cents, int rangeCents)
{
    const double factor = cents / rangeCents;
    return bendOfFactor(std::isnan(factor) ? 0.0 : factor); // no bend in no range
}

double centsOfBend(const Bend& bend, int rangeCents)
{
    return (bend.msb * midi::DATA_VALUES + bend.lsb - CENTRE) * stepCents(rangeCents);
}

double stepCents(int rangeCents)
{
    return static_cast<double>(rangeCents) / CENTRE;
}

} // namespace mpe
