#pragma once

#include "sound/PdPlayer.h"
#include "support/PdReceiver.h"

#include <QObject>

#include <array>
#include <deque>
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
        float volume = 0.0F;
        std::array<float, 8> macros{};
    };
    using Key = std::pair<quint64, quint64>; // numerator, denominator

    explicit PatchEar(PdPlayer& player)
    {
        // A starting note is told its macros, frequency, volume and gate, and then it is signalled.
        const auto hearStart = [this](const OrloRatio& ratio, bool on) {
            if (!on)
                return;
            const Key key{ratio.numerator(), ratio.denominator()};
            mVoiceOf[key] = mLastVoice;
            starts.emplace_back(key, static_cast<size_t>(mLastVoice - 1));
        };
        connect(&player, &PdPlayer::noteToggled, this, hearStart, Qt::DirectConnection);
        const auto hearSelection = [this](const OrloRatio& ratio, bool on) {
            if (on)
                selections.push_back({{ratio.numerator(), ratio.denominator()}, 0});
        };
        connect(&player, &PdPlayer::nodeSelected, this, hearSelection, Qt::DirectConnection);
    }

    int numberOf(Key ratio) const { return mVoiceOf.at(ratio); }
    const Voice& voiceOf(Key ratio) const { return voices.at(static_cast<size_t>(numberOf(ratio))); }

    std::deque<std::pair<Key, std::size_t>> starts; // of notes, with the slot
    std::deque<std::pair<Key, std::size_t>> selections;
    float masterVolume = 0.0F;
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
        else if (type == voiceVolume)
            voice.volume = value;
        else if (type >= voiceMacro1)
            voice.macros.at(static_cast<size_t>(type - voiceMacro1)) = value;
    }

    int mLastVoice = 0;
    std::map<Key, int> mVoiceOf;
    const PdReceiver mReceiver{"orlo-in", [this](const auto& list) {
                                   if (list.size() == 3)
                                       hear(list[0], static_cast<int>(list[1]), static_cast<int>(list[2]));
                               }};
    const PdReceiver mVolume{"master-vol", [this](const auto& list) { masterVolume = list.at(0); }};
};
