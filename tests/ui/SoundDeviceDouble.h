#pragma once

#include "sound/AudioOutput.h"

#include <QList>

/// A sound system of the test's own: its devices, which of them fail to open, and what was tried.
class SoundDeviceDouble : public AudioOutput
{
public:
    SoundDeviceDouble() { setSelectedDevice(0); }

    bool init(int, int, PdPlayer*) override { return true; }
    void term() override {}
    QStringList devices() const override { return names; }
    void logDevices() const override {}
    bool selectDevice(int index) override
    {
        tried.append(index);
        const int opened = index == -1 ? defaultDevice : index;
        const bool works = !broken.contains(opened);
        setSelectedDevice(works ? opened : -1);
        return works;
    }
    void muteOutput() override {}
    void unmuteOutput() override {}

    QStringList names{QStringLiteral("JACK: system"), QStringLiteral("JACK: studio"),
                      QStringLiteral("ALSA: gone")};
    int defaultDevice = 0;
    QList<int> broken{2};
    QList<int> tried;
};
