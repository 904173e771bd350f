// The worst block under stress, in milliseconds: a thread at real-time priority, where the system
// allows it, plays the callback at its real pace, while four threads keep the processors busy and the
// graphical thread never rests. What counts is how long a block takes from its start to its end;
// waiting for another thread shows there, a late start does not.
//
//   bench_stress [seconds for each row]

#include "support/SoundRig.h"

#include "sound/OrloNodeSelectToggleEvent.h"
#include "sound/OrloNoteEvent.h"

#include <QCoreApplication>

#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr int HOGS = 4;
constexpr int NODES = 128;
constexpr int SETTLE_BLOCKS = 20; // between two commands of a row

OrloRatio ratioNumber(int n)
{
    return OrloRatio(static_cast<unsigned long long>(1000 + n), 1000ULL);
}

bool makeRealTime()
{
    sched_param parameters{};
    parameters.sched_priority = 60;
    return pthread_setschedparam(pthread_self(), SCHED_FIFO, &parameters) == 0;
}

/// One kind of command; `queue` is called on the graphical thread, every SETTLE_BLOCKS blocks.
struct Row
{
    const char* name;
    std::function<void(SoundRig&, int round)> queue;
};

void toggleAll(SoundRig& rig)
{
    for (int n = 0; n < NODES; ++n)
        rig.queue(OrloNoteEvent(ratioNumber(n)));
}

/// All nodes sound and are selected, whatever was before.
void prepare(SoundRig& rig)
{
    rig.settings.softNodeReset = false;
    for (const auto type : {OrloEvent::AllNotesOffForced, OrloEvent::NodesDeselectAll})
        rig.send(OrloEvent(type, 0.0F));
    toggleAll(rig);
    rig.render();
    rig.send(OrloEvent(OrloEvent::NodesSelectAllSounding, 0.0F));
    QCoreApplication::processEvents();
}

const Row ROWS[] = {
    {"nothing", [](SoundRig&, int) {}},
    {"one press", [](SoundRig& rig, int) { rig.queue(OrloNoteEvent(ratioNumber(0))); }},
    {"recall of 128 notes", [](SoundRig& rig, int) { toggleAll(rig); }},
    {"select and deselect all",
     [](SoundRig& rig, int round) {
         rig.queue(OrloEvent(round % 2 ? OrloEvent::NodesSelectAllSounding : OrloEvent::NodesDeselectAll, 0));
     }},
    {"glissando of 128",
     [](SoundRig& rig, int round) {
         rig.queue(OrloEvent(OrloEvent::GlissOneSet, 0.5F + 0.01F * static_cast<float>(round % 9)));
     }},
    {"reset of 128 nodes", [](SoundRig& rig, int) { rig.queue(OrloEvent(OrloEvent::NodesResetAll, 0)); }},
    {"reset of 128, started anew",
     [](SoundRig& rig, int) {
         rig.settings.softNodeReset = true;
         rig.queue(OrloEvent(OrloEvent::NodesResetAll, 0));
     }},
};

class AudioThread
{
public:
    AudioThread(SoundRig& rig, std::vector<double>& times)
        : mThread([this, &rig, &times] {
            realTime = makeRealTime();
            std::array<float, 2 * SoundRig::FRAMES> block;
            const auto period =
                std::chrono::nanoseconds(static_cast<long long>(1e9 * SoundRig::FRAMES / SoundRig::RATE));
            auto next = Clock::now();
            while (mRunning) {
                const auto begin = Clock::now();
                rig.output.renderBlock(block.data(), SoundRig::FRAMES);
                if (times.size() < times.capacity())
                    times.push_back(Milliseconds(Clock::now() - begin).count());
                blocks.fetch_add(1);
                next = std::max(next + period, Clock::now());
                std::this_thread::sleep_until(next);
            }
        })
    {
    }
    ~AudioThread()
    {
        mRunning = false;
        mThread.join();
    }

    std::atomic<int> blocks{0};
    std::atomic<bool> realTime{false};

private:
    std::atomic<bool> mRunning{true};
    std::thread mThread;
};

/// The graphical thread at its busiest: events, and memory taken and given back.
void keepBusy()
{
    QCoreApplication::processEvents();
    std::array<void*, 64> memory;
    for (size_t i = 0; i < memory.size(); ++i)
        memory[i] = std::malloc(16 + i * 40);
    for (void* piece : memory)
        std::free(piece);
}

void run(const Row& row, SoundRig& rig, double seconds)
{
    prepare(rig);
    std::vector<double> times;
    times.reserve(static_cast<size_t>(seconds * SoundRig::RATE / SoundRig::FRAMES) + 1000);
    bool realTime = false;
    {
        AudioThread audio(rig, times);
        const auto end = Clock::now() + std::chrono::duration<double>(seconds);
        int next = SETTLE_BLOCKS;
        for (int round = 0; Clock::now() < end;) {
            if (audio.blocks >= next) {
                row.queue(rig, round++);
                next = audio.blocks + SETTLE_BLOCKS;
            }
            keepBusy();
        }
        realTime = audio.realTime;
    }
    std::sort(times.begin(), times.end());
    std::printf("%-28s %7zu %9.2f %9.2f %9.2f   %s\n", row.name, times.size(), times[times.size() / 2],
                times[times.size() * 999 / 1000], times.back(), realTime ? "FIFO" : "no FIFO");
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const double seconds = argc > 1 ? std::atof(argv[1]) : 20.0;
    SoundRig rig;
    PdPlayer::connectLattice(&rig.player, &rig.orlo);
    if (!rig.loadVoice(QStringLiteral("Sine.pd")))
        return 1;
    // The hogs shall win over the graphical thread, as other programs may on a busy desktop.
    setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), 10);

    std::atomic<bool> hogging{true};
    std::vector<std::thread> hogs;
    for (int i = 0; i < HOGS; ++i)
        hogs.emplace_back([&hogging] {
            setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), 0);
            volatile unsigned long count = 0;
            while (hogging)
                count = count + 1;
        });
    std::printf("%-28s %7s %9s %9s %9s   (ms; a block lasts %.1f)\n", "", "blocks", "median", "99.9 %",
                "worst", 1000.0 * SoundRig::FRAMES / SoundRig::RATE);
    for (const Row& row : ROWS)
        run(row, rig, seconds);
    hogging = false;
    for (std::thread& hog : hogs)
        hog.join();
    return 0;
}
