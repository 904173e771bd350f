#include "ui/firststeps/FirstStepsTexts.h"

namespace firststeps {

QString title(FirstSteps::Step step)
{
    switch (step) {
    case FirstSteps::Press: return QStringLiteral("Press a ball");
    case FirstSteps::Chord: return QStringLiteral("Build a chord");
    case FirstSteps::StoreRecall: return QStringLiteral("Store and recall");
    case FirstSteps::Transpose: return QStringLiteral("Transpose");
    case FirstSteps::Glide: return QStringLiteral("Select and glide");
    case FirstSteps::COUNT: break;
    }
    return {};
}

QString text(FirstSteps::Step step, const Progress& progress)
{
    switch (step) {
    case FirstSteps::Press:
        return QStringLiteral("Each ball of the lattice is a pitch. Press one: it sounds, until it %1.")
            .arg(progress.monophonic ? QStringLiteral("or another is pressed")
                                     : QStringLiteral("is pressed again"));
    case FirstSteps::Chord:
        return progress.monophonic
                   ? QStringLiteral("Press \"Poly\", below at the left, so that many notes can sound.")
                   : QStringLiteral("Press more balls, until three sound together. Neighbours blend best.");
    case FirstSteps::StoreRecall:
        if (progress.storedChord == 0)
            return QStringLiteral("Press \"Store to ...\", below, and then a number: it keeps what sounds.");
        return QStringLiteral("Kept. If \"Store to ...\" is lit, press it once more to put it out. Then "
                              "\"Stop all\", and "
                              "then %1: the chord is back.")
            .arg(progress.storedChord);
    case FirstSteps::Transpose:
        return QStringLiteral("Press an arrow beside a prime number, at the left: the whole lattice moves. "
                              "\"=\" takes it back.");
    case FirstSteps::Glide:
        return progress.hasSelection ? QStringLiteral(
                   "Selected, as the ring shows. Move the slider at the left, which \"G\" shows: what is "
                   "selected glides.")
                                     : QStringLiteral("Hold Alt and press a ball that sounds, or press it "
                                                      "with the middle button: this "
                                                      "selects it.");
    case FirstSteps::COUNT: break;
    }
    return {};
}

} // namespace firststeps
