#pragma once

#include "sound/PdPlayer.h"
#include "support/PdReceiver.h"

#include <array>

/// Books what each slot of the patch is told and what it reports, while it lives: every note that
/// begins must end, by the patch's report or by its slot being taken.
class SlotLedger
{
public:
    int begun() const { return mBegun; }
    int stopped() const { return mStopped; }   // reported as faded
    int stolen() const { return mStolen; }     // begun anew before the report
    int spurious() const { return mSpurious; } // reports about a slot that had nothing to report
    int unended() const { return mBegun - mStopped - mStolen; }

private:
    void onVoiceMessage(const std::vector<float>& list) // value, type, slot
    {
        if (list.size() != 3 || static_cast<int>(list[1]) != voiceGate || list[0] == 0.0F)
            return;
        bool& pending = mPending.at(static_cast<size_t>(list[2]));
        ++mBegun;
        mStolen += pending ? 1 : 0;
        pending = true;
    }
    void onVoiceStop(const std::vector<float>& list) // slot
    {
        if (list.empty())
            return;
        bool& pending = mPending.at(static_cast<size_t>(list[0]));
        ++(pending ? mStopped : mSpurious);
        pending = false;
    }

    std::array<bool, 129> mPending{}; // by slot, from 1
    int mBegun = 0;
    int mStopped = 0;
    int mStolen = 0;
    int mSpurious = 0;
    const PdReceiver mVoiceMessages{"orlo-in", [this](const auto& list) { onVoiceMessage(list); }};
    const PdReceiver mVoiceStops{"voice-stop", [this](const auto& list) { onVoiceStop(list); }};
};
