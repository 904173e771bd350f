#pragma once

#include "ui/firststeps/FirstSteps.h"

#include <QString>

/// What the cards of the first steps say.
namespace firststeps {

/// Where the player stands within a step.
struct Progress
{
    bool monophonic = false;
    int storedChord = 0; // 0: none yet
    bool hasSelection = false;
};

QString title(FirstSteps::Step step);
QString text(FirstSteps::Step step, const Progress& progress);

} // namespace firststeps
