#pragma once

#include "support/PdReceiver.h"

#include <array>

/// Books what each slot of the patch is told and what it reports, while it lives: every note that
/// begins must end, by the patch's report or by its slot being taken.
class SlotLedger
{
public:
    SlotLedger();

    int begun() const { return mBegun; }
    int stopped() const { return mStopped; } // reported as faded
    int stolen() const { return mStolen; }   // begun anew before the report
    int spurious() const { return mSpurious; } // reports about a slot that had nothing to report
    int unended() const { return mBegun - mStopped - mStolen; }

private:
    void onVoiceMessage(const std::vector<float>& list);
    void onVoiceStop(const std::vector<float>& list);

    std::array<bool, 129> mPending{}; // by slot, from 1
    int mBegun = 0;
    int mStopped = 0;
    int mStolen = 0;
    int mSpurious = 0;
    const PdReceiver mVoiceMessages;
    const PdReceiver mVoiceStops;
};
