// The list of sounding notes that the graphical thread takes while the audio thread changes it.

#include "sound/VoiceSnapshot.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

namespace {

/// No two share numerator or denominator, so that a mixture of two is none of them.
QList<OrloRatio> ratiosWithoutCommonParts()
{
    QList<OrloRatio> list;
    unsigned long long numerator = 1;
    for (int n = 0; n < 39; ++n)
        list.append(OrloRatio(numerator *= 3, 1ULL << (40 - n)));
    return list;
}

/// Longer by hand: ORLO_STRESS_SECONDS=10.
std::chrono::seconds stressTime()
{
    bool given = false;
    const int seconds = qEnvironmentVariableIntValue("ORLO_STRESS_SECONDS", &given);
    return std::chrono::seconds(given ? seconds : 2);
}

} // namespace

TEST(Snapshot, IsOfOneMomentHoweverOftenItIsPublished)
{
    // One third of them or another, all of it; published without a pause, as no engine does. Three,
    // so that each place of the ring holds each of them in turn.
    const QList<OrloRatio> ratios = ratiosWithoutCommonParts();
    VoiceTable tables[3];
    for (int i = 0; i < 39; ++i) {
        VoiceTable& table = tables[i % 3];
        table.take(*table.freeSlot(VoiceTable::SLOTS), ratios[i], static_cast<std::uint32_t>(i + 1));
    }
    VoiceSnapshot snapshot;
    snapshot.publish(tables[0].noteMap);
    std::atomic<bool> running{true};
    std::thread writer([&] {
        for (int i = 0; running; ++i)
            snapshot.publish(tables[i % 3].noteMap);
    });
    // More readers than processors, so that they are held up in the middle of a copy.
    std::atomic<int> wrong{0};
    std::atomic<int> seen[3]{};
    const auto readOnce = [&] {
        const QList<VoiceSnapshot::Entry> entries = snapshot.read();
        if (entries.isEmpty())
            return; // held up a hundred times
        const qsizetype which = ratios.indexOf(entries.first().ratio) % 3;
        const auto belongs = [&](const VoiceSnapshot::Entry& entry) {
            const qsizetype at = ratios.indexOf(entry.ratio);
            return at >= 0 && at % 3 == which && entry.seqId == static_cast<std::uint32_t>(at + 1);
        };
        const bool whole = entries.size() == 13 && std::all_of(entries.begin(), entries.end(), belongs);
        wrong += whole ? 0 : 1;
        ++seen[qMax<qsizetype>(0, which)];
    };
    std::vector<std::thread> readers;
    for (int i = 0; i < 8; ++i) {
        readers.emplace_back([&] {
            while (running)
                readOnce();
        });
    }
    std::this_thread::sleep_for(stressTime());
    running = false;
    writer.join();
    for (std::thread& reader : readers)
        reader.join();
    EXPECT_EQ(wrong, 0);
    for (const std::atomic<int>& count : seen)
        EXPECT_GT(count, 0);
}
