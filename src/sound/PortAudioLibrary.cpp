#include "sound/PortAudioLibrary.h"

#include "sound/AlsaConfiguration.h"
#include "sound/JackEpoch.h"

#include <QByteArray>
#include <QDebug>
#include <QFile>

#include <dlfcn.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>

namespace {

constexpr const char* JACK_CLIENT_NAME = "Brevick Tuning Orlo";

/// A sanitizer's runtime must come first in every search for a symbol.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool CAN_COPY = false;
#else
constexpr bool CAN_COPY = true;
#endif

template <class Function>
void find(void* handle, const char* name, Function& function)
{
    function = reinterpret_cast<Function>(dlsym(handle, name));
    if (!function)
        qFatal("PortAudio has no %s.", name);
}

QString deviceName(const PortAudioLibrary& library, const PaDeviceInfo& device)
{
    const PaHostApiInfo* api = library.getHostApiInfo(device.hostApi);
    QString apiName = api ? QString::fromLocal8Bit(api->name) : QString();
    if (apiName.toLower() == QStringLiteral("windows directsound"))
        apiName = QStringLiteral("DS");
    return apiName + QStringLiteral(": ") + QString::fromLocal8Bit(device.name);
}

/// Never destroyed, since a thread may be inside.
PortAudioLibrary* keepForEver(PortAudioLibrary* library)
{
    static auto* all = new std::vector<PortAudioLibrary*>;
    all->push_back(library);
    return library;
}

} // namespace

PortAudioLibrary::PortAudioLibrary(void* handle)
    : mHandle(handle)
{
    find(handle, "Pa_Initialize", initialize);
    find(handle, "Pa_Terminate", terminate);
    find(handle, "Pa_GetDeviceCount", getDeviceCount);
    find(handle, "Pa_GetDefaultOutputDevice", getDefaultOutputDevice);
    find(handle, "Pa_GetDeviceInfo", getDeviceInfo);
    find(handle, "Pa_GetHostApiInfo", getHostApiInfo);
    find(handle, "Pa_IsFormatSupported", isFormatSupported);
    find(handle, "Pa_OpenStream", openStream);
    find(handle, "Pa_StartStream", startStream);
    find(handle, "Pa_StopStream", stopStream);
    find(handle, "Pa_CloseStream", closeStream);
    find(handle, "Pa_IsStreamActive", isStreamActive);
    find(handle, "Pa_GetStreamInfo", getStreamInfo);
}

PortAudioLibrary* PortAudioLibrary::linked()
{
    static PortAudioLibrary* library = keepForEver(new PortAudioLibrary(RTLD_DEFAULT));
    return library;
}

PortAudioLibrary* PortAudioLibrary::loadCopy()
{
#ifdef Q_OS_LINUX
    Dl_info place;
    if (!CAN_COPY || dladdr(reinterpret_cast<void*>(&::Pa_Initialize), &place) == 0)
        return nullptr;
    QFile original(QFile::decodeName(place.dli_fname));
    if (!original.open(QIODevice::ReadOnly))
        return nullptr;
    const QByteArray bytes = original.readAll();
    // It stays open: the loader knows libraries by their names, and this one's number is its name.
    const int file = memfd_create("portaudio", MFD_CLOEXEC);
    if (file < 0 || write(file, bytes.constData(), static_cast<size_t>(bytes.size())) != bytes.size())
        return nullptr;
    const QByteArray name = "/proc/self/fd/" + QByteArray::number(file);
    // Its own symbols before those of the linked one.
    void* handle = dlopen(name.constData(), RTLD_NOW | RTLD_LOCAL | RTLD_DEEPBIND);
    if (!handle) {
        qCritical() << "PortAudio could not be loaded anew:" << dlerror();
        return nullptr;
    }
    return keepForEver(new PortAudioLibrary(handle));
#else
    return nullptr;
#endif
}

bool PortAudioLibrary::isStuck() const
{
    return std::any_of(gates.begin(), gates.end(), [](const auto& gate) { return gate.second.isStuck(); });
}

bool PortAudioLibrary::isStuckInJack() const
{
    return std::any_of(gates.begin(), gates.end(),
                       [this](const auto& gate) { return gate.second.isStuck() && isJack(gate.first); });
}

bool PortAudioLibrary::isJack(int hostApi) const
{
    const PaHostApiInfo* info = getHostApiInfo(hostApi);
    return info && info->type == paJACK;
}

PaError PortAudioLibrary::start()
{
    // Only a PortAudio that was built for JACK has it, and no Mac's header tells of it.
    if (const auto setName =
            reinterpret_cast<PaError (*)(const char*)>(dlsym(mHandle, "PaJack_SetClientName")))
        setName(JACK_CLIENT_NAME);
    jackEpoch = JackEpoch::current();
    if (AlsaConfiguration::complete())
        qWarning() << "ALSA names no default device. That of another sound system can be used.";
    const PaError error = initialize();
    isStarted = error == paNoError;
    return error;
}

QStringList PortAudioLibrary::outputNames() const
{
    QStringList names;
    for (int paIndex = 0; paIndex < getDeviceCount(); ++paIndex) {
        const PaDeviceInfo* device = getDeviceInfo(paIndex);
        names.append(device && device->maxOutputChannels > 0 ? deviceName(*this, *device) : QString());
    }
    return names;
}
