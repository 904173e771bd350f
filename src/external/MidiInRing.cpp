#include "external/MidiInRing.h"

bool MidiInRing::write(const MidiInMessage& message)
{
    if (mRing.write(&message, sizeof(message)))
        return true;
    mLost.fetch_add(1, std::memory_order_release); // whoever sees it sees the messages written before it
    mLostInAll.fetch_add(1, std::memory_order_relaxed);
    return false;
}

std::size_t MidiInRing::read(std::span<MidiInMessage> messages)
{
    std::size_t count = 0;
    while (count < messages.size() && mRing.read(&messages[count], sizeof(MidiInMessage)))
        ++count;
    return count;
}
