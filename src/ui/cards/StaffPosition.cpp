#include "ui/cards/StaffPosition.h"

#include "model/Note.h"
#include "notation/HejiSpelling.h"

namespace {

constexpr float OCTAVE = 3.5F; // staff spaces
constexpr int LOWEST_TREBLE_OCTAVE = 4;

float positionOf(bool bass, int letter, int octave)
{
    const int octaves = (bass ? 0 : 2) - octave + 3;
    return static_cast<float>(octaves) * OCTAVE + (bass ? 2.5F : 1.5F) - static_cast<float>(letter) * 0.5F;
}

} // namespace

bool StaffPosition::isBass(const Note& note)
{
    return note.octave() < LOWEST_TREBLE_OCTAVE;
}

bool StaffPosition::isBass(const HejiSpelling& spelling)
{
    return spelling.octave < LOWEST_TREBLE_OCTAVE;
}

float StaffPosition::unshifted(bool bass, const Note& note)
{
    return positionOf(bass, note.note(), note.octave());
}

StaffPosition StaffPosition::of(const Note& note)
{
    return shifted(unshifted(isBass(note), note));
}

StaffPosition StaffPosition::of(const HejiSpelling& spelling)
{
    return shifted(positionOf(isBass(spelling), spelling.letter, spelling.octave));
}

StaffPosition StaffPosition::shifted(float position)
{
    StaffPosition staff{position, 0};
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
