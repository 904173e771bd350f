#include "update/LoopbackServer.h"

#include <QTcpSocket>

LoopbackServer::LoopbackServer()
{
    connect(this, &QTcpServer::newConnection, this, [this] {
        QTcpSocket* socket = nextPendingConnection();
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(socket); });
    });
    if (!listen(QHostAddress::LocalHost))
        qFatal("No server on loopback: %s", qPrintable(errorString()));
}

void LoopbackServer::read(QTcpSocket* socket)
{
    if (!socket->peek(1 << 16).contains("\r\n\r\n"))
        return;
    mLast = socket;
    mRequests.append(socket->readAll());
    const Answer answer = mAnswers.value(mRequests.last().split(' ').value(1), {notFound(), false});
    socket->write(answer.bytes);
    if (!answer.leaveOpen)
        socket->disconnectFromHost();
}

void LoopbackServer::put(const QString& path, const QByteArray& answer, bool leaveOpen)
{
    mAnswers.insert(path.toUtf8(), {answer, leaveOpen});
}

void LoopbackServer::sendMore(const QByteArray& bytes)
{
    mLast->write(bytes);
}

QString LoopbackServer::url(const QString& path) const
{
    return QStringLiteral("http://127.0.0.1:%1%2").arg(serverPort()).arg(path);
}

QByteArray LoopbackServer::cut(const QByteArray& body, qsizetype promised)
{
    return "HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(promised) + "\r\n\r\n" + body;
}

QByteArray LoopbackServer::redirect(const QString& to)
{
    return "HTTP/1.1 302 Found\r\nContent-Length: 0\r\nLocation: " + to.toUtf8() + "\r\n\r\n";
}

QByteArray LoopbackServer::notFound()
{
    return "HTTP/1.1 404 Not Found\r\nContent-Length: 5\r\n\r\nGone.";
}
