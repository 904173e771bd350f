#include "external/JackServer.h"

#include <dlfcn.h>

namespace {

constexpr int NO_START_SERVER = 1; // JACK's own number

} // namespace

bool JackServer::isThere()
{
    // RtMidi brings the library, where it was built for JACK.
    const auto open =
        reinterpret_cast<void* (*)(const char*, int, int*, ...)>(dlsym(RTLD_DEFAULT, "jack_client_open"));
    const auto close = reinterpret_cast<int (*)(void*)>(dlsym(RTLD_DEFAULT, "jack_client_close"));
    if (!open || !close)
        return true;
    void* client = open("looking", NO_START_SERVER, nullptr);
    if (client)
        close(client);
    return client != nullptr;
}
