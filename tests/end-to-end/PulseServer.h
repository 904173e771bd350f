#pragma once

#include "end-to-end/Recording.h"

#include <QDir>
#include <QProcess>
#include <QProcessEnvironment>

#include <atomic>
#include <thread>

/// A PulseAudio server of one test's own and what it plays. Nothing of a user's own server is touched;
/// it ends with this object, or with the test's process.
class PulseServer : public Recording
{
public:
    /// Its files lie in this folder, whose path has no blanks.
    explicit PulseServer(const QDir& folder);
    ~PulseServer();

    /// Leads a program's ALSA to it, as the only device.
    void addTo(QProcessEnvironment& environment) const;

    /// Again too, after it was killed.
    bool start();
    void kill();
    void freeze();
    void thaw();

private:
    void listen();

    const QDir mFolder;
    QProcess mServer;
    int mPipe = -1; // of the sink, open from server to server
    std::atomic<bool> mEnds{false};
    std::thread mListener;
};
