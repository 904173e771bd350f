#pragma once

#include "support/LogCatcher.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QHash>
#include <QMessageBox>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

/// A web server on loopback that gives out prepared bytes, in the thread of the test.
class LoopbackServer : public QTcpServer
{
public:
    /// Header and all. Then the connection ends, unless it is left open, as by a server that went to sleep.
    struct Answer
    {
        QByteArray bytes;
        bool leaveOpen = false;
    };

    LoopbackServer();

    /// To a request of this path.
    void put(const QString& path, const Answer& answer) { mAnswers.insert(path.toUtf8(), answer); }
    /// More for the last request, whose connection is open.
    void sendMore(const QByteArray& bytes) { mLast->write(bytes); }
    QString url(const QString& path) const;
    /// Headers of all requests, in their order.
    const QList<QByteArray>& requests() const { return mRequests; }

    static Answer ok(const QByteArray& body) { return cut(body, body.size()); }
    /// Promises another length than it gives.
    static Answer cut(const QByteArray& body, qsizetype promised, bool leaveOpen = false);
    static Answer withoutLength(const QByteArray& body) { return {"HTTP/1.1 200 OK\r\n\r\n" + body}; }
    static Answer redirect(const QString& to);
    static Answer notFound() { return {"HTTP/1.1 404 Not Found\r\nContent-Length: 5\r\n\r\nGone."}; }

private:
    void read(QTcpSocket* socket);

    QHash<QByteArray, Answer> mAnswers; // by path
    QList<QByteArray> mRequests;
    QTcpSocket* mLast = nullptr;
};

/// Takes the addresses that would go to other programs.
class AddressCatcher : public QObject
{
    Q_OBJECT

public:
    AddressCatcher();
    ~AddressCatcher() override;
    QStringList take() { return std::exchange(mOpened, {}); }

public slots:
    void open(const QUrl& url) { mOpened.append(url.toString()); }

private:
    QStringList mOpened;
};

/// A server, a folder for downloads, and an eye on the boxes.
class UpdateFixture : public ::testing::Test
{
protected:
    UpdateFixture();
    ~UpdateFixture() override;

    /// The box that is open; null: none. A second one is a fault.
    static QMessageBox* box();
    /// Text and informative text of the next box, joined by "|"; and of the one that is open now.
    static QString nextBox();
    static QString boxText();
    static bool press(QMessageBox::StandardButton button);
    /// Lets the event loop of the program run until it ends by itself.
    template <class Action>
    static bool endsBy(Action&& action)
    {
        QTimer limit;
        QObject::connect(&limit, &QTimer::timeout, qApp, [] { QCoreApplication::exit(1); });
        limit.start(20000);
        QTimer::singleShot(0, qApp, action);
        return QCoreApplication::exec() == 0;
    }

    QStringList downloaded() const;
    QByteArray content(const QString& name) const;

    /// Of a test that ends in the middle of a check: the next one waits for its box.
    inline static bool checkLeftOpen = false;

    LogCatcher log;
    LoopbackServer server;
    AddressCatcher opened;
    QTemporaryDir root;
    const QString downloads = root.filePath(QStringLiteral("sub/downloads/"));
};
