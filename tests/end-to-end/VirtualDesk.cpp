#include "end-to-end/VirtualDesk.h"

#include "support/Waiting.h"

#include <QFile>
#include <QRegularExpression>

#include <jack/jack.h>
#include <xcb/xcb.h>

using namespace Qt::StringLiterals;

VirtualDesk::VirtualDesk()
    : mEnvironment(QProcessEnvironment::systemEnvironment())
{
    for (const char* name :
         {"QT_QPA_PLATFORM", "WAYLAND_DISPLAY", "QT_SCALE_FACTOR", "QT_STYLE_OVERRIDE",
          "QT_QPA_PLATFORMTHEME", "QT_FONT_DPI", "QT_LOGGING_RULES", "JACK_DEFAULT_SERVER"})
        mEnvironment.remove(QLatin1StringView(name));
    mEnvironment.insert(u"JACK_NO_START_SERVER"_s, u"1"_s);
    hideSoundCards();
    // libjack writes on standard error otherwise, whenever it looks for a server.
    jack_set_error_function([](const char*) {});
    jack_set_info_function([](const char*) {});
    if (startScreen() && startSound())
        mEnvironment.insert(u"JACK_DEFAULT_SERVER"_s, mSoundServer);
}

bool VirtualDesk::startScreen()
{
    mScreenServer.setStandardOutputFile(QString());
    mScreenServer.startCommand(u"Xvfb -displayfd 1 -screen 0 1280x800x24 -noreset -nolisten tcp"_s);
    if (!waitUntil([this] { return mScreenServer.canReadLine(); }))
        return false;
    mEnvironment.insert(u"DISPLAY"_s, u':' + QString::fromLatin1(mScreenServer.readLine().trimmed()));
    return true;
}

bool VirtualDesk::startSound()
{
    // JACK remembers few servers, and a killed one until the next of its name. So there are few
    // names; one that is in use belongs to another run of the tests.
    for (const QString& name : {u"orlo-test-1"_s, u"orlo-test-2"_s, u"orlo-test-3"_s}) {
        mSoundServer = name;
        if (startJack())
            return true;
    }
    return false;
}

bool VirtualDesk::startJack()
{
    // Few ports: each reserves memory in every client.
    mJackServer.startCommand(
        u"jackd -n %1 -r -p 128 -d dummy -r %2 -p %3"_s.arg(mSoundServer).arg(SAMPLE_RATE).arg(BLOCK));
    bool answered = false;
    const auto settled = [&] {
        jack_client_t* client =
            jack_client_open("looking", static_cast<jack_options_t>(JackNoStartServer | JackServerName),
                             nullptr, mSoundServer.toLatin1().constData());
        if (client)
            jack_client_close(client);
        answered = client != nullptr;
        return answered || !mJackServer.isRunning();
    };
    // The one that answers could be the other run's.
    return waitUntil(settled) && answered && !mJackServer.waitForFinished(200);
}

/// A card of the machine's own would be the default device, before JACK's. So there is only the name of
/// a card that is not there.
void VirtualDesk::hideSoundCards()
{
    QFile file(mFiles.filePath(u"alsa.conf"_s));
    if (file.open(QIODevice::WriteOnly))
        file.write("pcm.none { type hw card 99 }\n");
    mEnvironment.insert(u"ALSA_CONFIG_PATH"_s, file.fileName());
}

void VirtualDesk::removeAlsa()
{
    mEnvironment.insert(u"ALSA_CONFIG_PATH"_s, mFiles.filePath(u"missing.conf"_s));
}

std::optional<VirtualDesk::Window> VirtualDesk::window(const QString& title) const
{
    QProcess xdotool;
    xdotool.setProcessEnvironment(mEnvironment);
    // Without a window manager every window of a program is a child of the root.
    xdotool.start(u"xdotool"_s, {u"search"_s, u"--maxdepth"_s, u"1"_s, u"--onlyvisible"_s, u"--name"_s,
                                 u'^' + title + u'$', u"getwindowgeometry"_s, u"--shell"_s});
    xdotool.waitForFinished();
    static const QRegularExpression look(
        u"WINDOW=(\\d+)\nX=(-?\\d+)\nY=(-?\\d+)\nWIDTH=(\\d+)\nHEIGHT=(\\d+)"_s);
    const auto found = look.match(QString::fromLatin1(xdotool.readAllStandardOutput()));
    const auto number = [&found](int group) { return found.captured(group).toInt(); };
    if (!found.hasMatch())
        return std::nullopt;
    return Window{found.captured(1).toUInt(), QRect(number(2), number(3), number(4), number(5))};
}

void VirtualDesk::requestClose(const Window& window) const
{
    xcb_connection_t* screen = xcb_connect(mEnvironment.value(u"DISPLAY"_s).toLatin1().constData(), nullptr);
    const auto atom = [screen](const QByteArray& name) {
        const auto cookie = xcb_intern_atom(screen, 0, static_cast<uint16_t>(name.size()), name.constData());
        const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
            xcb_intern_atom_reply(screen, cookie, nullptr), &std::free);
        return reply ? reply->atom : 0;
    };
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window.id;
    event.type = atom("WM_PROTOCOLS");
    event.data.data32[0] = atom("WM_DELETE_WINDOW");
    xcb_send_event(screen, 0, window.id, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&event));
    atom("WM_PROTOCOLS"); // the answer comes once the server has read the event, which an end would lose
    xcb_disconnect(screen);
}

bool VirtualDesk::act(const QString& commands) const
{
    QProcess xdotool;
    xdotool.setProcessEnvironment(mEnvironment);
    xdotool.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    xdotool.start(u"xdotool"_s, commands.split(u' '));
    return xdotool.waitForFinished() && xdotool.exitStatus() == QProcess::NormalExit
           && xdotool.exitCode() == 0;
}

bool VirtualDesk::addPulse()
{
    mPulse = std::make_unique<PulseServer>(QDir(mFiles.path()));
    mPulse->addTo(mEnvironment);
    return mPulse->startServer();
}
