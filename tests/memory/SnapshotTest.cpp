// The list of sounding notes that the graphical thread takes while the audio thread changes it.

#include "memory/StoreAndRecall.h"
#include "sound/OrloNoteEvent.h"
#include "sound/VoiceSnapshot.h"
#include "support/LogCatcher.h"
#include "support/SoundRig.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <random>
#include <thread>
#include <vector>

namespace {

/// The n-th of 39 ratios of which no two share numerator or denominator, so that a mixture of two
/// is none of them.
OrloRatio ratioNumber(int n)
{
    unsigned long long numerator = 1;
    for (int i = 0; i <= n; ++i)
        numerator *= 3;
    return OrloRatio(numerator, 1ULL << (40 - n));
}

QList<OrloRatio> allRatios()
{
    QList<OrloRatio> list;
    for (int n = 0; n < 39; ++n)
        list.append(ratioNumber(n));
    return list;
}

/// Longer by hand: ORLO_STRESS_SECONDS=10.
int stressMs()
{
    bool given = false;
    const int seconds = qEnvironmentVariableIntValue("ORLO_STRESS_SECONDS", &given);
    return given ? seconds * 1000 : 2000;
}

} // namespace

TEST(Snapshot, IsOfOneMomentHoweverOftenItIsPublished)
{
    // One third of them or another, all of it; published without a pause, as no engine does. Three,
    // so that each place of the ring holds each of them in turn.
    const QList<OrloRatio> ratios = allRatios();
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
    std::this_thread::sleep_for(std::chrono::milliseconds(stressMs()));
    running = false;
    writer.join();
    for (std::thread& reader : readers)
        reader.join();
    EXPECT_EQ(wrong, 0);
    for (const std::atomic<int>& count : seen)
        EXPECT_GT(count, 0);
}

TEST(Snapshot, StoringAndRecallingNeverGivesWhatNeverSounded)
{
    const LogCatcher quiet;
    SoundRig rig;
    const QList<OrloRatio> ratios = allRatios();
    StoreAndRecall memory(&rig.player);
    std::atomic<bool> running{true};
    std::atomic<int> changes{0};
    std::thread audio([&] {
        while (running) {
            if (rig.player.handOver().enterBlock()) {
                rig.player.processEvents();
                rig.player.handOver().leaveBlock();
            }
            std::this_thread::sleep_for(std::chrono::microseconds(300));
        }
    });
    std::thread device([&] {
        std::mt19937 random(5);
        while (running) {
            // Four in a millisecond and a half: more than two thousand a second.
            for (int i = 0; i < 4; ++i) {
                const OrloNoteEvent event(ratios[static_cast<qsizetype>(random() % 39)]);
                rig.player.queueEventSerial(&event);
                ++changes;
            }
            std::this_thread::sleep_for(std::chrono::microseconds(1500));
        }
    });

    QElapsedTimer timer;
    timer.start();
    qint64 stored = 0;
    qint64 wrong = 0;
    for (int slot = 1; timer.elapsed() < stressMs(); slot = slot % 20 + 1) {
        if (memory.storeRatios(slot)) {
            ++stored;
            for (const OrloRatio& ratio : memory.storedChords()->value(slot))
                wrong += ratios.contains(ratio) ? 0 : 1;
        }
        memory.recallRatios(20 - slot + 1, slot % 3);
    }
    running = false;
    audio.join();
    device.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_GT(stored, 100);
    EXPECT_GE(changes, stressMs());
}
