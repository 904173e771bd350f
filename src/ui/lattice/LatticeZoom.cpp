#include "ui/lattice/LatticeZoom.h"

#include <QtGlobal>

#include <cmath>

namespace {

constexpr double WHEEL_FOR_DOUBLE = 480.0;
/// Times the fit. A ball of this size fills the page.
constexpr double LARGEST_BY_WHEEL = 16.0;

} // namespace

void LatticeZoom::followFit(double fit)
{
    mCurrent = mCurrent * fit / mFit;
    mTotal = fit * mTotal / mFit;
    mFit = fit;
}

void LatticeZoom::resetToFit()
{
    mTotal = mFit;
    mCurrent = mFit; // or the next resize would bring the former zoom back
}

bool LatticeZoom::pinch(double spread, bool released)
{
    mCurrent = spread * mTotal;
    ++mTouchSteps;
    if (released) {
        mTotal = mCurrent;
        mTouchSteps = mTouchStepThreshold; // the last step always runs
    }
    if (!mBelowFit && mTotal < mFit)
        resetToFit();
    if (mTouchSteps < mTouchStepThreshold)
        return false;
    mTouchSteps = 0;
    return true;
}

void LatticeZoom::zoomBy(double factor)
{
    const double largest = qMax(mTotal, LARGEST_BY_WHEEL * mFit);
    mTotal = qBound(mFit, mTotal * factor, largest);
    mCurrent = mTotal;
}

double LatticeZoom::spread(double distanceAtPress, double distanceNow)
{
    return distanceAtPress < 1.0 ? 1.0 : distanceNow / distanceAtPress;
}

double LatticeZoom::factorOfWheel(int turn)
{
    return std::exp2(turn / WHEEL_FOR_DOUBLE);
}
