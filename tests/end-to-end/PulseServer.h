#pragma once

#include "end-to-end/Recording.h"
#include "end-to-end/TestProcess.h"

#include <QDir>
#include <QProcessEnvironment>

#include <atomic>
#include <thread>

/// A PulseAudio server of one test's own and what it plays. Nothing of a user's own server is touched.
class PulseServer : public TestProcess, public Recording
{
public:
    /// Its files lie in this folder, whose path has no blanks.
    explicit PulseServer(const QDir& folder);
    ~PulseServer() override;

    /// Leads a program's ALSA to it, as the only device.
    void addTo(QProcessEnvironment& environment) const;

    /// Again too, after it was killed.
    bool startServer();

private:
    void listen();

    const QDir mFolder;
    int mPipe = -1; // of the sink, open from server to server
    std::atomic<bool> mEnds{false};
    std::thread mListener;
};
