#pragma once

#include <QString>

#include <jack/jack.h>

#include <array>
#include <atomic>
#include <vector>

/// Records what the program sends, as a client of the desk's sound server. Neither side runs with
/// real-time priority: single blocks may be missing.
class Recorder
{
public:
    static constexpr int CHANNELS = 2;

    explicit Recorder(const QString& server);
    ~Recorder();
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    /// Waits for the program's outputs. May be called anew for the next program.
    bool connectToProgram();
    /// The same of another client's outputs.
    bool connectTo(const std::array<const char*, CHANNELS>& outputs);

    /// Records this long from now on. Empty when no sound server is at work.
    std::vector<float> record(double seconds, int channel = 0);
    /// Root mean square of the next moment; -1 when no sound server is at work.
    double level(int channel = 0);
    /// Waits for the outputs to carry something, or to carry nothing for a while.
    bool waitForSound();
    bool waitForSilence();

private:
    static int processBlock(jack_nframes_t frames, void* self);

    static constexpr size_t KEPT = size_t{1} << 20; // frames, 23 s

    jack_client_t* mClient = nullptr;
    std::array<jack_port_t*, CHANNELS> mPorts{};
    std::array<std::vector<float>, CHANNELS> mKept; // the newest, in a ring
    std::atomic<size_t> mRecorded{0};               // frames so far
};
