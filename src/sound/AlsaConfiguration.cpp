#include "sound/AlsaConfiguration.h"

#include <dlfcn.h>

#include <cstring>

namespace {

// A card that is not there.
constexpr const char* NO_DEVICE = "pcm.orlo_no_device { type hw card 99 }\n";

// ALSA's own types and functions. PortAudio and RtMidi bring its library, where there is one.
struct snd_config_t;
struct snd_input_t;

template <class Symbol>
bool find(const char* name, Symbol*& symbol)
{
    symbol = reinterpret_cast<Symbol*>(dlsym(RTLD_DEFAULT, name));
    return symbol != nullptr;
}

struct Alsa
{
    snd_config_t** config = nullptr; // the whole of it
    int (*update)() = nullptr;
    int (*search)(snd_config_t*, const char*, snd_config_t**) = nullptr;
    int (*load)(snd_config_t*, snd_input_t*) = nullptr;
    int (*openBuffer)(snd_input_t**, const char*, long) = nullptr;
    int (*closeInput)(snd_input_t*) = nullptr;

    bool isHere()
    {
        return find("snd_config", config) && find("snd_config_update", update)
               && find("snd_config_search", search) && find("snd_config_load", load)
               && find("snd_input_buffer_open", openBuffer) && find("snd_input_close", closeInput);
    }

    bool has(const char* name) const
    {
        snd_config_t* found = nullptr;
        return search(*config, name, &found) >= 0;
    }

    bool add(const char* text) const
    {
        snd_input_t* input = nullptr;
        if (openBuffer(&input, text, static_cast<long>(std::strlen(text))) < 0)
            return false;
        const bool loaded = load(*config, input) >= 0;
        closeInput(input);
        return loaded;
    }
};

} // namespace

bool AlsaConfiguration::complete()
{
    Alsa alsa;
    // The tree stays as it is afterwards, until a file of the configuration changes.
    if (!alsa.isHere() || alsa.update() < 0 || !*alsa.config)
        return false;
    if (alsa.has("pcm.default") || alsa.has("pcm.dmix") || alsa.has("pcm.orlo_no_device"))
        return false;
    return alsa.add(NO_DEVICE);
}
