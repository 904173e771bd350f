#pragma once

#include "end-to-end/Recording.h"

#include <QByteArray>
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

    /// Waits for these outputs of any client. May be called anew for the next.
    bool connectTo(const std::array<QByteArray, CHANNELS>& outputs);
    /// PortAudio numbers the outputs on from stream to stream.
    bool connectToProgram(int stream = 1);

private:
    static int processBlock(jack_nframes_t frames, void* self);

    jack_client_t* mClient = nullptr;
    std::array<jack_port_t*, CHANNELS> mPorts{};
};
