#pragma once

#include "sound/PdPlayer.h"
#include "support/PdReceiver.h"

#include <QObject>

#include <array>
#include <map>

/// Hears what the patch really receives on its input, and which voice each note was given.
class PatchEar : public QObject
{
public:
    /// What a voice has been told last.
    struct Voice
    {
        float gate = -1.0F;     // not told yet
        float frequency = 0.0F; // Hz
        std::array<float, 8> macros{};
    };
    using Key = std::pair<quint64, quint64>; // numerator, denominator

    explicit PatchEar(PdPlayer& player)
    {
        // A starting note is told its macros, frequency, volume and gate, and then it is signalled.
        const auto hearStart = [this](const OrloRatio& ratio, bool on) {
            if (!on)
                return;
            mVoiceOf[{ratio.numerator(), ratio.denominator()}] = mLastVoice;
            ++starts;
        };
        connect(&player, &PdPlayer::noteToggled, this, hearStart, Qt::DirectConnection);
    }

    int numberOf(Key ratio) const { return mVoiceOf.at(ratio); }
    const Voice& voiceOf(Key ratio) const { return voices.at(static_cast<size_t>(numberOf(ratio))); }

    int starts = 0;                // of notes so far, those that started anew among them
    std::array<Voice, 129> voices; // from 1

private:
    void hear(float value, int type, int number)
    {
        mLastVoice = number;
        Voice& voice = voices.at(static_cast<size_t>(number));
        if (type == voiceGate)
            voice.gate = value;
        else if (type == voiceFrequency)
            voice.frequency = value;
        else if (type >= voiceMacro1)
            voice.macros.at(static_cast<size_t>(type - voiceMacro1)) = value;
    }

    int mLastVoice = 0;
    std::map<Key, int> mVoiceOf;
    const PdReceiver mReceiver{"orlo-in", [this](const auto& list) {
                                   if (list.size() == 3)
                                       hear(list[0], static_cast<int>(list[1]), static_cast<int>(list[2]));
                               }};
};
