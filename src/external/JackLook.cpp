#include "external/JackLook.h"

#include <dlfcn.h>

namespace {

constexpr int NO_START_SERVER = 1; // JACK's own numbers, as the next
constexpr unsigned long PORT_IS_OUTPUT = 2;
constexpr const char* MIDI_TYPE = "8 bit raw midi";
constexpr const char* CLIENT_NAME = "looking for keyboards";

template <class Function>
Function* find(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_DEFAULT, name));
}

/// JACK's functions, null where its library is not part of this process.
struct Library
{
    void* (*open)(const char*, int, int*, ...) = find<void*(const char*, int, int*, ...)>("jack_client_open");
    int (*close)(void*) = find<int(void*)>("jack_client_close");
    const char* (*clientName)(void*) = find<const char*(void*)>("jack_get_client_name");
    char* (*clientId)(void*, const char*) = find<char*(void*, const char*)>("jack_get_uuid_for_client_name");
    const char** (*ports)(void*, const char*, const char*, unsigned long) =
        find<const char**(void*, const char*, const char*, unsigned long)>("jack_get_ports");
    void* (*portByName)(void*, const char*) = find<void*(void*, const char*)>("jack_port_by_name");
    const char** (*connections)(void*,
                                void*) = find<const char**(void*, void*)>("jack_port_get_all_connections");
    void (*free)(void*) = find<void(void*)>("jack_free");

    bool isWhole() const
    {
        return open && close && clientName && clientId && ports && portByName && connections && free;
    }
};

const Library& library()
{
    static const Library theLibrary;
    return theLibrary;
}

std::vector<std::string> takeNames(const char** names)
{
    std::vector<std::string> taken;
    for (const char** name = names; name && *name; ++name)
        taken.emplace_back(*name);
    if (names)
        library().free(names);
    return taken;
}

} // namespace

bool JackLook::open()
{
    if (mClient || !library().isWhole())
        return mClient != nullptr;
    mClient = library().open(CLIENT_NAME, NO_START_SERVER, nullptr);
    mAnswers = mClient && serverKnowsClient();
    return mClient != nullptr;
}

void JackLook::close()
{
    if (mClient)
        library().close(mClient);
    mClient = nullptr;
}

bool JackLook::isServerAlive() const
{
    return !mAnswers || serverKnowsClient();
}

bool JackLook::serverKnowsClient() const
{
    char* id = library().clientId(mClient, library().clientName(mClient));
    if (id)
        library().free(id);
    return id != nullptr;
}

std::vector<std::string> JackLook::midiSources() const
{
    return takeNames(library().ports(mClient, nullptr, MIDI_TYPE, PORT_IS_OUTPUT));
}

bool JackLook::isConnected(const std::string& source, const std::string& receiver) const
{
    void* port = library().portByName(mClient, source.c_str());
    if (!port)
        return false;
    for (const std::string& name : takeNames(library().connections(mClient, port))) {
        if (name.ends_with(":" + receiver))
            return true;
    }
    return false;
}
