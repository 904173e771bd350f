#pragma once

#include <QList>

/// The lowest int, which a file or a device may name as a step, is its own opposite.
int oppositeStep(int step);

/// Cancels each step against an earlier opposite one. The order of the rest stays.
void removeOppositePairs(QList<int>& steps);
