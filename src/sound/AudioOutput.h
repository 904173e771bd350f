#pragma once

#include <QObject>
#include <QStringList>

class PdPlayer;

/// The sound device, abstract.
class AudioOutput : public QObject
{
    Q_OBJECT

public:
    static constexpr int CHANNELS = 2;

    /// [gui]
    explicit AudioOutput(QObject* parent = nullptr);

    /// [gui] Starts the sound system and opens a device of the list. False when none can be opened.
    virtual bool init(int framesPerBuffer, int device, PdPlayer* player) = 0;
    /// [gui] Closes the stream and ends the sound system.
    virtual void term() = 0;
    /// [gui] The devices with outputs; the options store an index into this list.
    virtual QStringList devices() const = 0;
    /// [gui] Writes the devices into the log.
    virtual void logDevices() const = 0;
    /// [gui] Closes the stream and opens this device, -1 for the system's default. On failure no stream
    /// is open.
    virtual bool selectDevice(int index) = 0;
    /// [gui] Returns when the output has faded to silence and stays silent, or soon when no callback comes.
    virtual void muteOutput() = 0;
    /// [gui] The next block fades in.
    virtual void unmuteOutput() = 0;
    /// [gui] Looks for a lost device now, and does not wait for it.
    virtual void tryAgain() {}

    /// [gui] Index in the list; -1 while no stream is open.
    int selectedDevice() const { return mSelectedDevice; }
    /// [gui]
    void setSelectedDevice(int index);
    /// [gui]
    int framesPerBuffer() const { return mFramesPerBuffer; }
    /// [any]
    PdPlayer* player() const { return mPlayer; }
    /// [stopped] The player is not owned.
    void setPlayer(PdPlayer* player) { mPlayer = player; }

signals:
    /// [gui]
    void selectedDeviceChanged(int index);
    /// [gui] The list of devices was read anew and is another one now.
    void devicesChanged();
    /// [gui] This device, or its server, went away under the stream. It is looked for until it is back or
    /// another one is chosen.
    void deviceLost(QString name);
    /// [gui] A stream runs on this device.
    void deviceOpened(QString name);
    /// [gui] So many blocks of this run came too late, or too early, for the device.
    void lateBlocksCounted(unsigned count);

protected:
    /// [gui] What libpd can render: a multiple of its block of 64 frames. Says what it corrects.
    void setFramesPerBuffer(int frames);

private:
    int mSelectedDevice = -1;
    int mFramesPerBuffer = 256;
    PdPlayer* mPlayer = nullptr;
};
