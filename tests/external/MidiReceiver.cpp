#include "external/MidiReceiver.h"

#include <algorithm>

void MidiReceiver::hear(std::span<const unsigned char> message)
{
    const bool understood =
        !message.empty() && (message[0] == 0xF0 ? hearTuning(message) : hearShort(message));
    broken += understood ? 0 : 1;
}

bool MidiReceiver::hearShort(std::span<const unsigned char> message)
{
    if (message.size() != 3 || message[1] > 127 || message[2] > 127)
        return false;
    const int channel = message[0] & 0x0F;
    const Note note{channel, message[1]};
    switch (message[0] & 0xF0) {
    case 0x80: mNotes.erase(note); return true;
    case 0x90: mNotes.insert(note); return true;
    case 0xE0:
        mBend[static_cast<size_t>(channel)] = (message[2] * 128 + message[1] - 8192) / 8192.0;
        return true;
    case 0xB0: break;
    default: return false;
    }
    if (message[1] == 0x7B)
        std::erase_if(mNotes, [&](const Note& each) { return each.first == channel; });
    else if (channel != 0)
        return false;
    mControllers[message[1]] = message[2];
    if ((message[1] == 0x06 || message[1] == 0x26) && mControllers[0x64] == 0 && mControllers[0x65] == 0)
        mRange = mControllers[0x06] + mControllers[0x26] / 100.0;
    return true;
}

bool MidiReceiver::hearTuning(std::span<const unsigned char> message)
{
    constexpr std::array<unsigned char, 6> HEAD{0xF0, 0x7F, 0x7F, 0x08, 0x02, 0x00};
    if (message.size() < 8 || !std::ranges::equal(message.first(6), HEAD) || message.back() != 0xF7
        || message.size() != 8U + 4U * message[6])
        return false;
    const auto keys = message.subspan(7, message.size() - 8);
    if (message[6] > 127 || std::ranges::any_of(keys, [](unsigned char byte) { return byte > 127; }))
        return false;
    for (size_t i = 0; i < keys.size(); i += 4)
        mTuning[keys[i]] = keys[i + 1] + keys[i + 2] / 128.0 + keys[i + 3] / 16384.0;
    return true;
}

double MidiReceiver::pitch(const Note& note, bool mpe) const
{
    if (mpe)
        return note.second + mBend[static_cast<size_t>(note.first)] * mRange;
    const auto tuned = mTuning.find(note.second);
    return tuned == mTuning.end() ? note.second : tuned->second;
}
