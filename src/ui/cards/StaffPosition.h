#pragma once

class Note;
struct HejiSpelling;

/// Where a note stands on the staff, in staff spaces from the top line, downward; one diatonic step is
/// 0.5. Far notes move by whole octaves into the room that the staff has, with an 8 or 15 at the clef.
struct StaffPosition
{
    /// There is room from one ledger line above the staff to one below it.
    static constexpr float HIGHEST = -1.0F;
    static constexpr float LOWEST = 5.0F;

    /// As drawn.
    float position = 0.0F;
    /// Whole octaves that the note is drawn lower than it sounds; below 0: higher.
    int octaveShift = 0;

    static StaffPosition of(const Note& note);
    static StaffPosition of(const HejiSpelling& spelling);
    /// Octaves below 4 stand in the bass.
    static bool isBass(const Note& note);
    static bool isBass(const HejiSpelling& spelling);
    /// Before any shift.
    static float unshifted(bool bass, const Note& note);
    bool operator==(const StaffPosition&) const = default;

private:
    static StaffPosition shifted(float position);
};
