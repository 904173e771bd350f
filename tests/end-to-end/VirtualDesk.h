#pragma once

#include "end-to-end/PulseServer.h"
#include "end-to-end/TestProcess.h"

#include <QDir>
#include <QRect>
#include <QTemporaryDir>

#include <memory>
#include <optional>

/// A screen and a sound device of one test's own: an X server without a window manager and a JACK
/// server with its dummy driver. Both end with this object, or with the test's process.
class VirtualDesk
{
public:
    struct Window
    {
        uint id = 0;
        QRect place; // of what is inside, on the screen
    };

    static constexpr int SAMPLE_RATE = 44100;
    static constexpr int BLOCK = 256; // frames

    VirtualDesk();

    /// Both servers came up.
    bool isReady() const { return mEnvironment.contains(QStringLiteral("JACK_DEFAULT_SERVER")); }
    /// For a program that runs on this desk: the test's own, without what would lead it elsewhere.
    const QProcessEnvironment& environment() const { return mEnvironment; }
    const QString& soundServer() const { return mSoundServer; }

    /// The window of this title that is on the screen.
    std::optional<Window> window(const QString& title) const;
    /// What a window manager sends when the close button is pressed.
    void requestClose(const Window& window) const;
    /// Real pointer and key events, by an xdotool command line.
    bool act(const QString& commands) const;

    /// A PulseAudio server too, for the programs that start from now on: their default sound device,
    /// before JACK's.
    bool addPulse();
    PulseServer& pulse() { return *mPulse; }

    /// For the programs that start from now on ALSA has no configuration at all.
    void removeAlsa();

    TestProcess& jack() { return mJackServer; }
    /// Again too, under its name, after it was killed.
    bool startJack();

private:
    void hideSoundCards();
    bool startScreen();
    bool startSound();

    QTemporaryDir mFiles{QDir::tempPath() + QStringLiteral("/orlo-desk-XXXXXX")}; // ALSA splits at blanks
    TestProcess mScreenServer;
    TestProcess mJackServer;
    std::unique_ptr<PulseServer> mPulse;
    QString mSoundServer;
    QProcessEnvironment mEnvironment;
};
