#include "support/SlotLedger.h"

#include "sound/PdPlayer.h"

SlotLedger::SlotLedger()
    : mVoiceMessages("orlo-in", [this](const auto& list) { onVoiceMessage(list); })
    , mVoiceStops("voice-stop", [this](const auto& list) { onVoiceStop(list); })
{
}

void SlotLedger::onVoiceMessage(const std::vector<float>& list) // value, type, slot
{
    if (list.size() != 3 || static_cast<int>(list[1]) != voiceGate || list[0] == 0.0F)
        return;
    bool& pending = mPending.at(static_cast<size_t>(list[2]));
    ++mBegun;
    if (pending)
        ++mStolen;
    pending = true;
}

void SlotLedger::onVoiceStop(const std::vector<float>& list) // slot
{
    if (list.empty())
        return;
    bool& pending = mPending.at(static_cast<size_t>(list[0]));
    ++(pending ? mStopped : mSpurious);
    pending = false;
}
