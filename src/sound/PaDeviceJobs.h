#pragma once

#include "sound/PaAudioOutput.h"
#include "sound/PaStreamOpening.h"
#include "sound/PortAudioLibrary.h"
#include "sound/StreamContext.h"

#include <algorithm>
#include <chrono>

// What PaAudioOutput has done in PortAudio, for its own .cpp files: opening a device (PaStreamOpening.h),
// closing it, finding it again. A job runs on another thread and may be given up there, so it owns all that
// it touches.

/// One time limit for several calls.
class PaAudioOutput::Deadline
{
public:
    explicit Deadline(std::chrono::milliseconds limit)
        : mEnd(std::chrono::steady_clock::now() + limit)
    {
    }
    std::chrono::milliseconds left(std::chrono::milliseconds max = std::chrono::milliseconds::max()) const
    {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(mEnd - std::chrono::steady_clock::now());
        return std::clamp(left, std::chrono::milliseconds(0), max);
    }

private:
    std::chrono::steady_clock::time_point mEnd;
};

/// Stops a stream and closes it.
struct PaAudioOutput::CloseJob
{
    PortAudioLibrary* library;
    PaStream* stream;
    std::shared_ptr<StreamContext> context; // kept while the callback may run
    PaError stopError = paNoError;
    PaError closeError = paNoError;

    void run()
    {
        stopError = library->stopStream(stream);
        closeError = library->closeStream(stream);
    }
};

/// A JACK stream that is put aside, because its callback has stopped.
struct PaAudioOutput::ParkedStream
{
    CloseJob close;
    int hostApi;
    std::uint64_t callsThen; // of its callback
};

/// Brings a lost device back in two calls. All that is slow is done on another thread; the graphical
/// thread only tells libpd the rate in between.
struct PaAudioOutput::ReturnJob
{
    PortAudioLibrary* library;
    QString name;
    int frames;
    PaAudioOutput* output;
    bool anew; // PortAudio ends and starts again first, to read its devices anew

    PaError error = paNoError;        // of the start
    std::shared_ptr<OpenJob> opening; // null while the device is not there
    bool starting = false;            // the second call

    void find()
    {
        if (anew) {
            if (library->isStarted)
                library->terminate();
            library->isStarted = false;
            error = library->start();
            if (error != paNoError)
                return;
        }
        const int paIndex = static_cast<int>(library->outputNames().indexOf(name));
        if (paIndex < 0)
            return;
        opening = std::make_shared<OpenJob>(library, paIndex, frames, output);
        opening->check();
        if (opening->error == paNoError)
            opening->open();
    }
    void start() { opening->start(); }
};
