#include "end-to-end/PulseServer.h"

#include "end-to-end/VirtualDesk.h"
#include "support/Waiting.h"

#include <QFile>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr const char* SOCKET = "pulse-socket";
constexpr const char* PIPE = "pulse-pipe";

void writeFile(const QString& path, const char* text)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) < 0)
        qFatal("The test's own file %s could not be written.", qPrintable(path));
}

} // namespace

PulseServer::PulseServer(const QDir& folder)
    : mFolder(folder)
{
    // PortAudio wants a hardware device beside the plugin's.
    writeFile(mFolder.filePath(u"pulse-alsa.conf"_s),
              "pcm.pulse { type pulse }\nctl.pulse { type pulse }\npcm.none { type hw card 99 }\n");
    writeFile(mFolder.filePath(u"pulse-client.conf"_s), "autospawn = no\n");
    const QByteArray pipe = QFile::encodeName(mFolder.filePath(QLatin1StringView(PIPE)));
    ::mkfifo(pipe.constData(), 0600);
    mPipe = ::open(pipe.constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    mListener = std::thread([this] { listen(); });
}

PulseServer::~PulseServer()
{
    mEnds = true;
    mListener.join();
    killNow();
    ::close(mPipe);
}

void PulseServer::addTo(QProcessEnvironment& environment) const
{
    environment.insert(u"ALSA_CONFIG_PATH"_s, mFolder.filePath(u"pulse-alsa.conf"_s));
    environment.insert(u"PULSE_CLIENTCONFIG"_s, mFolder.filePath(u"pulse-client.conf"_s));
    environment.insert(u"PULSE_COOKIE"_s, mFolder.filePath(u"pulse-cookie"_s));
    environment.insert(u"PULSE_RUNTIME_PATH"_s, mFolder.path());
    environment.insert(u"PULSE_STATE_PATH"_s, mFolder.path());
    environment.insert(u"PULSE_SERVER"_s, u"unix:"_s + mFolder.filePath(QLatin1StringView(SOCKET)));
}

bool PulseServer::startServer()
{
    const QString socket = mFolder.filePath(QLatin1StringView(SOCKET));
    QFile::remove(socket);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    addTo(environment);
    environment.remove(u"PULSE_SERVER"_s);
    environment.insert(u"HOME"_s, mFolder.path());
    environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, u"disabled:"_s);
    setProcessEnvironment(environment);
    // By the system's clock the sink takes its blocks evenly, as a sound card does.
    start(u"pulseaudio"_s,
          {u"-n"_s, u"--daemonize=no"_s, u"--system=no"_s, u"--use-pid-file=no"_s, u"--exit-idle-time=-1"_s,
           u"--disable-shm=yes"_s, u"--realtime=no"_s, u"--high-priority=no"_s, u"-L"_s,
           u"module-pipe-sink file=%1 rate=%2 format=float32le use_system_clock_for_timing=yes"_s
               .arg(mFolder.filePath(QLatin1StringView(PIPE)))
               .arg(VirtualDesk::SAMPLE_RATE),
           u"-L"_s,
           u"module-native-protocol-unix socket=%1 auth-anonymous=1 auth-cookie-enabled=0"_s.arg(socket)});
    return waitForStarted() && waitUntil([&] { return QFile::exists(socket); });
}

/// The listener's thread. The server writes whole frames.
void PulseServer::listen()
{
    std::array<float, 2048> frames; // of both channels in turn
    while (!mEnds) {
        pollfd readable{mPipe, POLLIN, 0};
        if (::poll(&readable, 1, 50) <= 0)
            continue;
        const ssize_t bytes = ::read(mPipe, frames.data(), sizeof(frames));
        if (bytes > 0)
            append({frames.data(), frames.data() + 1},
                   static_cast<size_t>(bytes) / (CHANNELS * sizeof(float)), CHANNELS);
    }
}
