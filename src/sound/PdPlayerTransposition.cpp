// The transposition: by a step along a prime, by a ratio, and its refusal.

#include "sound/PdPlayer.h"

#include "model/Orlo.h"
#include "model/OrloPath.h"
#include "sound/AudioLog.h"
#include "sound/ThreadCheck.h"

void PdPlayer::transpose(signed char step)
{
    ThreadCheck::audio();
    if (step == 0)
        mTransposition = OrloRatio(1, 1);
    else if (!multiplyTransposition(OrloRatio(OrloRatio::productOfSteps(OrloPath(step).toCharArray()))))
        return;
    emit transposed(mTransposition, step);
}

void PdPlayer::transpose(const OrloRatio& ratio)
{
    ThreadCheck::audio();
    if (multiplyTransposition(ratio))
        emit transposed(mTransposition, Orlo::FREE_TRANSPOSITION);
}

bool PdPlayer::multiplyTransposition(const OrloRatio& by)
{
    if (by.numerator() == 0 || !mTransposition.fitsWhenMultipliedWith(by)) {
        AudioLog::rationed("PdPlayer: a transposition by %1/%2 does not fit and is refused.",
                           {by.numerator(), by.denominator()});
        return false;
    }
    mTransposition *= by;
    return true;
}
