#include "external/UdpListener.h"

#include "app/Accessors.h"
#include "app/LogFilter.h"
#include "app/RationedLog.h"
#include "sound/OrloNoteEvent.h"
#include "support/EngineClock.h"
#include "support/LogCatcher.h"
#include "support/SoundRig.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QNetworkProxy>
#include <QUdpSocket>

#include <atomic>
#include <mutex>
#include <thread>

namespace {

/// No proxy, which could be asked for on two threads at once.
struct Socket : QUdpSocket
{
    Socket() { setProxy(QNetworkProxy::NoProxy); }
};

quint16 freePort()
{
    Socket socket;
    socket.bind(QHostAddress::Any, 0);
    return socket.localPort();
}

/// Where the bytes stand that are read; all others are noise.
QByteArray packet(const QByteArray& rfid, char wand = 1)
{
    QByteArray bytes(72, '\xA5');
    bytes[23] = wand;
    const int places[] = {27, 31, 35, 39, 43, 47, 51, 55, 59, 63};
    for (int i = 0; i < 10; ++i)
        bytes[places[i]] = rfid[i];
    return bytes;
}

class Device : public ::testing::Test
{
protected:
    Device()
    {
        rig.settings.udpPort = freePort();
        QObject::connect(
            &listener, &UdpListener::eventReceived, &listener,
            [this](const OrloEvent* event) {
                lastType = event->type();
                ++received;
            },
            Qt::DirectConnection);
        QObject::connect(
            &listener, &UdpListener::fatalError, &listener,
            [this](const QString& error) {
                const std::lock_guard lock(errorsMutex);
                errors.append(error);
            },
            Qt::DirectConnection);
    }
    ~Device() override { listener.term(); }

    bool start(const QByteArray& map)
    {
        rig.home.write(QStringLiteral("rfid_map.json"), map);
        listener.start();
        return waitUntil(
            [this] { return log.has(QtWarningMsg, QStringLiteral("UDP socket opened on port")); });
    }
    void send(const QByteArray& bytes)
    {
        EXPECT_EQ(
            sender.writeDatagram(bytes, QHostAddress::LocalHost, static_cast<quint16>(rig.settings.udpPort)),
            bytes.size());
    }
    bool says(const QString& text)
    {
        return waitUntil([&] { return log.has(QtWarningMsg, text); });
    }

    /// How many the log tells of: lines with the first text, and numbers before the second one.
    int told(const QString& line, const QString& leftOut) const
    {
        int count = log.count(QtWarningMsg, line);
        for (const LogCatcher::Line& each : log.lines())
            count += each.text.contains(leftOut) ? each.text.section(u' ', 0, 0).toInt() : 0;
        return count;
    }

    SoundRig rig{4};
    Socket sender;
    UdpListener listener;
    std::mutex errorsMutex;
    QStringList errors; // to be read when the thread has ended
    std::atomic<int> lastType{OrloEvent::None};
    std::atomic<int> received{0};
    LogCatcher log; // ends first, while no thread logs
};

const QByteArray MAP = R"({"abcdef0123": {"event": 17, "value": 0.5}, "0000000001": {"value": "/3"}})";

} // namespace

TEST_F(Device, TakesTheTagFromTheFourthBytes)
{
    LogFilter::isListening = true;
    listener.term(); // never ran
    EXPECT_TRUE(log.lines().isEmpty());
    ASSERT_TRUE(start(MAP));
    send(packet("ABCDEF0123", '\xFF'));
    ASSERT_TRUE(waitUntil([this] { return received == 1; }));
    EXPECT_EQ(lastType, OrloEvent::VoiceVolumeSet);
    send(packet("0000000001"));
    ASSERT_TRUE(waitUntil([this] { return received == 2; }));
    EXPECT_EQ(lastType, OrloEvent::NoteToggleByPath);
    LogFilter::isListening = false;
    EXPECT_TRUE(log.has(QtDebugMsg, QStringLiteral("Wand ID: -1 , RFID: \"ABCDEF0123\"")));
    // Silence keeps it from its end for about a second.
    QElapsedTimer timer;
    timer.start();
    listener.term();
    EXPECT_TRUE(listener.isFinished());
    EXPECT_LT(timer.elapsed(), 1900);
    EXPECT_TRUE(errors.isEmpty());
}

TEST_F(Device, DropsWhatIsNoPacketOfItsOwn)
{
    ASSERT_TRUE(start(MAP));
    for (const int size : {0, 1, 71, 73, 65507}) {
        log.clear();
        QByteArray bytes = packet("ABCDEF0123");
        bytes.resize(size);
        send(bytes);
        EXPECT_TRUE(says(QStringLiteral("Discarding UDP packet due to wrong size %1").arg(size)));
    }
    const std::pair<QByteArray, QString> unknown[] = {
        {"abcdef0124", QStringLiteral("abcdef0124")},
        {"\xff\xfe\xc3\x28gh\xf0\x9f\x98j", QStringLiteral("j")},
        {QByteArray(10, '\0'), QStringLiteral("\\x00\\x00")},
        {"a\n\x1b[2J\xE2\x80\xAE\r", QStringLiteral("RFID a\\n\\x1b[2J\\u202e\\r")}, // no line of its own
    };
    for (const auto& [tag, shown] : unknown) {
        log.clear();
        send(packet(tag));
        EXPECT_TRUE(says(shown + QStringLiteral(" not found in mapping table. Ignoring.")))
            << tag.toStdString();
    }
    EXPECT_EQ(received, 0);
    // It still listens.
    send(packet("ABCDEF0123"));
    EXPECT_TRUE(waitUntil([this] { return received == 1; }));
}

