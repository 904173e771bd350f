#pragma once

#include "sound/PdPlayer.h"
#include "support/PdReceiver.h"

#include <QObject>

#include <array>
#include <deque>
#include <set>

/// Hears what the patch really receives on its input, which voice each note was given, and what is marked.
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
    using Key = std::pair<quint64, quint64>;               // numerator, denominator
    using Order = std::deque<std::pair<Key, std::size_t>>; // with the slot that was told last
    /// As was signalled.
    struct Marks
    {
        std::set<Key> now;
        Order given;
    };

    explicit PatchEar(PdPlayer& player)
    {
        // A starting note is told its macros, frequency, volume and gate, and then it is signalled.
        hear(player, &PdPlayer::noteToggled, sounding);
        hear(player, &PdPlayer::nodeSelected, selected);
        hear(player, &PdPlayer::nodeAltered, altered);
        hear(player, &PdPlayer::nodeHold, held);
    }

    Marks sounding;
    Marks selected;
    Marks altered;
    Marks held;
    float masterVolume = 0.0F;
    std::array<Voice, 129> voices; // from 1

private:
    void hear(PdPlayer& player, void (PdPlayer::*signal)(OrloRatio, bool), Marks& marks)
    {
        const auto write = [this, &marks](const OrloRatio& ratio, bool on) {
            const Key key{ratio.numerator(), ratio.denominator()};
            if (on) {
                marks.now.insert(key);
                marks.given.emplace_back(key, static_cast<std::size_t>(mLastVoice - 1));
            } else {
                marks.now.erase(key);
            }
        };
        connect(&player, signal, this, write, Qt::DirectConnection);
    }
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
    const PdReceiver mReceiver{"orlo-in", [this](const auto& list) {
                                   if (list.size() == 3)
                                       hear(list[0], static_cast<int>(list[1]), static_cast<int>(list[2]));
                               }};
    const PdReceiver mVolume{"master-vol", [this](const auto& list) { masterVolume = list.at(0); }};
};
