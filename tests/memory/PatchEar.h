#pragma once

#include "sound/PdPlayer.h"
#include "support/PdReceiver.h"

#include <QList>
#include <QObject>

#include <array>
#include <map>
#include <set>

/// Hears what the patch really receives on its input, and which voice each note was given.
class PatchEar : public QObject
{
public:
    struct Message
    {
        float value;
        int type;
        int voice; // from 1

        bool operator==(const Message&) const = default;
    };
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
        connect(&player, &PdPlayer::noteToggled, this, [this](const OrloRatio& ratio, bool on) {
            if (on && !mMessages.isEmpty())
                mVoiceOf[{ratio.numerator(), ratio.denominator()}] = mMessages.last().voice;
        }, Qt::DirectConnection);
    }

    QList<Message> take() { return std::exchange(mMessages, {}); }
    int voiceOf(Key ratio) const { return mVoiceOf.at(ratio); }
    const Voice& voice(int number) const { return mVoices.at(static_cast<size_t>(number)); }
    /// Voices that have been let go and not been started since; the test may report their end.
    const std::set<int>& fading() const { return mFading; }
    /// The test has reported this one's end.
    void forget(int voice) { mFading.erase(voice); }

private:
    void hear(const Message& message)
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

    QList<Message> mMessages;
    std::array<Voice, 129> mVoices;
    std::map<Key, int> mVoiceOf;
    std::set<int> mFading;
    const PdReceiver mReceiver{"orlo-in", [this](const auto& list) {
        if (list.size() == 3)
            hear({list[0], static_cast<int>(list[1]), static_cast<int>(list[2])});
    }};
};
