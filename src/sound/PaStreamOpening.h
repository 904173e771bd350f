#pragma once

#include "sound/PaAudioOutput.h"
#include "sound/PortAudioLibrary.h"
#include "sound/StreamContext.h"

/// Opens a stream at the preferred rate, or at the device's own where that is refused, and starts it.
struct PaAudioOutput::OpenJob
{
    /// Any thread that has the library to itself.
    OpenJob(PortAudioLibrary* from, int paIndex, int framesPerBuffer, PaAudioOutput* output)
        : library(from)
        , frames(static_cast<unsigned long>(framesPerBuffer))
        , context(std::make_shared<StreamContext>())
    {
        const PaDeviceInfo* device = library->getDeviceInfo(paIndex);
        hostApi = device->hostApi;
        deviceRate = device->defaultSampleRate;
        parameters.device = paIndex;
        parameters.channelCount = CHANNELS;
        parameters.sampleFormat = paFloat32;
        parameters.suggestedLatency =
            (device->defaultLowOutputLatency + device->defaultHighOutputLatency) * 0.5;
        context->output = output;
    }

    void check()
    {
        error = library->isFormatSupported(nullptr, &parameters, rate);
        if (error == paInvalidSampleRate) {
            rate = deviceRate;
            error = paNoError;
        }
    }
    void open()
    {
        call = "Pa_OpenStream";
        error = library->openStream(&stream, nullptr, &parameters, rate, frames, paNoFlag,
                                    &PaAudioOutput::portAudioCallback, context.get());
        if (error != paNoError)
            stream = nullptr;
        else if (const PaStreamInfo* streamInfo = library->getStreamInfo(stream))
            info = *streamInfo;
    }
    /// The callback may run before this returns.
    void start()
    {
        call = "Pa_StartStream";
        error = library->startStream(stream);
        if (error != paNoError)
            close();
    }
    /// JACK's part of PortAudio ends the program over a stream whose server has died, so only one that
    /// plays is closed there. Another never plays, and its context lives on.
    void close()
    {
        if (!stream)
            return;
        if (!library->isJack(hostApi) || library->isStreamActive(stream) == 1)
            library->closeStream(stream);
        else
            new std::shared_ptr<StreamContext>(context);
        stream = nullptr;
    }

    PortAudioLibrary* const library;
    int hostApi = -1;
    PaStreamParameters parameters{};
    double deviceRate = 0.0; // its default, Hz
    const unsigned long frames;
    const std::shared_ptr<StreamContext> context;

    double rate = PREFERRED_RATE; // asked for
    PaStream* stream = nullptr;
    PaStreamInfo info{};
    PaError error = paNoError;
    std::atomic<const char*> call = "Pa_IsFormatSupported"; // the one under way, or the one that failed
};
