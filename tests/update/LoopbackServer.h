#pragma once

#include <QHash>
#include <QTcpServer>

/// A web server on loopback that gives out prepared bytes, in the thread of the test.
class LoopbackServer : public QTcpServer
{
public:
    LoopbackServer();

    /// The answer to a request of this path, header and all. Then the connection ends, unless it is
    /// left open, as by a server that went to sleep.
    void put(const QString& path, const QByteArray& answer, bool leaveOpen = false);
    /// More for the last request, whose connection is open.
    void sendMore(const QByteArray& bytes);
    QString url(const QString& path) const;
    /// Headers of all requests, in their order.
    const QList<QByteArray>& requests() const { return mRequests; }

    static QByteArray ok(const QByteArray& body) { return cut(body, body.size()); }
    /// Promises another length than it gives.
    static QByteArray cut(const QByteArray& body, qsizetype promised);
    static QByteArray withoutLength(const QByteArray& body) { return "HTTP/1.1 200 OK\r\n\r\n" + body; }
    static QByteArray redirect(const QString& to);
    static QByteArray notFound();

private:
    struct Answer
    {
        QByteArray bytes;
        bool leaveOpen;
    };
    void read(QTcpSocket* socket);

    QHash<QByteArray, Answer> mAnswers; // by path
    QList<QByteArray> mRequests;
    QTcpSocket* mLast = nullptr;
};
