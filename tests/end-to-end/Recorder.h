#pragma once

#include "end-to-end/Recording.h"

#include <QString>

#include <jack/jack.h>

#include <array>

/// Records what the program sends, as a client of the desk's sound server. Neither side runs with
/// real-time priority: single blocks may be missing.
class Recorder : public Recording
{
public:
    explicit Recorder(const QString& server);
    ~Recorder();
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    /// Waits for the program's outputs. May be called anew for the next program.
    bool connectToProgram();
    /// The same of another client's outputs.
    bool connectTo(const std::array<const char*, CHANNELS>& outputs);

private:
    static int processBlock(jack_nframes_t frames, void* self);

    jack_client_t* mClient = nullptr;
    std::array<jack_port_t*, CHANNELS> mPorts{};
};
