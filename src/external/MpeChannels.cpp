#include "external/MpeChannels.h"

#include <cmath>

MpeChannels::MpeChannels()
{
    channelKey.fill(69);
    channelExactNote.fill(69.0);
}

int MpeChannels::find(int voice, int& start) const
{
    for (int channel = start; channel < midi::CHANNELS; ++channel) {
        if (isFree(channel) || holds(channel, voice))
            return channel;
    }
    start = midi::CHANNELS - 1;
    return NONE;
}

bool MpeChannels::holds(int channel, int voice) const
{
    return channelActive[at(channel)] && channelVoice[at(channel)] == voice;
}

void MpeChannels::take(int channel, int voice, double note)
{
    channelVoice[at(channel)] = voice;
    channelActive[at(channel)] = true;
    channelKey[at(channel)] = static_cast<int>(std::round(note));
    channelExactNote[at(channel)] = note;
}
