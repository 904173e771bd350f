#include "end-to-end/Recorder.h"

#include "support/Waiting.h"

Recorder::Recorder(const QString& server)
{
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
    std::array<const float*, CHANNELS> channels;
    for (size_t channel = 0; channel < CHANNELS; ++channel)
        channels[channel] =
            static_cast<const float*>(jack_port_get_buffer(recorder->mPorts[channel], frames));
    recorder->append(channels, frames, 1);
    return 0;
}

bool Recorder::connectToProgram(int stream)
{
    const auto output = [](int number) { return "Brevick Tuning Orlo:out_" + QByteArray::number(number); };
    return connectTo({output(2 * stream - 2), output(2 * stream - 1)});
}

bool Recorder::connectTo(const std::array<QByteArray, CHANNELS>& outputs)
{
    if (!mClient)
        return false;
    for (size_t channel = 0; channel < CHANNELS; ++channel) {
        const char* output = outputs[channel].constData();
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
