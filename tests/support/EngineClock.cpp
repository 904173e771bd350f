#include "support/EngineClock.h"

#include "sound/PdPlayer.h"

#include <chrono>

EngineClock::EngineClock(PdPlayer& player)
    : mThread([this, &player] {
        while (mRunning) {
            if (player.handOver().enterBlock()) {
                player.processEvents();
                player.handOver().leaveBlock();
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    })
{
}

EngineClock::~EngineClock()
{
    mRunning = false;
    mThread.join();
}
