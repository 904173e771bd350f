#include "end-to-end/VirtualDesk.h"

#include "end-to-end/PulseServer.h"
#include "end-to-end/Waiting.h"

#include <QFile>

#include <jack/jack.h>
#include <xcb/xcb.h>

#include <csignal>
#include <cstdlib>
#include <memory>

#include <sys/prctl.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int SOUND_SERVERS = 3;

struct FreeReply
{
    void operator()(void* reply) const { std::free(reply); }
};
template <class Reply>
using ReplyPointer = std::unique_ptr<Reply, FreeReply>;

void stop(QProcess& process)
{
    if (process.state() == QProcess::NotRunning)
        return;
    ::kill(static_cast<pid_t>(process.processId()), SIGCONT);
    process.terminate();
    if (!process.waitForFinished(5000)) {
        process.kill();
        process.waitForFinished(5000);
    }
}

} // namespace

void endWithTest(QProcess& process)
{
    process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
}

VirtualDesk::VirtualDesk()
    : mEnvironment(QProcessEnvironment::systemEnvironment())
{
    for (const char* name : {"QT_QPA_PLATFORM", "WAYLAND_DISPLAY", "QT_SCALE_FACTOR", "QT_STYLE_OVERRIDE",
                             "QT_QPA_PLATFORMTHEME", "QT_FONT_DPI", "QT_LOGGING_RULES"})
        mEnvironment.remove(QLatin1StringView(name));
    mEnvironment.insert(u"JACK_NO_START_SERVER"_s, u"1"_s);
    hideSoundCards();
    // libjack writes on standard error otherwise, whenever it looks for a server.
    jack_set_error_function([](const char*) {});
    jack_set_info_function([](const char*) {});
    startScreen();
    startSound();
}

VirtualDesk::~VirtualDesk()
{
    if (mScreen)
        xcb_disconnect(mScreen);
    stop(mJackServer);
    stop(mScreenServer);
}

void VirtualDesk::startScreen()
{
    endWithTest(mScreenServer);
    mScreenServer.setStandardErrorFile(QProcess::nullDevice());
    mScreenServer.startCommand(u"Xvfb -displayfd 1 -screen 0 1280x800x24 -noreset -nolisten tcp"_s);
    const auto hasNumber = [this] { return mScreenServer.canReadLine(); };
    if (!mScreenServer.waitForStarted() || !waitUntil(hasNumber))
        return;
    const QByteArray display = ':' + mScreenServer.readLine().trimmed();
    mEnvironment.insert(u"DISPLAY"_s, QString::fromLatin1(display));
    mScreen = xcb_connect(display.constData(), nullptr);
    if (xcb_connection_has_error(mScreen) != 0) {
        xcb_disconnect(mScreen);
        mScreen = nullptr;
    }
}

void VirtualDesk::startSound()
{
    // JACK remembers few servers, and a killed one until the next of its name. So there are few
    // names; one that is in use belongs to another run of the tests.
    for (int number = 1; number <= SOUND_SERVERS; ++number) {
        mSoundServer = u"orlo-test-%1"_s.arg(number);
        if (startSoundServer()) {
            mEnvironment.insert(u"JACK_DEFAULT_SERVER"_s, mSoundServer);
            mHasSound = true;
            return;
        }
    }
}

bool VirtualDesk::startSoundServer()
{
    endWithTest(mJackServer);
    mJackServer.setStandardOutputFile(QProcess::nullDevice());
    mJackServer.setStandardErrorFile(QProcess::nullDevice());
    // Few ports: each reserves memory in every client.
    mJackServer.startCommand(
        u"jackd -n %1 -r -p 128 -d dummy -r %2 -p %3"_s.arg(mSoundServer).arg(SAMPLE_RATE).arg(BLOCK));
    const QByteArray server = mSoundServer.toLatin1();
    bool answered = false;
    const auto settled = [&] {
        jack_client_t* client =
            jack_client_open("looking", static_cast<jack_options_t>(JackNoStartServer | JackServerName),
                             nullptr, server.constData());
        if (client)
            jack_client_close(client);
        answered = client != nullptr;
        return answered || mJackServer.state() == QProcess::NotRunning;
    };
    // The one that answers could be the other run's.
    return mJackServer.waitForStarted() && waitUntil(settled) && answered
           && !mJackServer.waitForFinished(200);
}

/// A card of the machine's own would be the default device, before JACK's. PortAudio wants at least
/// one name to look at, so there is one of a card that is not there.
void VirtualDesk::hideSoundCards()
{
    QFile file(mFiles.filePath(u"alsa.conf"_s));
    if (file.open(QIODevice::WriteOnly))
        file.write("pcm.none { type hw card 99 }\n");
    mEnvironment.insert(u"ALSA_CONFIG_PATH"_s, file.fileName());
}

// ---------------------------------------------------------------- the screen

quint32 VirtualDesk::atom(const char* name) const
{
    const ReplyPointer<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        mScreen, xcb_intern_atom(mScreen, 0, static_cast<uint16_t>(qstrlen(name)), name), nullptr));
    return reply ? reply->atom : 0;
}

std::optional<VirtualDesk::Window> VirtualDesk::window(const QString& title) const
{
    // Without a window manager every window of a program is a child of the root.
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(mScreen)).data->root;
    const ReplyPointer<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(mScreen, xcb_query_tree(mScreen, root), nullptr));
    if (!tree)
        return std::nullopt;
    const quint32 nameAtom = atom("_NET_WM_NAME");
    const quint32 textAtom = atom("UTF8_STRING");
    const xcb_window_t* children = xcb_query_tree_children(tree.get());
    for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
        const xcb_window_t id = children[i];
        const ReplyPointer<xcb_get_property_reply_t> name(xcb_get_property_reply(
            mScreen, xcb_get_property(mScreen, 0, id, nameAtom, textAtom, 0, 256), nullptr));
        const ReplyPointer<xcb_get_window_attributes_reply_t> look(
            xcb_get_window_attributes_reply(mScreen, xcb_get_window_attributes(mScreen, id), nullptr));
        const ReplyPointer<xcb_get_geometry_reply_t> place(
            xcb_get_geometry_reply(mScreen, xcb_get_geometry(mScreen, id), nullptr));
        if (!name || !look || !place || look->map_state != XCB_MAP_STATE_VIEWABLE)
            continue;
        const auto* text = static_cast<const char*>(xcb_get_property_value(name.get()));
        if (QString::fromUtf8(text, xcb_get_property_value_length(name.get())) == title)
            return Window{id, QRect(place->x, place->y, place->width, place->height)};
    }
    return std::nullopt;
}

void VirtualDesk::requestClose(const Window& window) const
{
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window.id;
    event.type = atom("WM_PROTOCOLS");
    event.data.data32[0] = atom("WM_DELETE_WINDOW");
    event.data.data32[1] = XCB_CURRENT_TIME;
    xcb_send_event(mScreen, 0, window.id, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&event));
    xcb_flush(mScreen);
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

// ---------------------------------------------------------------- the sound server

void VirtualDesk::killSound()
{
    mJackServer.kill();
    mJackServer.waitForFinished(5000);
}

void VirtualDesk::freezeSound()
{
    ::kill(static_cast<pid_t>(mJackServer.processId()), SIGSTOP);
}

void VirtualDesk::thawSound()
{
    ::kill(static_cast<pid_t>(mJackServer.processId()), SIGCONT);
}

bool VirtualDesk::addPulse()
{
    mPulse = std::make_unique<PulseServer>(QDir(mFiles.path()));
    mPulse->addTo(mEnvironment);
    return mPulse->start();
}
