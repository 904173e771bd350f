// The list of sounding notes that the graphical thread takes while the audio thread changes it.

#include "sound/VoiceSnapshot.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

namespace {

constexpr int TABLES = 3;
constexpr int VOICES = 13; // of each

/// No two share numerator or denominator, so that a mixture of two is none of them.
OrloRatio ratioOf(std::uint32_t seqId)
{
    return OrloRatio(101 + 2 * seqId, 1ULL << seqId);
}

bool isOneTable(const QList<VoiceSnapshot::Entry>& entries)
{
    return entries.size() == VOICES && std::ranges::all_of(entries, [&](const VoiceSnapshot::Entry& entry) {
               return entry.seqId % TABLES == entries.first().seqId % TABLES
                      && entry.ratio == ratioOf(entry.seqId);
           });
}

} // namespace

TEST(Snapshot, IsOfOneMomentHoweverOftenItIsPublished)
{
    // Three tables, published in turn without a pause, as no engine does, so that each place of the ring
    // holds each of them.
    VoiceTable tables[TABLES];
    for (std::uint32_t seqId = 1; seqId <= TABLES * VOICES; ++seqId) {
        VoiceTable& table = tables[seqId % TABLES];
        table.take(*table.freeSlot(VoiceTable::SLOTS), ratioOf(seqId), seqId);
    }
    VoiceSnapshot snapshot;
    std::atomic<bool> running{true};
    std::vector<std::thread> threads;
    threads.emplace_back([&] {
        for (int i = 0; running; ++i)
            snapshot.publish(tables[i % TABLES].noteMap);
    });
    // More readers than processors, so that they are held up in the middle of a copy.
    std::atomic<int> wrong{0};
    std::atomic<int> seen[TABLES]{};
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&] {
            while (running) {
                const QList<VoiceSnapshot::Entry> entries = snapshot.read();
                if (entries.isEmpty())
                    continue; // not published yet, or held up a hundred times
                wrong += isOneTable(entries) ? 0 : 1;
                ++seen[entries.first().seqId % TABLES];
            }
        });
    }
    std::this_thread::sleep_for(std::chrono::seconds(2));
    running = false;
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
    for (const std::atomic<int>& count : seen)
        EXPECT_GT(count, 0);
}
