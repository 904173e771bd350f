#pragma once

/// The scales of the lattice on a view, and how fingers, trackpad and wheel change them. A plain value.
///
/// Three scales, all in pixels per scene unit: the fit scale shows the whole scene, the total scale is
/// what the last gesture left, the current scale is what a gesture under way asks for.
class LatticeZoom
{
public:
    double total() const { return mTotal; }
    double fit() const { return mFit; }
    double current() const { return mCurrent; }

    /// Updates of a touch for each step that is drawn.
    void setTouchStepThreshold(int updates) { mTouchStepThreshold = updates; }

    /// The zoom stays in proportion to the fit.
    void followFit(double fit);
    void resetToFit();

    /// One update of two fingers that have moved apart by this factor since they came down. True for a
    /// step that is due: every so many updates, and always when a finger is released.
    bool pinch(double spread, bool released);
    /// Whether a step may be drawn: not below the fit.
    bool isDrawable() const { return mCurrent >= mFit; }
    /// Scales at once, kept between the fit and 16 times the fit, or the present scale where fingers have
    /// gone further.
    void zoomBy(double factor);

    /// How far two fingers moved apart; 1 for two on one spot, whose distance says nothing.
    static double spread(double distanceAtPress, double distanceNow);
    /// For a turn of the wheel in eighths of a degree: twice the size by four clicks of a common wheel.
    static double factorOfWheel(int turn);

private:
    double mTotal = 1.0;
    double mFit = 1.0;
    double mCurrent = 1.0;
    bool mBelowFit = false; // allowed; nothing sets it
    int mTouchSteps = 0;    // updates since the last step
    int mTouchStepThreshold = 5;
};