TEST_F(Device, AFloodOfWhatItDropsIsCounted)
{
    ASSERT_TRUE(start(MAP));
    log.clear();
    for (int i = 0; i < 20000; ++i)
        send(i % 2 == 0 ? packet("stranger01") : QByteArray("short"));
    send(packet("ABCDEF0123"));
    waitUntil([this] { return received > 0; }, 1000); // it may be lost on the way, as others are
    listener.term();
    qint64 bytes = 0;
    for (const LogCatcher::Line& line : log.lines())
        bytes += line.text.size();
    EXPECT_LT(bytes, 10000);
    for (const int count :
         {told(QStringLiteral("RFID stranger01 not found"), QStringLiteral("more RFIDs were not found")),
          told(QStringLiteral("wrong size 5"), QStringLiteral("more UDP packets of a wrong size"))}) {
        EXPECT_GT(count, 1000);
        EXPECT_LE(count, 10000);
    }
}

TEST_F(Device, ABurstWhilePlayingLosesNothingButToAFullBuffer)
{
    ASSERT_TRUE(start(MAP));
    std::atomic<int> carriedOut{0};
    QObject::connect(
        &rig.player, &PdPlayer::voiceVolumeChanged, &rig.player, [&] { ++carriedOut; }, Qt::DirectConnection);
    QObject::connect(&listener, &UdpListener::eventReceived, &rig.player, &PdPlayer::queueEventSerial,
                     Qt::DirectConnection);
    const auto dropped = [this] {
        return told(QStringLiteral("Command buffer full"), QStringLiteral("found the buffer full"));
    };
    constexpr int burst = 5000;
    const EngineClock clock(rig.player);
    // As many at a time as the socket's own buffer holds, so that all arrive.
    for (int sent = 1; sent <= burst; ++sent) {
        send(packet("ABCDEF0123"));
        ASSERT_TRUE(sent % 100 != 0 || waitUntil([&] { return received == sent; })) << sent;
    }
    // Those that were only counted are told of when there is room for another.
    int all = burst;
    EXPECT_TRUE(waitUntil([&] {
        send(packet("ABCDEF0123"));
        ++all;
        return waitUntil([&] { return received == all && carriedOut + dropped() == all; }, 100);
    })) << carriedOut
        << ", " << dropped();
}

// While the machine is busy the packets wait in the socket.
TEST_F(Device, HoldsMorePacketsThanAPlainSocket)
{
    Socket plain;
    ASSERT_TRUE(plain.bind(QHostAddress::LocalHost, 0));
    static std::atomic<bool> busy; // packets that come after the test ask for it too
    busy = true;
    const auto standStill = [] {
        while (busy)
            QThread::msleep(1);
    };
    QObject::connect(&listener, &UdpListener::eventReceived, &listener, standStill, Qt::DirectConnection);
    ASSERT_TRUE(start(MAP));
    const QByteArray bytes = packet("ABCDEF0123");
    for (int i = 0; i < 3000; ++i) {
        send(bytes);
        sender.writeDatagram(bytes, QHostAddress::LocalHost, plain.localPort());
    }
    int held = 0;
    for (; plain.hasPendingDatagrams(); ++held)
        plain.readDatagram(nullptr, 0);
    busy = false;
    EXPECT_TRUE(waitUntil([&] { return received > held + held / 2; }, 3000)) << received << " of " << held;
}

TEST_F(Device, StopsInTimeWhilePacketsStream)
{
    ASSERT_TRUE(start(MAP));
    std::atomic<bool> sending{true};
    std::thread device([&] {
        Socket socket;
        const QByteArray bytes = packet("ABCDEF0123");
        while (sending)
            socket.writeDatagram(bytes, QHostAddress::LocalHost, static_cast<quint16>(rig.settings.udpPort));
    });
    ASSERT_TRUE(waitUntil([this] { return received > 1000; }));
    QElapsedTimer timer;
    timer.start();
    listener.term();
    EXPECT_LT(timer.elapsed(), 1500);
    EXPECT_TRUE(listener.isFinished());
    sending = false;
    device.join();
    EXPECT_FALSE(log.has(QtCriticalMsg, QStringLiteral("UDP thread couldn't be stopped, exiting anyway")));
}

TEST_F(Device, GivesUpOnATakenPortOrAMapThatCannotBeRead)
{
    Socket other;
    const int port = rig.settings.udpPort;
    ASSERT_TRUE(other.bind(QHostAddress::Any, static_cast<quint16>(port), QAbstractSocket::DontShareAddress));
    const std::pair<QByteArray, QString> rows[] = {
        {MAP, QStringLiteral("Can't open UDP socket on port %1. UDP thread shutting down.").arg(port)},
        {"{ \"a\": ", QStringLiteral("Failed to load RFID mapping file, UDP thread shutting down.")},
    };
    for (const auto& [map, text] : rows) {
        rig.home.write(QStringLiteral("rfid_map.json"), map);
        listener.start();
        ASSERT_TRUE(listener.wait(5000));
        const std::lock_guard lock(errorsMutex); // the end of a QThread is not seen by the thread sanitizer
        EXPECT_EQ(errors.takeLast(), text);
        EXPECT_TRUE(log.has(QtCriticalMsg, text));
    }
    EXPECT_TRUE(errors.isEmpty());
}
