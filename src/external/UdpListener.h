#pragma once

#include "app/RationedLog.h"

#include <QString>
#include <QThread>

#include <atomic>

class OrloEvent;
class QUdpSocket;
class RfidMap;

/// The thread that listens to the physical device: it receives the packets on the port of the option
/// udpPort, looks up the tag in each and hands on the event that the map has for it. Dropped with a
/// warning: datagrams of another size than DevicePacket's, and tags that are not in the map. Of a flood of
/// these the log gets the first ones and their number.
class UdpListener : public QThread
{
    Q_OBJECT

public:
    /// [gui]
    UdpListener();
    /// [gui] Stops the thread, by force if it does not end within two seconds.
    ~UdpListener() override;

    /// [gui] Stops the thread and waits for it, for two seconds at the most.
    void term();

signals:
    /// [listener] One for each packet that was recognised. The event is the map's: copy it before
    /// the emission returns, by a direct connection.
    void eventReceived(const OrloEvent* event);
    /// [listener] The thread gives up; says why.
    void fatalError(QString error);

protected:
    /// [listener]
    void run() override;

private:
    void giveUp(const QString& error);
    void receive(QUdpSocket& socket, const RfidMap& map, quint16 port);

    std::atomic<bool> stopRequested{false};
    // [listener]
    RationedLog mWrongSizes{QStringLiteral("more UDP packets of a wrong size were discarded.")};
    RationedLog mUnknownTags{QStringLiteral("more RFIDs were not found in the mapping table.")};
};
