#include "app/SingleInstance.h"

#include "files/WriteAccess.h"

#include <QApplication>
#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QMessageBox>
#include <QStandardPaths>
#include <QThread>

#include <cstdlib>
#include <memory>

namespace {

constexpr unsigned long PAUSE_MS = 50;
/// A socket's path has 104 to 108 bytes, and Qt makes it under a longer name first.
constexpr qsizetype LONGEST_PATH = 88;

/// The same by whichever path the folder is reached. It must be there.
QString socketOf(const QString& folder)
{
    const QByteArray place = QFile::encodeName(QFileInfo(folder).canonicalFilePath());
    const QString name =
        QStringLiteral("brevick-tuning-orlo-")
        + QString::fromLatin1(QCryptographicHash::hash(place, QCryptographicHash::Sha256).toHex().left(16));
    const QString path = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) + u'/' + name;
    return QFile::encodeName(path).size() <= LONGEST_PATH ? path
                                                          : name; // which Qt puts into the temporary folder
}

} // namespace

SingleInstance::SingleInstance(const QString& folder)
    : mFolder(folder)
    , mLock(folder + QStringLiteral("/.lock"))
{
    mLock.setStaleLockTime(0); // age says nothing: the first one may run for days
}

SingleInstance::Entry SingleInstance::enter(std::chrono::milliseconds longest)
{
    QDir().mkpath(mFolder);
    mSocket = socketOf(mFolder);
    const QDeadlineTimer deadline(longest);
    for (;;) {
        if (mLock.tryLock() || mLock.error() != QLockFile::LockFailedError)
            return Entry::First;
        if (isAnswered(deadline))
            return Entry::Answered;
        if (!whyNotWritable(mFolder).isEmpty())
            return Entry::First; // the lock of a dead one would stay for ever
        if (deadline.hasExpired())
            return Entry::Unheard;
        QThread::msleep(PAUSE_MS); // the first one may be about to listen, or to end
        removeLockOfTheDead();
    }
}

bool SingleInstance::isAnswered(const QDeadlineTimer& deadline) const
{
    const auto left = [&deadline] { return static_cast<int>(deadline.remainingTime()); };
    QLocalSocket socket;
    socket.connectToServer(mSocket, QIODevice::ReadOnly);
    return socket.waitForConnected(left()) && socket.waitForReadyRead(left());
}

/// Qt takes a lock for a living one's while there is a process of that number and name, which can be a copy
/// on another folder. What the system holds on the file for its owner cannot be mistaken.
void SingleInstance::removeLockOfTheDead()
{
    QLockFile remover(mLock.fileName() + QStringLiteral(".rmlock")); // as Qt itself does it: one at a time
    if (remover.tryLock())
        mLock.removeStaleLockFile();
}

void SingleInstance::answer(QObject* listener, const std::function<void()>& show) const
{
    const auto warn = [listener](const QString& what, const QString& why) {
        // Said once the log is open.
        QMetaObject::invokeMethod(
            listener,
            [=] {
                qWarning().noquote() << "A second start on this data folder is not noticed:" << what << why;
            },
            Qt::QueuedConnection);
    };
    if (!mLock.isLocked()) {
        warn(QStringLiteral("no lock file can be made at"), mLock.fileName());
        return;
    }
    auto* server = new QLocalServer(listener);
    server->setSocketOptions(QLocalServer::UserAccessOption);
    QLocalServer::removeServer(mSocket); // left by a crash, for this one has the lock
    if (!server->listen(mSocket))
        warn(server->errorString(), mSocket);
    QObject::connect(server, &QLocalServer::newConnection, listener, [server, show] {
        while (const std::unique_ptr<QLocalSocket> later{server->nextPendingConnection()}) {
            later->write("!");
            later->flush();
        }
        show();
    });
}

void SingleInstance::bringToFront(QWidget* window)
{
    for (QWidget* widget : {window, QApplication::activeModalWidget()}) {
        if (!widget)
            continue;
        widget->setWindowState(widget->windowState() & ~Qt::WindowMinimized);
        widget->raise();
        widget->activateWindow();
    }
}

int SingleInstance::tellUnheard(int& argc, char** argv)
{
    const QApplication application(argc, argv);
    const QString text =
        QStringLiteral("The program is running already, with the same data folder, but does not answer.\n\n"
                       "Wait for it or end it, and start again.");
    qCritical().noquote() << text;
    QMessageBox::critical(nullptr, QCoreApplication::applicationName(), text, QMessageBox::Ok);
    return EXIT_FAILURE;
}
