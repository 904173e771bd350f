#include "external/MtsKeys.h"

#include "external/MidiNoteRange.h"
#include "external/MtsTuning.h"

#include <algorithm>

namespace {

constexpr int LAST_KEY = 127;
constexpr int MAX_KEYS = 256; // of one tuning change

} // namespace

MtsKeys::MtsKeys()
{
    tunedKeys.reserve(MAX_KEYS);
    mMessage.reserve(mts::tuningChangeSize(MAX_KEYS));
}

std::span<const midi::Byte> MtsKeys::tune(const QList<int>& voices, const QList<float>& frequencies,
                                          MidiNoteRange& range)
{
    const qsizetype given = qMin(voices.size(), frequencies.size());
    // A key above 127 would break the whole message.
    const auto hasKey = [this](int voice) { return keyOf(voice) <= LAST_KEY; };
    const auto count = std::count_if(voices.cbegin(), voices.cbegin() + given, hasKey);
    if (count == 0)
        return {};
    mts::beginTuningChange(mMessage, count);
    for (qsizetype i = 0; i < given; ++i) {
        if (!hasKey(voices.at(i)))
            continue;
        const int key = keyOf(voices.at(i));
        mts::addKeyTuning(mMessage, key, mts::tuningOfNote(range.noteOf(voices.at(i), frequencies.at(i))));
        if (!tunedKeys.contains(key))
            tunedKeys.append(key);
    }
    mts::endTuningChange(mMessage);
    return mMessage;
}

std::span<const midi::Byte> MtsKeys::reset()
{
    if (tunedKeys.isEmpty())
        return {};
    mts::beginTuningChange(mMessage, tunedKeys.size());
    for (qsizetype i = 0; i < tunedKeys.size(); ++i) {
        const int key = tunedKeys.at(i);
        mts::addKeyTuning(mMessage, key, {static_cast<midi::Byte>(key), 0, 0});
    }
    mts::endTuningChange(mMessage);
    tunedKeys.clear();
    return mMessage;
}
