#pragma once

#include "sound/AudioOutput.h"
#include "sound/PdPlayer.h"
#include "support/EngineClock.h"

#include <optional>
#include <utility>

/// A sound system of the test's own, without sound. The engine runs from its start to its end.
class SoundDeviceDouble : public AudioOutput
{
public:
    explicit SoundDeviceDouble(int device = -1) { setSelectedDevice(device); }

    bool init(int framesPerBuffer, int device, PdPlayer* player) override
    {
        asked = {framesPerBuffer, device};
        if (fails)
            return false;
        setPlayer(player);
        player->initAudio(CHANNELS, 44100);
        mClock.emplace(*player);
        return selectDevice(device < 0 ? 0 : device); // -1: the system's choice
    }
    void term() override
    {
        patchWasOpenAtTheEnd = player()->isPatchOpen();
        stop();
        setSelectedDevice(-1);
    }
    /// A program whose start has failed takes its engine's clock with it.
    void stop() { mClock.reset(); }
    QStringList devices() const override
    {
        return {QStringLiteral("JACK: system"), QStringLiteral("JACK: studio"), QStringLiteral("ALSA: gone")};
    }
    void logDevices() const override { ++logged; }
    bool selectDevice(int index) override
    {
        setSelectedDevice(broken.contains(index) ? -1 : index);
        return selectedDevice() == index;
    }
    void muteOutput() override {}
    void unmuteOutput() override {}

    bool fails = false; // to start
    QList<int> broken{2};
    std::pair<int, int> asked; // frames, device
    std::optional<bool> patchWasOpenAtTheEnd;
    mutable int logged = 0;

private:
    std::optional<EngineClock> mClock;
};
