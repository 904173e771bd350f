#include "update/UpdateFixture.h"

#include <QApplication>
#include <QDesktopServices>
#include <QPushButton>

namespace {
const QString SCHEMES[] = {QStringLiteral("http"), QStringLiteral("https"), QStringLiteral("file"),
                           QStringLiteral("javascript")};
}

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
    const Answer answer = mAnswers.value(mRequests.last().split(' ').value(1), notFound());
    socket->write(answer.bytes);
    if (!answer.leaveOpen)
        socket->disconnectFromHost();
}

QString LoopbackServer::url(const QString& path) const
{
    return QStringLiteral("http://127.0.0.1:%1%2").arg(serverPort()).arg(path);
}

LoopbackServer::Answer LoopbackServer::cut(const QByteArray& body, qsizetype promised, bool leaveOpen)
{
    return {"HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(promised) + "\r\n\r\n" + body,
            leaveOpen};
}

LoopbackServer::Answer LoopbackServer::redirect(const QString& to)
{
    return {"HTTP/1.1 302 Found\r\nContent-Length: 0\r\nLocation: " + to.toUtf8() + "\r\n\r\n"};
}

AddressCatcher::AddressCatcher()
{
    for (const QString& scheme : SCHEMES)
        QDesktopServices::setUrlHandler(scheme, this, "open");
}

AddressCatcher::~AddressCatcher()
{
    for (const QString& scheme : SCHEMES)
        QDesktopServices::unsetUrlHandler(scheme);
}

UpdateFixture::UpdateFixture()
{
    QCoreApplication::setApplicationVersion(QStringLiteral("2.0.0"));
    if (std::exchange(checkLeftOpen, false)) {
        nextBox();
        delete box();
    }
}

UpdateFixture::~UpdateFixture()
{
    while (QWidget* open = box()) // of an updater that lives on
        delete open;
}

QMessageBox* UpdateFixture::box()
{
    QMessageBox* found = nullptr;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        auto* each = qobject_cast<QMessageBox*>(window);
        if (!each || !each->isVisible())
            continue;
        EXPECT_EQ(found, nullptr) << "two boxes";
        EXPECT_FALSE(each->isModal());
        found = each;
    }
    return found;
}

QString UpdateFixture::boxText()
{
    const QMessageBox* open = box();
    return open ? open->text() + u'|' + open->informativeText() : QString();
}

QString UpdateFixture::nextBox()
{
    EXPECT_TRUE(waitUntil([] { return box(); }));
    return boxText();
}

bool UpdateFixture::press(QMessageBox::StandardButton button)
{
    if (!box() || !box()->button(button))
        return false;
    QTest::mouseClick(box()->button(button), Qt::LeftButton);
    return true;
}

QStringList UpdateFixture::downloaded() const
{
    return QDir(downloads).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

QByteArray UpdateFixture::content(const QString& name) const
{
    QFile file(downloads + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
