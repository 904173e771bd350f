// Of the lattice: which transpositions are possible, what one changes, and the steps that led to it.

#include "model/Orlo.h"

#include "model/AbsoluteRatio.h"
#include "model/OppositeSteps.h"
#include "model/OrloBall.h"
#include "model/OrloPath.h"
#include "model/OrloPathUnlimited.h"
#include "model/PitchRange.h"

#include <QDebug>

#include <memory>

void Orlo::simplifyTransposeSteps()
{
    removeOppositePairs(mTransposeSteps);
}

bool Orlo::canTransposeTo(const OrloRatio& candidate) const
{
    OrloRatio whole(mTransposition);
    whole *= candidate;
    const float frequency = ratios::quotient(whole) * mBaseFrequency;
    if (frequency < pitchrange::LOWEST || frequency > pitchrange::HIGHEST)
        return false;
    for (auto it = mBallMap.begin(); it != mBallMap.end(); ++it) {
        if (it.key().canMultiplyWith(candidate))
            continue;
        const OrloPath& path = it.value()->path();
        qDebug().noquote() << QStringLiteral(
                                  "canTransposeTo fail on %1 to %2:\n  ball: %3 at %4 can't be played")
                                  .arg(mTransposition.toString(), candidate.toString(), path.toString(),
                                       path.toRatio().toString());
        return false;
    }
    return true;
}

void Orlo::setTransposition(const OrloRatio& ratio)
{
    mTransposition = ratio;
    mPublishedTransposition.publish({ratio.numerator(), ratio.denominator()});
}

void Orlo::onTransposed(OrloRatio ratio, int step)
{
    setTransposition(ratio);
    if (step == 0) {
        mTransposeSteps.clear();
    } else if (step == FREE_TRANSPOSITION) {
        const std::unique_ptr<OrloPathUnlimited> path(ratio.getUnlimitedPathFromRatio());
        mTransposeSteps = path->toList();
        simplifyTransposeSteps();
    } else {
        mTransposeSteps.append(step);
        simplifyTransposeSteps();
    }
    buildBallMap();
    emit transposeOrBaseFrequencyChanged();
}
