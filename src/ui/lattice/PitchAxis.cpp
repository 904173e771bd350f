#include "ui/lattice/PitchAxis.h"

#include "model/AbsoluteRatio.h"
#include "ui/lattice/OrloView.h"

#include <cmath>

namespace {

constexpr double LN_9 = 2.1972246;    // nine times the ratio is half the scene's height
constexpr double CENTRE_OFFSET = 5.5; // in units of the scene, downward
/// A pitch without a height, as a ratio of 0, lies below everything. Farther than any screen, and near
/// enough for whole numbers to stay exact in single precision.
constexpr double FARTHEST = 1.0e6;

float bounded(float height)
{
    constexpr auto farthest = static_cast<float>(FARTHEST);
    return std::isnan(height) ? farthest : qBound(-farthest, height, farthest);
}

} // namespace

PitchAxis PitchAxis::of(const OrloView& view)
{
    const QRectF scene = view.sceneRect();
    return {static_cast<int>(view.viewportTransform().mapRect(scene).height()), scene.height(),
            view.mapFromScene(scene.center()).y()};
}

double PitchAxis::cardHeight(const OrloRatio& absolute) const
{
    const auto relative = static_cast<double>(ratios::quotient(ratios::relativeOf(absolute)));
    double belowCentre = FARTHEST;
    if (relative > 0.0)
        belowCentre = std::round(qBound(-FARTHEST, std::log(relative) / LN_9 * -pixels * 0.5, FARTHEST));
    return centre + pixels * CENTRE_OFFSET / units + belowCentre;
}

int PitchAxis::freeBallHeight(const OrloRatio& absolute) const
{
    const auto scenePixels = static_cast<float>(pixels);
    const auto sceneUnits = static_cast<float>(units);
    const float offset =
        sceneUnits > 0.0F ? scenePixels * static_cast<float>(CENTRE_OFFSET) / sceneUnits : 0.0F;
    const float relative = ratios::quotient(ratios::relativeOf(absolute));
    const float belowCentre = bounded(std::log(relative) / static_cast<float>(LN_9) * scenePixels * -0.5F);
    const int rounded = static_cast<int>(std::round(static_cast<double>(belowCentre)));
    return static_cast<int>(bounded(static_cast<float>(centre) + offset + static_cast<float>(rounded)));
}
