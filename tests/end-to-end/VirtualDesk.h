#pragma once

#include <QDir>
#include <QPoint>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRect>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>
#include <optional>

class PulseServer;
struct xcb_connection_t;

/// A test that is killed must not leave what it started behind.
void endWithTest(QProcess& process);

/// A screen and a sound device of one test's own: an X server without a window manager and a JACK
/// server with its dummy driver. Both end with this object, or with the test's process.
class VirtualDesk
{
public:
    struct Window
    {
        quint32 id = 0;
        QRect place; // of what is inside, on the screen
    };

    static constexpr int SAMPLE_RATE = 44100;
    static constexpr int BLOCK = 256; // frames

    VirtualDesk();
    ~VirtualDesk();
    VirtualDesk(const VirtualDesk&) = delete;
    VirtualDesk& operator=(const VirtualDesk&) = delete;

    /// Both servers came up.
    bool isReady() const { return mScreen && mHasSound; }
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

    void killSound();
    /// The killed server again, under its name.
    bool restartSound() { return startSoundServer(); }
    void freezeSound();
    void thawSound();

private:
    void hideSoundCards();
    void startScreen();
    void startSound();
    bool startSoundServer();
    quint32 atom(const char* name) const;

    QTemporaryDir mFiles{QDir::tempPath() + QStringLiteral("/orlo-desk-XXXXXX")}; // ALSA splits at blanks
    QProcess mScreenServer;
    QProcess mJackServer;
    std::unique_ptr<PulseServer> mPulse;
    xcb_connection_t* mScreen = nullptr;
    bool mHasSound = false;
    QString mSoundServer;
    QProcessEnvironment mEnvironment;
};
