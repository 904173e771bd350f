#include "external/MpeChannels.h"

#include <algorithm>
#include <cmath>
#include <utility>

MpeChannels::MpeChannels()
{
    channelKey.fill(69);
    channelExactNote.fill(69.0);
}

void MpeChannels::useZone(bool isZone)
{
    freeAll();
    mIsZone = isZone;
}

int MpeChannels::find(int voice, int& start) const
{
    if (mIsZone)
        return findMember(voice);
    for (int channel = start; channel < midi::CHANNELS; ++channel) {
        if (isFree(channel) || holds(channel, voice))
            return channel;
    }
    start = midi::CHANNELS - 1;
    return NONE;
}

int MpeChannels::findMember(int voice) const
{
    int found = NONE;
    for (int channel = FIRST_MEMBER; channel < midi::CHANNELS; ++channel) {
        if (holds(channel, voice))
            return channel;
        if (isFree(channel) && (found == NONE || mFreed[at(channel)] < mFreed[at(found)]))
            found = channel;
    }
    return found;
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

void MpeChannels::bend(int channel, double note, double missCents)
{
    channelNote[at(channel)] = note;
    mMiss[at(channel)] = missCents;
    largestMiss = *std::max_element(mMiss.begin(), mMiss.end());
}

void MpeChannels::free(int channel)
{
    if (std::exchange(channelActive[at(channel)], false) && mIsZone)
        mFreed[at(channel)] = ++mFreeings;
    bend(channel, channelNote[at(channel)], 0.0);
}

void MpeChannels::freeAll()
{
    for (int channel = 0; channel < midi::CHANNELS; ++channel)
        free(channel);
}
