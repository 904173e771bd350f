#include "sound/VoiceSnapshot.h"

#include "sound/TemperedRatio.h"
#include "sound/ThreadCheck.h"

#include <cstddef>

namespace {

std::uint64_t packed(const Voice& voice)
{
    return std::uint64_t{voice.seqId} << 32 | static_cast<std::uint64_t>(voice.voice) << 1
           | (voice.released ? 1U : 0U);
}

} // namespace

void VoiceSnapshot::publish(const RatioTable<Voice*>& noteMap)
{
    ThreadCheck::audio();
    Notes now;
    for (const Voice* voice : noteMap) {
        if (now.count == VoiceTable::SLOTS)
            break;
        now.notes[now.count++] = {voice->ratio.numerator(), voice->ratio.denominator(), packed(*voice),
                                  voice->frequency, 0.0F};
    }
    mPublished.publish(now, offsetof(Notes, notes) + now.count * sizeof(Note));
}

QList<VoiceSnapshot::Entry> VoiceSnapshot::read() const
{
    QList<Entry> entries = readAll();
    entries.removeIf([](const Entry& entry) { return temperedratio::is(entry.ratio); });
    return entries;
}

QList<VoiceSnapshot::Entry> VoiceSnapshot::readAll() const
{
    Notes last;
    QList<Entry> entries;
    if (!mPublished.read(last))
        return entries;
    entries.reserve(static_cast<qsizetype>(last.count));
    for (std::size_t i = 0; i < last.count; ++i) {
        const Note& note = last.notes[i];
        entries.append({OrloRatio(note.numerator, note.denominator), static_cast<int>(note.state >> 1 & 0xFF),
                        static_cast<std::uint32_t>(note.state >> 32), (note.state & 1) != 0, note.frequency});
    }
    return entries;
}
