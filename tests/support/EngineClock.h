#pragma once

#include <atomic>
#include <thread>

class PdPlayer;

/// Plays the audio callback without sound while it lives: drains the player's commands about once
/// a millisecond, as a stream would. What waits for the hand-over of a patch needs one.
class EngineClock
{
public:
    explicit EngineClock(PdPlayer& player);
    ~EngineClock();
    EngineClock(const EngineClock&) = delete;
    EngineClock& operator=(const EngineClock&) = delete;

private:
    std::atomic<bool> mRunning{true};
    std::thread mThread;
};
