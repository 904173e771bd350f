#include "external/UdpListener.h"

#include "app/Accessors.h"
#include "app/LogFilter.h"
#include "app/LogText.h"
#include "app/Settings.h"
#include "external/DevicePacket.h"
#include "external/RfidMap.h"
#include "sound/ThreadCheck.h"

#include <QHostAddress>
#include <QNetworkProxy>
#include <QUdpSocket>

namespace {

constexpr int WAIT_MS = 1000;
constexpr unsigned long STOP_LIMIT_MS = 2000;
// Room for a device that sends while the machine is busy; the system may give less.
constexpr int RECEIVE_BUFFER_BYTES = 1 << 20;

} // namespace

UdpListener::UdpListener() = default;

UdpListener::~UdpListener()
{
    if (!isRunning())
        return;
    stopRequested = true;
    if (!wait(STOP_LIMIT_MS)) {
        // All is saved by now, and a thread must not outlive its object.
        terminate();
        wait(STOP_LIMIT_MS);
    }
}

void UdpListener::term()
{
    ThreadCheck::gui();
    if (!isRunning())
        return;
    qWarning() << "Stopping UDP thread...";
    stopRequested = true;
    if (!wait(STOP_LIMIT_MS))
        qCritical() << "UDP thread couldn't be stopped, exiting anyway";
}

void UdpListener::giveUp(const QString& error)
{
    qCritical().noquote() << error;
    emit fatalError(error);
}

void UdpListener::run()
{
    const ThreadCheck::RoleOfThisThread role(ThreadCheck::Role::Listener);
    qWarning() << "UDP thread starting...";
    RfidMap map;
    if (!map.init()) {
        giveUp(QStringLiteral("Failed to load RFID mapping file, UDP thread shutting down."));
        return;
    }
    const auto port = static_cast<quint16>(app::settings()->udpPort);
    QUdpSocket socket;
    socket.setProxy(QNetworkProxy::NoProxy); // the device is near; asking the system for one can take long
    if (!socket.bind(QHostAddress::Any, port)) {
        giveUp(QStringLiteral("Can't open UDP socket on port %1. UDP thread shutting down.").arg(port));
        return;
    }
    socket.setSocketOption(QAbstractSocket::ReceiveBufferSizeSocketOption, RECEIVE_BUFFER_BYTES);
    qWarning() << "UDP socket opened on port" << port;
    while (!stopRequested) {
        if (!socket.waitForReadyRead(WAIT_MS)) {
            mWrongSizes.tellLeftOut();
            mUnknownTags.tellLeftOut();
            continue;
        }
        // A device that never pauses must not keep the thread from its end.
        while (!stopRequested && socket.hasPendingDatagrams())
            receive(socket, map, port);
    }
    socket.close();
    mWrongSizes.tellLeftOutNow();
    mUnknownTags.tellLeftOutNow();
    qWarning() << "UDP thread exits run";
}

void UdpListener::receive(QUdpSocket& socket, const RfidMap& map, quint16 port)
{
    const qint64 size = socket.pendingDatagramSize();
    DevicePacket packet;
    if (size != DevicePacket::SIZE) {
        mWrongSizes.write(QStringLiteral("Discarding UDP packet due to wrong size %1").arg(size));
        socket.readDatagram(packet.bytes.data(), 0);
        return;
    }
    QHostAddress sender;
    if (socket.readDatagram(packet.bytes.data(), DevicePacket::SIZE, &sender) != DevicePacket::SIZE)
        return;
    const QString rfid = packet.rfid();
    ORLO_AUDIO_DEBUG.noquote()
        << QStringLiteral("Received a UDP packet from %1 on port %2").arg(sender.toString()).arg(port);
    ORLO_AUDIO_DEBUG << "Wand ID:" << packet.wand() << ", RFID:" << rfid;
    if (const OrloEvent* event = map.lookup(rfid))
        emit eventReceived(event);
    else
        mUnknownTags.write(
            QStringLiteral("RFID %1 not found in mapping table. Ignoring.").arg(logText(rfid)));
}
