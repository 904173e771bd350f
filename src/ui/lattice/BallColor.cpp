#include "ui/lattice/BallColor.h"

#include "app/Accessors.h"
#include "app/Settings.h"
#include "model/Orlo.h"
#include "model/OrloBall.h"

#include <algorithm>

namespace {

constexpr int CROWDED_KEY = 0; // of the prime colours
constexpr int UNITY_KEY = 1;

constexpr QColor TRANSPOSED_CENTRE(158, 158, 158);

/// Transposed by two or more leaf steps: one colour for all would say nothing any more.
bool isCrowded(const QList<int>& transposeSteps)
{
    return std::count_if(transposeSteps.begin(), transposeSteps.end(),
                         [](int step) { return qAbs(step) > 3; })
           >= 2;
}

bool isTreeStep(int step)
{
    return step < 4;
}

} // namespace

BallColor BallColor::of(const OrloBall& ball, const Orlo& orlo, int absRelView)
{
    switch (absRelView) {
    case 1: return absolute(ball, orlo);
    case 2: return byHighestStep(ball, orlo);
    default: return relative(ball, orlo);
    }
}

BallColor BallColor::relative(const OrloBall& ball, const Orlo& orlo)
{
    BallColor paint{ball.color(), false, isTreeStep(ball.lastStep())};
    if (ball.path() == OrloPath()) {
        const bool grey = !orlo.transposeSteps().isEmpty() && app::settings()->centralNodeColourRelativeMode;
        paint.color = grey ? TRANSPOSED_CENTRE : orlo.lookupColor(UNITY_KEY);
        paint.unity = true;
    }
    return paint;
}

BallColor BallColor::absolute(const OrloBall& ball, const Orlo& orlo)
{
    const int step = ball.lastAbsStep();
    if (step == OrloBall::LEAF_STEP)
        return {ball.color(), false, false};
    if (step > 3 && isCrowded(orlo.transposeSteps()))
        return {orlo.lookupColor(CROWDED_KEY), false, false};
    return {orlo.lookupColor(step), step == 1, isTreeStep(step)};
}

BallColor BallColor::byHighestStep(const OrloBall& ball, const Orlo& orlo)
{
    const int step = ball.highestAbsStep();
    if (step == OrloBall::LEAF_STEP)
        return {ball.color(), false, false};
    return {orlo.lookupColor(step), step == 1, isTreeStep(step)};
}
