// A client of JACK named "soak" that writes what the program sends to standard output, block by block,
// until it is killed: the server's frame time, how many blocks were late by the server so far, how long a
// block took to come here as frames of time, the frames in the block, then these as 32-bit floats, left and
// right in turn. Numbers are in the machine's byte order.
//
//     stream_sound <server>

#include <jack/jack.h>
#include <jack/ringbuffer.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <vector>

namespace {

constexpr const char* OUTPUTS = "^Brevick Tuning Orlo:out_";
constexpr size_t RING_BYTES = 16 << 20; // 45 s

struct Header
{
    uint32_t frameTime;
    uint32_t lateBlocks;
    uint32_t took; // frames of time
    uint32_t frames;
};

struct Listener
{
    jack_client_t* client = nullptr;
    std::array<jack_port_t*, 2> ports{};
    jack_ringbuffer_t* ring = jack_ringbuffer_create(RING_BYTES);
    std::vector<float> block;
    std::atomic<uint32_t> lateBlocks{0};

    /// A block that finds no room is missing in the frame times.
    int process(jack_nframes_t frames)
    {
        const Header header{jack_last_frame_time(client), lateBlocks, jack_frames_since_cycle_start(client),
                            frames};
        const size_t bytes = 2 * frames * sizeof(float);
        if (2 * frames > block.size() || jack_ringbuffer_write_space(ring) < sizeof header + bytes)
            return 0;
        for (size_t side = 0; side < 2; ++side) {
            const auto* samples = static_cast<const float*>(jack_port_get_buffer(ports[side], frames));
            for (size_t i = 0; i < frames; ++i)
                block[2 * i + side] = samples[i];
        }
        jack_ringbuffer_write(ring, reinterpret_cast<const char*>(&header), sizeof header);
        jack_ringbuffer_write(ring, reinterpret_cast<const char*>(block.data()), bytes);
        return 0;
    }

    /// PortAudio numbers the outputs on from stream to stream, and connects those of a stream on the
    /// device "soak" by itself.
    void connectOutputs() const
    {
        const char** names = jack_get_ports(client, OUTPUTS, JACK_DEFAULT_AUDIO_TYPE, JackPortIsOutput);
        for (size_t i = 0; names && names[i]; ++i) {
            if (!jack_port_connected_to(ports[i % 2], names[i]))
                jack_connect(client, names[i], jack_port_name(ports[i % 2]));
        }
        jack_free(names);
    }
};

} // namespace

int main(int count, char** arguments)
{
    Listener listener;
    if (count == 2)
        listener.client = jack_client_open(
            "soak", static_cast<jack_options_t>(JackNoStartServer | JackServerName), nullptr, arguments[1]);
    if (!listener.client)
        return 1;
    listener.block.resize(2 * jack_get_buffer_size(listener.client));
    for (size_t side = 0; side < 2; ++side)
        listener.ports[side] = jack_port_register(listener.client, side == 0 ? "left" : "right",
                                                  JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput, 0);
    jack_set_process_callback(
        listener.client,
        [](jack_nframes_t frames, void* self) { return static_cast<Listener*>(self)->process(frames); },
        &listener);
    jack_set_xrun_callback(
        listener.client,
        [](void* self) {
            ++static_cast<Listener*>(self)->lateBlocks;
            return 0;
        },
        &listener);
    jack_on_shutdown(
        listener.client, [](void*) { std::_Exit(0); }, nullptr);
    jack_activate(listener.client);
    std::vector<char> bytes(RING_BYTES);
    for (;;) {
        listener.connectOutputs();
        const size_t size = jack_ringbuffer_read(listener.ring, bytes.data(), bytes.size());
        if (std::fwrite(bytes.data(), 1, size, stdout) != size || std::fflush(stdout) != 0)
            return 0;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}
