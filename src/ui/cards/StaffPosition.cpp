#include "ui/cards/StaffPosition.h"

#include "model/Note.h"

namespace {

constexpr float OCTAVE = 3.5F; // staff spaces

} // namespace

bool StaffPosition::isBass(const Note& note)
{
    return note.octave() < 4;
}

float StaffPosition::unshifted(bool bass, const Note& note)
{
    const int octaves = (bass ? 0 : 2) - note.octave() + 3;
    return static_cast<float>(octaves) * OCTAVE + (bass ? 2.5F : 1.5F)
           - static_cast<float>(note.note()) * 0.5F;
}

StaffPosition StaffPosition::of(const Note& note)
{
    StaffPosition staff{unshifted(isBass(note), note), 0};
    while (staff.position < HIGHEST) {
        staff.position += OCTAVE;
        ++staff.octaveShift;
    }
    while (staff.position > LOWEST) {
        staff.position -= OCTAVE;
        --staff.octaveShift;
    }
    return staff;
}
