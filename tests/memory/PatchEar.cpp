#include "memory/PatchEar.h"

PatchEar::PatchEar(PdPlayer& player)
    : mReceiver("orlo-in", [this](const auto& list) {
        if (list.size() == 3)
            hear({list[0], static_cast<int>(list[1]), static_cast<int>(list[2])});
    })
{
    // A starting note is told its macros, frequency, volume and gate, and then it is signalled.
    connect(&player, &PdPlayer::noteToggled, this, [this](const OrloRatio& ratio, bool on) {
        if (on && !mMessages.isEmpty())
            mVoiceOf[{ratio.numerator(), ratio.denominator()}] = mMessages.last().voice;
    }, Qt::DirectConnection);
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
