#pragma once

#include "sound/PdPlayer.h"
#include "support/PdReceiver.h"

#include <QObject>

#include <array>
#include <map>
#include <set>

/// Hears what the patch really receives on its input, and which voice each note was given.
class PatchEar : public QObject
{
public:
    /// What a voice has been told last.
    struct Voice
    {
        float gate = 0.0F;
        float frequency = 0.0F; // Hz
        std::array<float, 8> macros{};
    };
    using Key = std::pair<quint64, quint64>; // numerator, denominator

    explicit PatchEar(PdPlayer& player)
    {
        // A starting note is told its macros, frequency, volume and gate, and then it is signalled.
        connect(
            &player, &PdPlayer::noteToggled, this,
            [this](const OrloRatio& ratio, bool on) {
                if (!on)
                    return;
                mVoiceOf[{ratio.numerator(), ratio.denominator()}] = mLastVoice;
                ++mStarts;
            },
            Qt::DirectConnection);
    }

    /// Notes so far, those that started anew among them.
    int starts() const { return mStarts; }
    int voiceOf(Key ratio) const { return mVoiceOf.at(ratio); }
    const Voice& voice(int number) const { return mVoices.at(static_cast<size_t>(number)); }
    /// Voices that have been let go and not been started since; the test may report their end.
    const std::set<int>& fading() const { return mFading; }
    /// The test has reported this one's end.
    void forget(int voice) { mFading.erase(voice); }

private:
    void hear(float value, int type, int number)
    {
        mLastVoice = number;
        Voice& voice = mVoices.at(static_cast<size_t>(number));
        if (type == voiceGate) {
            voice.gate = value;
            if (value == 0.0F)
                mFading.insert(number);
            else
                mFading.erase(number);
        } else if (type == voiceFrequency) {
            voice.frequency = value;
        } else if (type >= voiceMacro1) {
            voice.macros.at(static_cast<size_t>(type - voiceMacro1)) = value;
        }
    }

    int mStarts = 0;
    int mLastVoice = 0;
    std::array<Voice, 129> mVoices;
    std::map<Key, int> mVoiceOf;
    std::set<int> mFading;
    const PdReceiver mReceiver{"orlo-in", [this](const auto& list) {
                                   if (list.size() == 3)
                                       hear(list[0], static_cast<int>(list[1]), static_cast<int>(list[2]));
                               }};
};
