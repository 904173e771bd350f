#include "model/OppositeSteps.h"

#include <limits>

int oppositeStep(int step)
{
    return step == std::numeric_limits<int>::min() ? step : -step;
}

void removeOppositePairs(QList<int>& steps)
{
    for (qsizetype i = 0; i < steps.size(); ++i) {
        const qsizetype opposite = steps.lastIndexOf(oppositeStep(steps[i]), i);
        if (opposite < 0)
            continue;
        steps.removeAt(i);
        if (opposite != i)
            steps.removeAt(opposite);
        i -= 2;
        if (i < -1)
            i = -1;
    }
}
