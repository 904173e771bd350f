#include "ui/cards/HighestPrimeColor.h"

#include "app/Accessors.h"
#include "app/Settings.h"
#include "model/AbsoluteRatio.h"
#include "model/Orlo.h"
#include "model/OrloPathUnlimited.h"

int highestprime::colorKey(const OrloPathUnlimited& path)
{
    if (app::settings()->absRelView > 0 && ratios::absoluteOf(path.toRatio()) == OrloRatio(1, 1))
        return 1;
    int highest = path.getHighestPrime();
    for (const int step : app::orlo()->transposeSteps())
        highest = qMax(highest, qAbs(step));
    return highest;
}
