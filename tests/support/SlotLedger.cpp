#include "support/SlotLedger.h"

#include "sound/PdPlayer.h"

#include <m_pd.h>

namespace {

constexpr const char* VOICE_MESSAGES = "orlo-in"; // value, type, slot
constexpr const char* VOICE_STOPS = "voice-stop"; // slot

} // namespace

/// A Pure Data object beside the patch's and the program's own receivers of the same symbol.
struct SlotLedger::Receiver
{
    t_pd object;
    SlotLedger* ledger;
};

SlotLedger::SlotLedger()
{
    static t_class* messages = [] {
        t_class* made = class_new(gensym("slot_messages"), nullptr, nullptr, sizeof(Receiver), CLASS_PD, A_NULL);
        class_addlist(made, reinterpret_cast<t_method>(&SlotLedger::onVoiceMessage));
        return made;
    }();
    static t_class* stops = [] {
        t_class* made = class_new(gensym("slot_stops"), nullptr, nullptr, sizeof(Receiver), CLASS_PD, A_NULL);
        class_addlist(made, reinterpret_cast<t_method>(&SlotLedger::onVoiceStop));
        return made;
    }();
    mVoiceMessages = reinterpret_cast<Receiver*>(pd_new(messages));
    mVoiceMessages->ledger = this;
    pd_bind(&mVoiceMessages->object, gensym(VOICE_MESSAGES));
    mVoiceStops = reinterpret_cast<Receiver*>(pd_new(stops));
    mVoiceStops->ledger = this;
    pd_bind(&mVoiceStops->object, gensym(VOICE_STOPS));
}

SlotLedger::~SlotLedger()
{
    pd_unbind(&mVoiceMessages->object, gensym(VOICE_MESSAGES));
    pd_free(&mVoiceMessages->object);
    pd_unbind(&mVoiceStops->object, gensym(VOICE_STOPS));
    pd_free(&mVoiceStops->object);
}

void SlotLedger::onVoiceMessage(Receiver* receiver, void*, int count, _atom* atoms)
{
    SlotLedger& ledger = *receiver->ledger;
    if (count != 3 || static_cast<int>(atom_getfloat(atoms + 1)) != voiceGate || atom_getfloat(atoms) == 0.0F)
        return;
    bool& pending = ledger.mPending.at(static_cast<size_t>(atom_getfloat(atoms + 2)));
    ++ledger.mBegun;
    if (pending)
        ++ledger.mStolen;
    pending = true;
}

void SlotLedger::onVoiceStop(Receiver* receiver, void*, int count, _atom* atoms)
{
    SlotLedger& ledger = *receiver->ledger;
    if (count < 1)
        return;
    bool& pending = ledger.mPending.at(static_cast<size_t>(atom_getfloat(atoms)));
    ++(pending ? ledger.mStopped : ledger.mSpurious);
    pending = false;
}
