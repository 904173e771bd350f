#pragma once

#include "ui/dialogs/HelpSection.h"

/// What the help says of presses, by what is pressed.
QList<HelpSection> pressHelp();
