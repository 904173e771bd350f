#pragma once

#include "model/OrloRatio.h"

#include <QList>
#include <QString>

/// Pitches that are written to a file, and the pitch of their 1/1. A plain value. [gui]
struct TuningSet
{
    QString title;           // a chord's or preset's name; may be empty
    double oneOne = 440.0;   // Hz of 1/1
    QList<OrloRatio> ratios; // absolute, in the order of the player; none is 0
};
