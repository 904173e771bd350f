#pragma once

#include <QObject>
#include <QStringList>

class PdPlayer;

/// The sound device, abstract. Graphical thread.
class AudioOutput : public QObject
{
    Q_OBJECT

public:
    explicit AudioOutput(QObject* parent = nullptr);

    /// Starts the sound system and opens a device of the list. False when none can be opened.
    virtual bool init(int framesPerBuffer, int device, PdPlayer* player) = 0;
    virtual void term() = 0;
    /// The devices with outputs; the options store an index into this list.
    virtual QStringList devices() const = 0;
    virtual void logDevices() const = 0;
    /// Closes the stream and opens this device, -1 for the system's default. On failure no stream
    /// is open.
    virtual bool selectDevice(int index) = 0;
    /// Returns when the output has faded to silence and stays silent, or soon when no callback comes.
    virtual void muteOutput() = 0;
    virtual void unmuteOutput() = 0;
    /// Looks for a lost device now, and does not wait for it.
    virtual void tryAgain() {}

    /// Index in the list; -1 while no stream is open.
    int selectedDevice() const { return mSelectedDevice; }
    void setSelectedDevice(int index);
    int framesPerBuffer() const { return mFramesPerBuffer; }
    PdPlayer* player() const { return mPlayer; }
    /// Not owned. While no stream runs.
    void setPlayer(PdPlayer* player) { mPlayer = player; }

signals:
    void selectedDeviceChanged(int index);
    /// The list is another one now.
    void devicesChanged();
    /// This device, or its server, went away under the stream. It is looked for until it is back or
    /// another one is chosen.
    void deviceLost(QString name);
    /// A stream runs on this device.
    void deviceOpened(QString name);
    /// So many blocks of this run came too late, or too early, for the device.
    void lateBlocksCounted(unsigned count);

protected:
    /// What libpd can render: a multiple of its block of 64 frames. Says what it corrects.
    void setFramesPerBuffer(int frames);

private:
    int mSelectedDevice = -1;
    int mFramesPerBuffer = 256;
    PdPlayer* mPlayer = nullptr;
};
