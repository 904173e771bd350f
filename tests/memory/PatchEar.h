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

    explicit PatchEar(PdPlayer& player);

    QList<Message> take() { return std::exchange(mMessages, {}); }
    int voiceOf(Key ratio) const { return mVoiceOf.at(ratio); }
    const Voice& voice(int number) const { return mVoices.at(static_cast<size_t>(number)); }
    /// Voices that have been let go and not been started since; the test may report their end.
    const std::set<int>& fading() const { return mFading; }
    /// The test has reported this one's end.
    void forget(int voice) { mFading.erase(voice); }

private:
    void hear(const Message& message);

    QList<Message> mMessages;
    std::array<Voice, 129> mVoices;
    std::map<Key, int> mVoiceOf;
    std::set<int> mFading;
    const PdReceiver mReceiver;
};
