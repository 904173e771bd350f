#include "ui/dialogs/ReferencePitch.h"

#include "ui/cards/CentsText.h"
#include "ui/cards/FrequencyDecimals.h"
#include "ui/dialogs/OneOneNotes.h"

#include <cmath>
#include <limits>

namespace {

constexpr double TABLE_A4 = 440.0;          // Hz, of the table of notes
constexpr double FARTHEST_FROM_NOTE = 50.0; // cents
constexpr int MAX_SHOWN_DECIMALS = 6;
constexpr int MAX_TYPED_DECIMALS = 4;
constexpr int FIRST_PLACE_BELOW_A0 = 4;
constexpr int FIRST_PLACE_OF_A8 = 3;

} // namespace

ReferencePitch::ReferencePitch(double calibration, double frequency, const QString& note)
    : mCalibration(calibration)
    , mFrequency(frequency)
    , mNote(note)
    , mNoteIndex(OneOneNotes::table().indexOf(note))
{
}

void ReferencePitch::setNote(int index)
{
    mNoteIndex = index;
    mNote = OneOneNotes::table().names().value(index);
}

void ReferencePitch::setNote(const QString& name)
{
    mNote = name;
    if (OneOneNotes::table().names().contains(name))
        mNoteIndex = OneOneNotes::table().indexOf(name);
}

double ReferencePitch::temperedFrequency(double calibration, int noteIndex)
{
    return static_cast<double>(OneOneNotes::table().frequency(noteIndex)) * calibration / TABLE_A4;
}

bool ReferencePitch::isTempered(float calibration, float frequency, int noteIndex)
{
    const double given = static_cast<double>(frequency);
    const double difference =
        std::abs(temperedFrequency(static_cast<double>(calibration), noteIndex) - given);
    // A note just chosen is rounded to its decimals as a float: that may go one float too far, as
    // with "Ab 5" at A4 = 442 Hz.
    const double roundingOfFloat = given * std::numeric_limits<float>::epsilon();
    return difference < std::pow(10.0, -shownDecimals(frequency)) / 2.0 + roundingOfFloat;
}

int ReferencePitch::shownDecimals(float frequency)
{
    return texts::frequencyDecimals(static_cast<double>(frequency), MAX_SHOWN_DECIMALS);
}

int ReferencePitch::typedDecimals(double frequency)
{
    return texts::frequencyDecimals(frequency, MAX_TYPED_DECIMALS);
}

double ReferencePitch::cents() const
{
    const double tableFrequency = static_cast<double>(OneOneNotes::table().frequency(mNoteIndex));
    const double ratio = (mFrequency / tableFrequency) / (mCalibration / TABLE_A4);
    return texts::roundedCents(std::log(static_cast<float>(ratio)) / 0.6931472F * 1200.0F);
}

bool ReferencePitch::isTooFarFromNote() const
{
    return !(std::abs(cents()) <= FARTHEST_FROM_NOTE);
}

QString ReferencePitch::centsText() const
{
    if (isTooFarFromNote())
        return QStringLiteral("...");
    return cents() == 0.0 ? QStringLiteral("0") : texts::centsText(cents(), 2);
}

QString ReferencePitch::noteOfMenus(const QString& note, int place, const QString& octave)
{
    const bool isOutside = (octave == QStringLiteral("0") && place >= FIRST_PLACE_BELOW_A0)
                           || (octave == QStringLiteral("8") && place < FIRST_PLACE_OF_A8);
    return (isOutside ? QStringLiteral("A") : note) + u' ' + octave;
}
