#include "memory/PatchEar.h"

#include <m_pd.h>

/// A Pure Data object beside the patch's own receivers of the same symbol.
struct PatchEar::Receiver
{
    t_pd object;
    PatchEar* ear;
};

PatchEar::PatchEar(PdPlayer& player)
{
    static t_class* receiverClass = [] {
        t_class* made = class_new(gensym("patch_ear"), nullptr, nullptr, sizeof(Receiver), CLASS_PD, A_NULL);
        class_addlist(made, reinterpret_cast<t_method>(&PatchEar::onList));
        return made;
    }();
    mReceiver = reinterpret_cast<Receiver*>(pd_new(receiverClass));
    mReceiver->ear = this;
    pd_bind(&mReceiver->object, gensym("orlo-in"));
    // A starting note is told its macros, frequency, volume and gate, and then it is signalled.
    connect(&player, &PdPlayer::noteToggled, this, [this](const OrloRatio& ratio, bool on) {
        if (on && !mMessages.isEmpty())
            mVoiceOf[{ratio.numerator(), ratio.denominator()}] = mMessages.last().voice;
    }, Qt::DirectConnection);
}

PatchEar::~PatchEar()
{
    pd_unbind(&mReceiver->object, gensym("orlo-in"));
    pd_free(&mReceiver->object);
}

void PatchEar::onList(Receiver* receiver, void*, int count, _atom* atoms)
{
    if (count == 3)
        receiver->ear->hear({atom_getfloat(atoms), static_cast<int>(atom_getfloat(atoms + 1)),
                             static_cast<int>(atom_getfloat(atoms + 2))});
}

void PatchEar::hear(const Message& message)
{
    mMessages.append(message);
    Voice& voice = mVoices.at(static_cast<size_t>(message.voice));
    if (message.type == voiceGate) {
        voice.gate = message.value;
        if (message.value == 0.0F)
            mFading.insert(message.voice);
        else
            mFading.erase(message.voice);
    } else if (message.type == voiceFrequency) {
        voice.frequency = message.value;
    } else if (message.type >= voiceMacro1) {
        voice.macros.at(static_cast<size_t>(message.type - voiceMacro1)) = message.value;
    }
}
