#pragma once

#include "sound/SoundSystemGate.h"

#include <QStringList>

#include <portaudio.h>

#include <atomic>
#include <map>
#include <memory>
#include <vector>

/// One instance of PortAudio: its functions, and the gates through which all calls go that can reach
/// a sound server. What it knows of the devices it reads when it is initialised.
///
/// A stream whose JACK server died can be neither stopped nor closed, and an instance with such a
/// stream cannot be ended: PortAudio waits ten minutes for a callback that does not come. Such an
/// instance is left as it is, and a copy of the library takes its place, with a state of its own. An
/// instance is never unloaded, since a thread may be inside.
class PortAudioLibrary
{
public:
    /// [gui] The library that the program is linked with.
    static PortAudioLibrary* linked();
    /// [gui] A copy. Null where the system cannot load any.
    static PortAudioLibrary* loadCopy();

    /// [gui] Keeps for ever what a stream that cannot be closed may still touch.
    void keep(const std::shared_ptr<void>& object) { mKept.push_back(object); }
    /// [gui] A call that was given up, or not waited for, is still inside.
    bool isStuck() const;
    /// [gui] The same for calls into JACK.
    bool isStuckInJack() const;
    /// [any] Whether this host API is JACK.
    bool isJack(int hostApi) const;

    /// [any] Waits as long as it takes.
    PaError start();
    /// [any] The devices with outputs, as "host API: device", by PortAudio's index; an empty name for the
    /// others.
    QStringList outputNames() const;

    // PortAudio's functions by their names.
    decltype(&::Pa_Initialize) initialize = nullptr;
    decltype(&::Pa_Terminate) terminate = nullptr;
    decltype(&::Pa_GetDeviceCount) getDeviceCount = nullptr;
    decltype(&::Pa_GetDefaultOutputDevice) getDefaultOutputDevice = nullptr;
    decltype(&::Pa_GetDeviceInfo) getDeviceInfo = nullptr;
    decltype(&::Pa_GetHostApiInfo) getHostApiInfo = nullptr;
    decltype(&::Pa_IsFormatSupported) isFormatSupported = nullptr;
    decltype(&::Pa_OpenStream) openStream = nullptr;
    decltype(&::Pa_StartStream) startStream = nullptr;
    decltype(&::Pa_StopStream) stopStream = nullptr;
    decltype(&::Pa_CloseStream) closeStream = nullptr;
    decltype(&::Pa_IsStreamActive) isStreamActive = nullptr;
    decltype(&::Pa_GetStreamInfo) getStreamInfo = nullptr;

    std::map<int, SoundSystemGate> gates; // [gui] by host API
    unsigned jackEpoch = 0;               // in which it was started
    std::atomic<bool> isStarted = false;

private:
    explicit PortAudioLibrary(void* handle);

    void* mHandle;
    std::vector<std::shared_ptr<void>> mKept;
};
