#include "app/TerminationSignals.h"

#include "app/EndRequest.h"

#include <QApplication>
#include <QDebug>
#include <QSocketNotifier>
#include <QWidget>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

struct Handled
{
    int signal;
    struct sigaction former;
};
Handled theSignals[] = {{SIGTERM, {}}, {SIGINT, {}}, {SIGHUP, {}}};

int thePipe[2] = {-1, -1};

// Hardly any call is allowed in a signal handler, so it only wakes the event loop. A pipe that is full has
// woken it already.
void onSignal(int)
{
    const int interrupted = errno;
    EndRequest::isMade = true;
    const char byte = 1;
    [[maybe_unused]] const auto written = write(thePipe[1], &byte, 1);
    errno = interrupted;
}

/// Neither end ever waits, nor is known to a program that this one starts.
bool makePipe()
{
    if (pipe(thePipe) != 0)
        return false;
    for (const int end : thePipe) {
        fcntl(end, F_SETFL, O_NONBLOCK);
        fcntl(end, F_SETFD, FD_CLOEXEC);
    }
    return true;
}

} // namespace

TerminationSignals::TerminationSignals(QObject* parent)
    : QObject(parent)
{
    EndRequest::isMade = false;
    if (!makePipe()) {
        qWarning() << "A signal from the system will end the program without saving.";
        return;
    }
    mNotifier = std::make_unique<QSocketNotifier>(thePipe[0], QSocketNotifier::Read);
    connect(mNotifier.get(), &QSocketNotifier::activated, this, &TerminationSignals::quit);
    struct sigaction ours = {};
    ours.sa_handler = &onSignal;
    ours.sa_flags = SA_RESTART;
    for (Handled& handled : theSignals) {
        sigaction(handled.signal, nullptr, &handled.former);
        if (handled.former.sa_handler != SIG_IGN) // as nohup wants it
            sigaction(handled.signal, &ours, nullptr);
    }
}

TerminationSignals::~TerminationSignals()
{
    if (!mNotifier)
        return;
    for (const Handled& handled : theSignals)
        sigaction(handled.signal, &handled.former, nullptr);
    mNotifier.reset();
    close(thePipe[0]);
    close(thePipe[1]);
}

void TerminationSignals::quit()
{
    char bytes[16];
    [[maybe_unused]] const auto taken = read(thePipe[0], bytes, sizeof bytes);
    qWarning() << "The system asks the program to end.";
    mAsked = true;
    if (QWidget* box = QApplication::activeModalWidget())
        box->close();
    QCoreApplication::quit();
}
