#include "end-to-end/Recorder.h"

#include "end-to-end/VirtualDesk.h"
#include "end-to-end/Waiting.h"
#include "support/Tone.h"

namespace {

constexpr std::array<const char*, Recorder::CHANNELS> PROGRAM_OUTPUTS{"Brevick Tuning Orlo:out_0",
                                                                      "Brevick Tuning Orlo:out_1"};
constexpr double SILENT_BELOW = 1e-5; // full scale is 1
constexpr double SOUNDS_ABOVE = 1e-3;
constexpr double SILENCE_SECONDS = 0.1;

} // namespace

Recorder::Recorder(const QString& server)
{
    for (auto& channel : mKept)
        channel.resize(KEPT);
    mClient = jack_client_open("recorder", static_cast<jack_options_t>(JackNoStartServer | JackServerName),
                               nullptr, server.toLatin1().constData());
    if (!mClient)
        return;
    for (size_t channel = 0; channel < CHANNELS; ++channel)
        mPorts[channel] = jack_port_register(mClient, channel == 0 ? "left" : "right",
                                             JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput, 0);
    jack_set_process_callback(mClient, &Recorder::processBlock, this);
    // With this handler the client outlives its server.
    jack_on_shutdown(
        mClient, [](void*) {}, nullptr);
    jack_activate(mClient);
}

Recorder::~Recorder()
{
    if (mClient)
        jack_client_close(mClient);
}

int Recorder::processBlock(jack_nframes_t frames, void* self)
{
    auto* recorder = static_cast<Recorder*>(self);
    const size_t from = recorder->mRecorded.load(std::memory_order_relaxed);
    for (size_t channel = 0; channel < CHANNELS; ++channel) {
        const auto* input =
            static_cast<const float*>(jack_port_get_buffer(recorder->mPorts[channel], frames));
        for (jack_nframes_t i = 0; i < frames; ++i)
            recorder->mKept[channel][(from + i) % KEPT] = input[i];
    }
    recorder->mRecorded.store(from + frames, std::memory_order_release);
    return 0;
}

bool Recorder::connectToProgram()
{
    return connectTo(PROGRAM_OUTPUTS);
}

bool Recorder::connectTo(const std::array<const char*, CHANNELS>& outputs)
{
    if (!mClient)
        return false;
    for (size_t channel = 0; channel < CHANNELS; ++channel) {
        const char* output = outputs[channel];
        const auto connected = [&] {
            return jack_port_by_name(mClient, output)
                   && (jack_port_connected_to(mPorts[channel], output)
                       || jack_connect(mClient, output, jack_port_name(mPorts[channel])) == 0);
        };
        if (!waitUntil(connected))
            return false;
    }
    return true;
}

std::vector<float> Recorder::record(double seconds, int channel)
{
    const auto frames = static_cast<size_t>(seconds * VirtualDesk::SAMPLE_RATE);
    const size_t from = mRecorded.load(std::memory_order_acquire);
    const auto enough = [&] { return mRecorded.load(std::memory_order_acquire) >= from + frames; };
    if (!waitUntil(enough, static_cast<int>(seconds * 1000) + 10000))
        return {};
    std::vector<float> recording(frames);
    for (size_t i = 0; i < frames; ++i)
        recording[i] = mKept[static_cast<size_t>(channel)][(from + i) % KEPT];
    return recording;
}

double Recorder::level(int channel)
{
    const std::vector<float> recording = record(SILENCE_SECONDS, channel);
    return recording.empty() ? -1.0 : tone::level(recording);
}

bool Recorder::waitForSound()
{
    return waitUntil([this] { return level() > SOUNDS_ABOVE; });
}

bool Recorder::waitForSilence()
{
    return waitUntil([this] {
        const double now = level();
        return now >= 0.0 && now < SILENT_BELOW;
    });
}
